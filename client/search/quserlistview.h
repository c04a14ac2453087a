#pragma once

#include <QListView>

class QSortFilterProxyModel;
class QStandardItem;
class QStandardItemModel;

/// A sorted list of users or roles. Entries are dragged from one such list to another, and move.
class QUserListView final : public QListView
{
    Q_OBJECT

public:
    explicit QUserListView(QWidget *parent = nullptr);

    /// The items become the list's.
    void addRow(QStandardItem *item);
    void addRow(const QList<QStandardItem *> &items);
    /// Takes the row of a list index out; its items are the caller's.
    QList<QStandardItem *> takeRow(const QModelIndex &index);
    QList<QList<QStandardItem *>> takeRows(const QList<QModelIndex> &indexes);
    /// The same for the row that item is in.
    QList<QStandardItem *> takeItem(const QStandardItem *item);
    void removeRow(const QModelIndex &index);
    /// Moves the selected rows to another list; false when none is selected.
    bool moveSelectedTo(QUserListView *target);

    int rowCount() const;
    /// By row of insertion, not as shown; null when there is none.
    QStandardItem *item(int row, int column = 0) const;
    /// Items with exactly this text.
    QList<QStandardItem *> findItems(const QString &text) const;
    void clear();

    /// Whether Control alone was held at the last key press or double click.
    bool getStrgHold() const { return m_strgHold; }
    void setStrgHold(bool hold) { m_strgHold = hold; }

signals:
    /// Entries were dropped here.
    void changed();
    /// Left or Right was pressed: the selection is to go to the other list.
    void changeCurrent();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    QStandardItemModel *m_model;
    QSortFilterProxyModel *m_proxy;
    bool m_strgHold = false;
};
