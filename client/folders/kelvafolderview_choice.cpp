#include "folders/kelvafolderview.h"

#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"

#include <QCoreApplication>
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
    // The search bar has gone: twice another size makes the layout take its place back.
    viewport()->setMinimumSize(0, 0);
    viewport()->setMaximumHeight(16000);
    resize(size());
    resize(width(), height() + 2);
    setFocus();
    QCoreApplication::processEvents();
    m_picked = true;
    emit doubleClicked(QTreeView::currentIndex());
    emitCurrentIndexChanged();
}

void KelvaFolderView::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const QChar typed = event->text().isEmpty() ? QChar() : event->text().at(0);
    if (plain && typed.isLetterOrNumber()) {
        event->ignore();
        showSearchDlg(typed.unicode());
    } else if (event->key() == Qt::Key_F3) {
        event->ignore();
        if (m_searchText.isEmpty())
            showSearchDlg(0);
        else
            searchAgain(false);
    } else if (m_dialogMode && event->key() == Qt::Key_Escape) {
        emit escPressed();
        event->ignore();
    } else if (m_dialogMode && enter && isSelectable(QTreeView::currentIndex())) {
        m_picked = true;
        emit doubleClicked(QTreeView::currentIndex());
        emitCurrentIndexChanged();
    } else {
        QTreeView::keyPressEvent(event);
    }
}

void KelvaFolderView::mousePressEvent(QMouseEvent *event)
{
    if (m_specialMouse)
        clearSelection();
    QTreeView::mousePressEvent(event);
    if (m_specialMouse && m_tree) {
        m_tree->resetPrevItem();
        viewport()->update();
    }
}

void KelvaFolderView::mouseMoveEvent(QMouseEvent *event)
{
    viewport()->setCursor(indexAt(event->pos()).isValid() ? Qt::PointingHandCursor : Qt::ArrowCursor);
    QTreeView::mouseMoveEvent(event);
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
