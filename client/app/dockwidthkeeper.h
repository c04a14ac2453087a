#pragma once

#include <QObject>

class QDockWidget;
class QMainWindow;

/// Keeps the width of a dock that the user gave it when its window grows or shrinks: the room goes to the
/// dock beside it. Without a central widget Qt would share it out among all docks.
class DockWidthKeeper final : public QObject
{
public:
    /// A child of the window.
    DockWidthKeeper(QMainWindow *window, QDockWidget *dock, QDockWidget *other);

    /// The width of an earlier session. Without one it is the width that the dock is first shown with.
    void setWidth(int width) { m_width = width; }
    /// After another layout was restored: its width is the one to keep, unless it was made for another window
    /// and takes up more than half of this one.
    void settle();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isBesideTheOther() const;
    void takeBack();
    void learn();

    QMainWindow *m_window;
    QDockWidget *m_dock;
    QDockWidget *m_other;
    int m_width = 0;
};
