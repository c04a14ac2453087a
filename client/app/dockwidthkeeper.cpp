#include "app/dockwidthkeeper.h"

#include <QDockWidget>
#include <QEvent>
#include <QMainWindow>

DockWidthKeeper::DockWidthKeeper(QMainWindow *window, QDockWidget *dock, QDockWidget *other)
    : QObject(window),
      m_window(window),
      m_dock(dock),
      m_other(other)
{
    window->installEventFilter(this);
    dock->installEventFilter(this);
}

void DockWidthKeeper::takeBack()
{
    m_windowSize = m_window->size();
    if (!m_dock->isVisible() || m_dock->isFloating())
        return;
    if (m_width == 0)
        m_width = m_dock->width();
    else
        m_window->resizeDocks({m_dock, m_other}, {m_width, m_window->width() - m_width}, Qt::Horizontal);
}

bool DockWidthKeeper::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize) {
        if (watched == m_window) {
            // The docks have their new sizes already; within the event they would not take others.
            QMetaObject::invokeMethod(
                this, [this] { takeBack(); }, Qt::QueuedConnection);
        } else if (!m_dock->isFloating() && m_window->size() == m_windowSize) {
            m_width = m_dock->width();
        }
    }
    return QObject::eventFilter(watched, event);
}
