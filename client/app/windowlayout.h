#pragma once

#include <QByteArray>

class DockWidthKeeper;
class QDockWidget;
class QMainWindow;
class QSettings;
class QWidget;

/// The arrangement of the window's panels: what is kept of it from session to session, and how it is brought
/// back.
class WindowLayout
{
public:
    struct Panels
    {
        QDockWidget *folders;
        QDockWidget *status;
        QDockWidget *filters;
        QDockWidget *documents;
        QWidget *statusList; ///< in the status panel; its width is what is kept
    };

    /// Window and panels are lent and must outlive it.
    WindowLayout(QMainWindow *window, const Panels &panels);

    /// Brings back what is stored, or the first arrangement. Offline there are no filters, and hiding them is
    /// not how the user left them.
    void load(const QSettings &settings, bool offline);
    /// A state of QMainWindow::saveState(); what Qt refuses leaves the layout as it is.
    void restore(const QByteArray &state);
    QByteArray state() const;
    /// To be called while the window is still there: one that was closed has taken its floating panels with
    /// it, and would bring them back hidden.
    void note();
    void save(QSettings &settings);

private:
    void stackPanels();

    QMainWindow *m_window;
    const Panels m_panels;
    DockWidthKeeper *m_folderWidth; ///< the window's
    QByteArray m_noted;
    int DockFolderWidth = 0;
    bool m_offline = false;
    bool m_filtersShown = true; ///< as it was before an offline session hid them
};
