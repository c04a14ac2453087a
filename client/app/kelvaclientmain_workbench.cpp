#include "app/kelvaclientmain.h"

#include "app/actionvisibility.h"
#include "app/windowlayout.h"
#include "contract/classifyinterface.h"
#include "documents/kelvatrashbutton.h"
#include "extensions/qttoolbarmanager.h"
#include "search/kelvastatusbarext.h"
#include "widgets/plainbox.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QSaveFile>
#include <QSettings>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolBar>

namespace {

/// Property of an action: its tip without the shortcut.
const char plainTip[] = "plainTip";

const char globalSection[] = "kelvaGlobalSettings";

const char plainTable[] = "QTableView { selection-color: "
                          "#FFFFFF;selection-background-color:qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, "
                          "stop: 0 #6ea1f1, stop: 1 #567dbc);}\n\n\nQTableView::indicator "
                          "{subcontrol-position: center; subcontrol-origin: "
                          "padding;}";
const char pictureTable[] =
    "QTableView { background-image: "
    "url(:/icons/"
    "logo_kelva.png);background-repeat:no-repeat;background-position:center;background-attachment:fixed;"
    "background-color:#FFFFFF;selection-color: #FFFFFF;selection-background-color:qlineargradient(x1: 0, y1: "
    "0, x2: "
    "0, y2: 1, stop: 0 #6ea1f1, stop: 1 #567dbc);}\n\n\nQTableView::indicator {subcontrol-position: center; "
    "subcontrol-origin: padding;}";

/// Behind the tips of the tool bar's buttons.
void showShortcuts(const QToolBar &bar, const QAction *without)
{
    for (QAction *action : bar.actions()) {
        const QString tip =
            action->property(plainTip).isValid() ? action->property(plainTip).toString() : action->toolTip();
        action->setProperty(plainTip, tip);
        const QString keys = action->shortcut().toString(QKeySequence::NativeText);
        if (!keys.isEmpty() && action != without)
            action->setToolTip(QStringLiteral("%1 (%2)").arg(tip, keys));
    }
}

void setShortcuts(const Ui_KelvaClientMain &ui)
{
    ui.action_Neuladen->setShortcut(QKeySequence(KelvaClientMain::tr("F5")));
    ui.action_Beenden->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+q")));
    ui.action_Archivieren->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+a")));
    ui.action_Anzeigen->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+s")));
    ui.action_Print->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+p")));
    ui.action_moveToFolder->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+Alt+o")));
    ui.action_Exportieren->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+e")));
    ui.action_Versenden->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+m")));
    ui.action_Link_Clip->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+Alt+l")));
    ui.action_Link_Email->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+Alt+m")));
    ui.action_Zurueckstellen->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+z")));
    ui.action_History->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+h")));
    ui.action_Einstellungen->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+Alt+s")));
    ui.action_docView->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+w")));
    ui.m_bSuchen->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+F")));
    ui.action_OrdnerSuchen->setShortcut(QKeySequence(KelvaClientMain::tr("Ctrl+Alt+f")));
    ui.action_Weitersuchen->setShortcut(QKeySequence(KelvaClientMain::tr("F3")));
}

} // namespace

void KelvaClientMain::loadSettings()
{
    QByteArray value;
    QString owner;
    m_infoView->setStyleSheet(pictureTable);
    // The picture stays when the setting cannot be read.
    if (classifyClient->getSetting(globalSection, "showBackgroundPic", value, owner) && value != "true")
        m_infoView->setStyleSheet(plainTable);
    useHttpLinks = classifyClient->getSetting(globalSection, "useHttpLinks", value, owner) && value == "true";
    if (classifyClient->getSetting(globalSection, "emailCommand", value, owner))
        emailCommand = QString::fromUtf8(value);
    m_tWOrdner->setHtmlMode(useHttpLinks);
}

void KelvaClientMain::loadToolBar()
{
    if (m_settingsBar) {
        toolBarManager->removeToolBar(m_settingsBar);
        removeToolBar(m_settingsBar);
        m_settingsBar->clear();
        delete m_settingsBar;
        m_settingsBar = nullptr;
    }
    action_Loeschen->setVisible(false);
    m_toolBar->clear();
    m_toolBar->addActions({action_Archivieren, action_Anzeigen, action_Exportieren, action_Versenden,
                           action_Link_Email, action_Link_Clip, action_Zurueckstellen, action_History,
                           action_Neuladen, action_ReloadAll, action_Trash, action_docView,
                           action_OrdnerSuchen, action_Weitersuchen, actionErweitererte_Volltextsuche,
                           actionReset_Filters});
    action_Print->setVisible(false);
    action_Print->setEnabled(false);
    applyRights();
    if (!actionVisibility(m_session).serviceOnly)
        applyOfflineMode();
    fillContextMenus();
    disableDocumentActions();
    action_MoveToArchive->setEnabled(false);
    connectActions();
    setShortcuts(*this);
    showShortcuts(*m_toolBar, action_docView); // whose text is its tip, and nothing else
    registerToolBars();
}

void KelvaClientMain::applyRights()
{
    const ActionVisibility visible = actionVisibility(m_session);
    for (QAction *action : {action_Einstellungen, action_Benutzer, action_Plugins})
        action->setVisible(visible.administration);
    if (visible.administration) {
        m_settingsBar = new QToolBar(tr("Settings"), this);
        m_settingsBar->setObjectName("Einstellungen");
        m_settingsBar->setIconSize(m_toolBar->iconSize());
        m_settingsBar->addActions({action_Einstellungen, action_Benutzer, action_Plugins});
        addToolBar(Qt::TopToolBarArea, m_settingsBar);
    }
    m_infoView->setNoEdit(!visible.classification);
    if (!visible.classification) {
        for (QAction *action : {action_MoveToArchive, action_Archivieren, action_Zurueckstellen}) {
            action->setVisible(false);
            action->setEnabled(false);
        }
        m_infoView->setEditTriggers(QAbstractItemView::NoEditTriggers);
        m_infoView->setDragEnabled(false);
    }
    if (!visible.history) {
        action_History->setVisible(false);
        action_History->setEnabled(false);
    }
}

void KelvaClientMain::applyOfflineMode()
{
    for (QAction *action : {action_Archivieren, action_Zurueckstellen, action_ReloadAll, action_Trash,
                            action_Loeschen, action_Link, action_InsertClipboard})
        for (QMenu *menu : {m_menuFile, m_menuDocument, m_menuView})
            menu->removeAction(action);
    m_menuFile->removeAction(action_PasswortAendern);
    m_menuView->removeAction(m_dockSearch->toggleViewAction());
    m_trashButton->hide();
    actionErweitererte_Volltextsuche->setVisible(false);
    m_dockSearch->hide();
    m_dockSearch->setEnabled(false);
}

void KelvaClientMain::fillContextMenus()
{
    const QList<QAction *> present = m_infoView->actions();
    for (QAction *action : present)
        m_infoView->removeAction(action);
    m_infoView->addActions({action_Anzeigen, action_Exportieren, action_Versenden, action_moveToFolder});
    delete m_contextLink;
    m_contextLink = nullptr;
    if (!m_session.offline) {
        m_contextLink = new QAction(QIcon(":/icons/computer_link.png"), tr("Link..."), this);
        m_contextLink->setMenu(action_Link->menu());
        m_infoView->addActions(
            {action_Zurueckstellen, action_Archivieren, action_Trash, action_Loeschen, m_contextLink});
    }
    m_infoView->addActions({action_History, action_docView});
    m_tWOrdner->addActions({action_docView, action_OrdnerSuchen, action_Weitersuchen});
}

void KelvaClientMain::connectActions()
{
    struct Wire
    {
        QObject *sender;
        const char *signal;
        const char *slot;
        Qt::ConnectionType type = Qt::AutoConnection;
    };
    const char *triggered = SIGNAL(triggered());
    const char *later = SLOT(notAvailableYet());
    const QList<Wire> wires{
        {action_Loeschen, triggered, later},
        {action_Archivieren, triggered, later},
        {action_Neuladen, triggered, SLOT(updateDocumentsClearPlugins())},
        {action_Einstellungen, triggered, later},
        {action_Versenden, triggered, later},
        {action_Link_Clip, triggered, later},
        {action_Link_Email, triggered, later},
        {action_Benutzer, triggered, later},
        {action_Exportieren, triggered, SLOT(exportDocument())},
        {action_Anzeigen, triggered, SLOT(showDocument())},
        {action_Print, triggered, later},
        {action_moveToFolder, triggered, SLOT(moveToFolder())},
        {action_Zurueckstellen, triggered, later},
        {action_History, triggered, later},
        {action_Plugins, triggered, later},
        {action_ReloadAll, triggered, SLOT(updateAll())},
        {action_PasswortAendern, triggered, SLOT(changePassword())},
        {action_docView, triggered, SLOT(changeDocView())},
        {action_Toolbars, triggered, later},
        {action_InsertClipboard, triggered, later},
        {action_Reset, triggered, SLOT(resetSettings())},
        {actionReset_Filters, SIGNAL(triggered(bool)), SLOT(resetFilters()), Qt::DirectConnection},
        {m_trashButton, SIGNAL(toggled(bool)), SLOT(updateTrash()), Qt::DirectConnection},
        {action_Trash, SIGNAL(triggered(bool)), later, Qt::DirectConnection},
        {actionErweitererte_Volltextsuche, SIGNAL(changed()), SLOT(doCheckSearch()), Qt::DirectConnection},
        {action_save_workbench, SIGNAL(triggered(bool)), SLOT(saveWorkbench())},
        {action_load_workbench, SIGNAL(triggered(bool)), SLOT(loadWorkbench())},
        {statusBarExt, SIGNAL(filterChanged()), SLOT(doUpdateDocuments()), Qt::DirectConnection},
        {statusBarExt->getMaxSearchBox(), SIGNAL(valueChanged(int)), SLOT(doUpdateDocuments()),
         Qt::DirectConnection},
    };
    for (const Wire &wire : wires) {
        disconnect(wire.sender, wire.signal, this, wire.slot);
        connect(wire.sender, wire.signal, this, wire.slot, wire.type);
    }
    disconnect(action_OrdnerSuchen, triggered, m_tWOrdner, SLOT(showSearchDlg()));
    connect(action_OrdnerSuchen, triggered, m_tWOrdner, SLOT(showSearchDlg()));
    disconnect(action_Weitersuchen, triggered, m_tWOrdner, SLOT(searchAgain()));
    connect(action_Weitersuchen, triggered, m_tWOrdner, SLOT(searchAgain()));
    if (m_session.offline)
        return; // nobody marks documents as read offline
    QCheckBox *unread = statusBarExt->getShowUnReadCheckBox();
    disconnect(unread, SIGNAL(clicked()), this, SLOT(doUpdateDocuments()));
    connect(unread, SIGNAL(clicked()), this, SLOT(doUpdateDocuments()), Qt::DirectConnection);
}

void KelvaClientMain::registerToolBars()
{
    toolBarManager->addToolBar(m_toolBar, "Actions");
    if (m_settingsBar)
        toolBarManager->addToolBar(m_settingsBar, "Settings");
    for (QAction *action :
         {action_Link, action_MoveToArchive, action_moveToFolder, action_Loeschen, action_save_workbench,
          action_load_workbench, action_Reset, action_Toolbars, action_PasswortAendern, action_Beenden,
          action_About, action_Hilfe, action_InsertClipboard})
        toolBarManager->addAction(action, "Others");
    const QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    if (settings.contains("ToolBarState"))
        toolBarManager->restoreState(settings.value("ToolBarState").toByteArray());
}

void KelvaClientMain::loadScreenSettings()
{
    const QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    m_layout->load(settings, m_session.offline);
    setUpdatesEnabled(false);
    if (settings.contains("InfoViewAutoResize"))
        m_infoView->setAutoResize(settings.value("InfoViewAutoResize").toBool());
    // Here checked restricts nothing and the text names what the next click does; changeDocView() has it the
    // other way round, so the first start shows every document.
    action_docView->setChecked(settings.value("PrivateDocs", true).toBool());
    m_query.mineOption = action_docView->isChecked() ? QString() : QStringLiteral("OPT:MINE");
    showDocView();
    {
        const QSignalBlocker barBlocker(statusBarExt);
        const QSignalBlocker unreadBlocker(statusBarExt->getShowUnReadCheckBox());
        const QSignalBlocker timeLineBlocker(statusBarExt->getTimeLineCheckBox());
        const QSignalBlocker countBlocker(statusBarExt->getMaxSearchBox());
        const QSignalBlocker fullTextBlocker(actionErweitererte_Volltextsuche);
        statusBarExt->getShowUnReadCheckBox()->setChecked(settings.value("DOCSHOWUNREAD", false).toBool());
        // Offline the date filter is hidden; it must not work unseen.
        statusBarExt->getTimeLineCheckBox()->setChecked(!m_session.offline &&
                                                        settings.value("DOCSENABLETIMELINE", false).toBool());
        actionErweitererte_Volltextsuche->setChecked(
            settings.value("DOCLASSIFYSEARCHFULLTEXT", false).toBool());
        QSpinBox *count = statusBarExt->getMaxSearchBox();
        bool isNumber = false;
        const int stored = settings.value("DOCCLASSIFYMAXCOUNT").toInt(&isNumber);
        if (isNumber && stored >= count->minimum() && stored <= count->maximum())
            count->setValue(stored);
        statusBarExt->checkFilter();
    }
    setUpdatesEnabled(true);
}

void KelvaClientMain::saveScreenSettings()
{
    if (!initialized)
        return;
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    m_layout->save(settings);
    settings.setValue("InfoViewAutoResize", m_infoView->getAutoResize());
    settings.setValue("HideEmptyFolders", false);
    settings.setValue("PrivateDocs", action_docView->isChecked());
    settings.setValue("DOCLASSIFYSEARCHFULLTEXT", actionErweitererte_Volltextsuche->isChecked());
    settings.setValue("DOCCLASSIFYMAXCOUNT", statusBarExt->getMaxSearchBox()->value());
    settings.setValue("DOCSHOWUNREAD", statusBarExt->getShowUnReadCheckBox()->isChecked());
    if (!m_session.offline)
        settings.setValue("DOCSENABLETIMELINE", statusBarExt->getTimeLineCheckBox()->isChecked());
    settings.sync();
}

void KelvaClientMain::saveWorkbench()
{
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    QString name = QFileDialog::getSaveFileName(this, tr("Save workbench settings"),
                                                settings.value("lastWorkbenchDir").toString(), "*.kwb");
    if (name.isEmpty())
        return;
    settings.setValue("lastWorkbenchDir", QFileInfo(name).absolutePath());
    settings.sync();
    if (!name.endsWith(".kwb")) {
        name += ".kwb";
        // The file dialog has asked for the name without the suffix.
        if (QFileInfo::exists(name) &&
            plainbox::question(this, tr("Save workbench settings"),
                               tr("%1 already exists.\nDo you want to replace it?").arg(name),
                               QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
            return;
    }
    QSaveFile file(name);              // the old file stays whole until the new one is
    file.setDirectWriteFallback(true); // where nothing but the file itself may be written
    const QByteArray state = m_layout->state();
    if (!file.open(QIODevice::WriteOnly) || file.write(state) != state.size() || !file.commit())
        plainbox::critical(this, tr("Error"), tr("Cannot write to file: ") + name);
}

void KelvaClientMain::loadWorkbench()
{
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    const QString name = QFileDialog::getOpenFileName(this, tr("Load workbench settings"),
                                                      settings.value("lastWorkbenchDir").toString(), "*.kwb");
    if (name.isEmpty())
        return;
    settings.setValue("lastWorkbenchDir", QFileInfo(name).absolutePath());
    settings.sync();
    QFile file(name);
    const bool opened = file.open(QIODevice::ReadOnly);
    const QByteArray state = opened ? file.readAll() : QByteArray();
    if (!opened || file.error() != QFile::NoError) {
        plainbox::critical(this, tr("Error"), tr("Cannot read from file: ") + name);
        return;
    }
    m_layout->restore(state);
}

void KelvaClientMain::resetSettings()
{
    const auto answer = plainbox::question(this, tr("Reset workbench"),
                                           tr("Do you want to reset the workspace to the initial state?"),
                                           QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return;
    {
        QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
        // "IsMaximized" is another key than "isMaximized", which stays: a maximised window is kept.
        for (const char *key : {"DockSettings", "InfoViewState", "InfoViewAutoResize", "TreeSortOrder",
                                "IsMaximized", "TreeSortOrderDialog", "FolderDelegateSize"})
            settings.remove(key);
    }
    m_infoView->reloadAll();
    loadScreenSettings();
    updateDocuments({});
}

void KelvaClientMain::notAvailableYet()
{
    plainbox::information(this, tr("Information"), tr("This is not available yet."));
}
