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
}

bool DockWidthKeeper::isBesideTheOther() const
{
    const auto isIn = [](const QDockWidget *dock) { return dock->isVisible() && !dock->isFloating(); };
    return isIn(m_dock) && isIn(m_other) &&
           (m_dock->geometry().right() < m_other->x() || m_other->geometry().right() < m_dock->x());
}

void DockWidthKeeper::takeBack()
{
    if (!isBesideTheOther())
        return;
    if (m_width <= 0)
        learn();
    const int rest = m_window->width() - m_width;
    if (rest > m_other->minimumSizeHint().width())
        m_window->resizeDocks({m_dock, m_other}, {m_width, rest}, Qt::Horizontal);
}

void DockWidthKeeper::learn()
{
    if (isBesideTheOther())
        m_width = m_dock->width();
}

void DockWidthKeeper::settle()
{
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_dock->width() * 2 > m_window->width())
                takeBack();
            else
                learn();
        },
        Qt::QueuedConnection);
}

bool DockWidthKeeper::eventFilter(QObject *watched, QEvent *event)
{
    // Afterwards: within a resize the docks would not take other sizes, and a drag is not over yet. What the
    // mouse lets go of in the window itself is the line between docks.
    if (event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(
            this, [this] { takeBack(); }, Qt::QueuedConnection);
    else if (event->type() == QEvent::MouseButtonRelease)
        QMetaObject::invokeMethod(
            this, [this] { learn(); }, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}
