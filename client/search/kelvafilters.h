#pragma once

#include <QStringList>
#include <QTreeView>

class QStandardItem;

/// The stored filters, in groups; the one that the list is restricted by is red. Which groups are open is
/// kept from session to session. doubleClicked() is how a filter is asked for, by mouse or by Return.
class KelvaFilters final : public QTreeView
{
    Q_OBJECT

public:
    explicit KelvaFilters(QWidget *parent = nullptr);

    void setActive(QStandardItem *item);
    void clearActive();
    /// Null clears.
    void selectActive(QStandardItem *item);

public slots:
    /// The items are gone, the active one among them.
    void modelIsResetted();
    void updateExpanded();

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private slots:
    void handleExpand(const QModelIndex &index);
    void handleCollapse(const QModelIndex &index);

private:
    void writeExpanded() const;

    QStandardItem *m_active = nullptr;
    QStringList m_expanded; ///< numbers of groups
};
