#pragma once

#include <QObject>
#include <QSize>

class QDockWidget;
class QMainWindow;

/// Keeps the width of a dock when its window grows or shrinks: the room goes to another one. Without a
/// central widget Qt would share it out among all docks.
class DockWidthKeeper final : public QObject
{
public:
    /// A child of the window.
    DockWidthKeeper(QMainWindow *window, QDockWidget *dock, QDockWidget *other);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void takeBack();

    QMainWindow *m_window;
    QDockWidget *m_dock;
    QDockWidget *m_other;
    QSize m_windowSize; ///< that the dock's width belongs to
    int m_width = 0;
};
