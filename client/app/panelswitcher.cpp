#include "app/panelswitcher.h"

#include <QApplication>
#include <QShortcut>
#include <QWidget>

PanelSwitcher::PanelSwitcher(QWidget *window, QList<QWidget *> panels)
    : QObject(window),
      m_panels(std::move(panels))
{
    connect(new QShortcut(QKeySequence(Qt::Key_F6), window), SIGNAL(activated()), this, SLOT(goOn()));
    connect(new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F6), window), SIGNAL(activated()), this,
            SLOT(goBack()));
}

void PanelSwitcher::go(int direction)
{
    const QWidget *focused = QApplication::focusWidget();
    int from = direction > 0 ? -1 : m_panels.size();
    for (int i = 0; i < m_panels.size(); ++i)
        // A panel is a dock; what stands beside its main widget belongs to it.
        if (focused && (m_panels.at(i) == focused || m_panels.at(i)->isAncestorOf(focused)))
            from = i;
    for (int step = 1; step <= m_panels.size(); ++step) {
        const int count = m_panels.size();
        QWidget *panel = m_panels.at(((from + direction * step) % count + count) % count);
        if (!panel->isVisible() || !panel->isEnabled())
            continue;
        panel->activateWindow(); // it may float
        panel->setFocus(Qt::ShortcutFocusReason);
        return;
    }
}
