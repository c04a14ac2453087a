#include "search/quserlistview.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

#include <algorithm>

QUserListView::QUserListView(QWidget *parent)
    : QListView(parent),
      m_model(new QStandardItemModel(this)),
      m_proxy(new QSortFilterProxyModel(this))
{
    m_proxy->setSourceModel(m_model);
    m_proxy->setDynamicSortFilter(true);
    setModel(m_proxy);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
}

void QUserListView::addRow(QStandardItem *item)
{
    addRow(QList<QStandardItem *>{item});
}

void QUserListView::addRow(const QList<QStandardItem *> &items)
{
    m_model->appendRow(items);
    m_proxy->sort(0, Qt::AscendingOrder);
}

QList<QStandardItem *> QUserListView::takeRow(const QModelIndex &index)
{
    const QModelIndex row = m_proxy->mapToSource(index);
    return row.isValid() ? m_model->takeRow(row.row()) : QList<QStandardItem *>();
}

QList<QList<QStandardItem *>> QUserListView::takeRows(const QList<QModelIndex> &indexes)
{
    QList<QModelIndex> rows; // of the model: taking one out moves those of the list
    for (const QModelIndex &index : indexes)
        rows << m_proxy->mapToSource(index);
    std::sort(rows.begin(), rows.end());
    QList<QList<QStandardItem *>> taken;
    for (auto row = rows.crbegin(); row != rows.crend(); ++row)
        if (row->isValid())
            taken << m_model->takeRow(row->row());
    return taken;
}

QList<QStandardItem *> QUserListView::takeItem(const QStandardItem *item)
{
    return m_model->takeRow(item->row());
}

void QUserListView::removeRow(const QModelIndex &index)
{
    const QModelIndex row = m_proxy->mapToSource(index);
    if (row.isValid())
        m_model->removeRow(row.row());
}

bool QUserListView::moveSelectedTo(QUserListView *target)
{
    const QList<QList<QStandardItem *>> rows = takeRows(selectionModel()->selectedRows());
    for (const QList<QStandardItem *> &row : rows)
        target->addRow(row);
    return !rows.isEmpty();
}

int QUserListView::rowCount() const
{
    return m_model->rowCount();
}

QStandardItem *QUserListView::item(int row, int column) const
{
    return m_model->item(row, column);
}

QList<QStandardItem *> QUserListView::findItems(const QString &text) const
{
    return m_model->findItems(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
}

void QUserListView::clear()
{
    m_model->clear();
}

void QUserListView::dragEnterEvent(QDragEnterEvent *event)
{
    event->setAccepted(qobject_cast<QUserListView *>(event->source()) != nullptr);
}

void QUserListView::dragMoveEvent(QDragMoveEvent *event)
{
    event->setAccepted(qobject_cast<QUserListView *>(event->source()) != nullptr);
}

void QUserListView::dropEvent(QDropEvent *event)
{
    auto *source = qobject_cast<QUserListView *>(event->source());
    if (!source) {
        event->ignore();
        return;
    }
    source->moveSelectedTo(this);
    // After a move the source would take out once more what is selected there by then.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    emit changed();
}

void QUserListView::keyPressEvent(QKeyEvent *event)
{
    m_strgHold = event->modifiers() == Qt::ControlModifier;
    if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) {
        emit changeCurrent();
        event->ignore();
        return;
    }
    QListView::keyPressEvent(event);
}

void QUserListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    m_strgHold = event->modifiers() == Qt::ControlModifier;
    QListView::mouseDoubleClickEvent(event);
}
