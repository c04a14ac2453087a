#include "app/screenfitter.h"

#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace {

/// The window manager's frame is known only once the window is there.
QMargins frameOf(const QWidget *window)
{
    return QMargins(1, window->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, window), 1, 1);
}

} // namespace

QRect ScreenFitter::fitted(const QRect &window, const QRect &room)
{
    QRect place(window.topLeft(), window.size().boundedTo(room.size()));
    place.moveLeft(qBound(room.left(), place.left(), room.right() + 1 - place.width()));
    place.moveTop(qBound(room.top(), place.top(), room.bottom() + 1 - place.height()));
    return place;
}

bool ScreenFitter::eventFilter(QObject *watched, QEvent *event)
{
    auto *window = event->type() == QEvent::Show ? qobject_cast<QWidget *>(watched) : nullptr;
    if (!window || !window->isWindow() || !window->screen() ||
        (window->windowType() != Qt::Window && window->windowType() != Qt::Dialog) ||
        window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))
        return false;
    const QRect room = window->screen()->availableGeometry().marginsRemoved(frameOf(window));
    if (window->width() <= room.width() && window->height() <= room.height())
        return false;
    // Its contents may want more than there is; then the window is what gives way.
    window->setMinimumSize(window->minimumSize().boundedTo(room.size()));
    if (window->layout() && (window->minimumSizeHint().width() > room.width() ||
                             window->minimumSizeHint().height() > room.height()))
        window->layout()->setSizeConstraint(QLayout::SetNoConstraint);
    window->setGeometry(fitted(window->geometry(), room));
    return false;
}
