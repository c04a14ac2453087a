#include "app/windowlayout.h"

#include "app/defaultlayout.h"
#include "app/dockwidthkeeper.h"

#include <QDockWidget>
#include <QGuiApplication>
#include <QLayout>
#include <QMainWindow>
#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QWindow>

namespace {

/// Of the status list, in pixels. Others come from a damaged file, or from a panel that was floating or
/// closed.
bool isPlausibleWidth(int width)
{
    return width >= 60 && width <= QGuiApplication::primaryScreen()->availableGeometry().width() / 2;
}

} // namespace

WindowLayout::WindowLayout(QMainWindow *window, const Panels &panels)
    : m_window(window),
      m_panels(panels),
      m_folderWidth(new DockWidthKeeper(window, panels.folders, panels.documents))
{
}

void WindowLayout::load(const QSettings &settings, bool offline)
{
    m_offline = offline;
    DockFolderWidth = settings.value("DockFolderWidth", DockFolderWidth).toInt();
    if (isPlausibleWidth(DockFolderWidth)) {
        // From the list to its dock: the margins of the panel and the frame of the dock.
        const QMargins margins = m_panels.statusList->parentWidget()->layout()->contentsMargins();
        const int frame =
            m_panels.status->style()->pixelMetric(QStyle::PM_DockWidgetFrameWidth, nullptr, m_panels.status);
        m_folderWidth->setWidth(margins.left() + DockFolderWidth + margins.right() + 2 * frame);
    }
    if (settings.contains("DockSettings")) {
        if (settings.value("isMaximized", false).toBool())
            m_window->setWindowState(m_window->windowState() |
                                     Qt::WindowMaximized); // it is shown only after the login
        else
            m_window->restoreGeometry(settings.value("DockGeometry").toByteArray());
        restore(settings.value("DockSettings").toByteArray());
    } else {
        restore(QByteArray::fromBase64(defaultlayout::state));
    }
}

void WindowLayout::restore(const QByteArray &state)
{
    m_window->restoreState(state, 0);
    m_panels.documents->show(); // no menu would bring it back
    if (m_offline) {
        m_filtersShown = !m_panels.filters->isHidden();
        m_panels.filters->hide();
    }
    stackPanels();
    m_folderWidth->settle();
}

/// On a screen that is too low for the panels above each other they lie behind each other.
void WindowLayout::stackPanels()
{
    const QWindow *handle = m_window->windowHandle();
    const QScreen *screen = handle ? handle->screen() : QGuiApplication::primaryScreen();
    if (m_window->minimumSizeHint().height() <= screen->availableGeometry().height())
        return;
    QDockWidget *first = nullptr;
    for (QDockWidget *dock : {m_panels.folders, m_panels.status, m_panels.filters}) {
        if (dock->isFloating() || dock->isHidden())
            continue;
        if (first)
            m_window->tabifyDockWidget(first, dock);
        else
            first = dock;
    }
    if (first)
        first->raise();
}

QByteArray WindowLayout::state() const
{
    return m_window->saveState(0);
}

void WindowLayout::note()
{
    if (m_offline)
        m_panels.filters->setVisible(m_filtersShown);
    m_noted = state();
    if (m_offline)
        m_panels.filters->hide();
    if (m_panels.status->isVisible() && !m_panels.status->isFloating())
        DockFolderWidth = m_panels.statusList->width();
}

void WindowLayout::save(QSettings &settings)
{
    if (m_window->isVisible() || m_noted.isEmpty())
        note();
    settings.setValue("DockSettings", m_noted);
    settings.setValue("isMaximized", m_window->isMaximized());
    settings.setValue("DockGeometry", m_window->saveGeometry());
    if (isPlausibleWidth(DockFolderWidth))
        settings.setValue("DockFolderWidth", DockFolderWidth);
}
