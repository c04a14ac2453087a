#include "folders/kelvafolderview.h"

#include "folders/kelvadocitem.h"

#include <QKeyEvent>
#include <QMouseEvent>

void KelvaFolderView::show()
{
    m_picked = false;
    QTreeView::show();
}

bool KelvaFolderView::isSelectable(const QModelIndex &proxyIndex) const
{
    return proxyIndex.isValid() && proxyIndex.flags().testFlag(Qt::ItemIsSelectable);
}

void KelvaFolderView::doSearchSelection()
{
    setFocus();
    m_picked = true;
    emit doubleClicked(QTreeView::currentIndex());
    emitCurrentIndexChanged();
}

void KelvaFolderView::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (m_dialogMode && event->key() == Qt::Key_Escape) {
        emit escPressed();
        event->ignore();
    } else if (m_dialogMode && enter && isSelectable(QTreeView::currentIndex())) {
        doSearchSelection();
    } else {
        QTreeView::keyPressEvent(event);
    }
}

void KelvaFolderView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!isSelectable(indexAt(event->pos())))
        return;
    if (m_dialogMode && editTriggers() == QAbstractItemView::NoEditTriggers)
        doSearchSelection();
    else
        QTreeView::mouseDoubleClickEvent(event);
}
