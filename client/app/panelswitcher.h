#pragma once

#include <QList>
#include <QObject>

class QWidget;

/// F6 takes the keyboard from panel to panel of a window, Shift+F6 back.
class PanelSwitcher final : public QObject
{
    Q_OBJECT

public:
    /// A child of the window. panels: the widget of each that takes the focus, in their order; they are lent
    /// and live as long as the window.
    PanelSwitcher(QWidget *window, QList<QWidget *> panels);

public slots:
    void goOn() { go(1); }
    void goBack() { go(-1); }

private:
    void go(int direction);

    const QList<QWidget *> m_panels;
};
