#pragma once

#include <QBrush>
#include <QSortFilterProxyModel>

/// Sorts texts as the locale does and numbers as numbers, and marks the sorted column with a background.
class MySortFilterProxyModel final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit MySortFilterProxyModel(QObject *parent = nullptr);

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    const QBrush m_sortedColumn;
};
