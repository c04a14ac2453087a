#pragma once

#include <QStandardItemModel>

/// Rows of the document table, one item per field.
class QInfoViewModel final : public QStandardItemModel
{
    Q_OBJECT

public:
    explicit QInfoViewModel(QObject *parent = nullptr);

    /// Always false: what is dropped on the table is for the main window.
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;
    /// Tells views and proxies to lay out anew; no row is touched.
    void updateLayout();
    /// Replaces all rows at once; the items of a row stand in column order and become the model's.
    void replaceRows(const QList<QList<QStandardItem *>> &rows);
};
