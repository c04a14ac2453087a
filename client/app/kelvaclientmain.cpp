#include "app/kelvaclientmain.h"

#include "app/kelvaabout.h"
#include "app/panelswitcher.h"
#include "app/programversion.h"
#include "app/proxysettings.h"
#include "app/startoptions.h"
#include "app/windowlayout.h"
#include "contract/classifyinterface.h"
#include "contract/kelvaarchiveclientinterface.h"
#include "documents/kelvatrashbutton.h"
#include "documents/qinfoviewmodel.h"
#include "documents/refreshgate.h"
#include "documents/searchcell.h"
#include "extensions/qttoolbarmanager.h"
#include "folders/columneditors.h"
#include "folders/kelvadoctree.h"
#include "search/kelvastatusbarext.h"
#include "server/kelvaarchiveworker.h"
#include "server/openeddocuments.h"
#include "widgets/plainbox.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QDockWidget>
#include <QEventLoopLocker>
#include <QHeaderView>
#include <QHostInfo>
#include <QLabel>
#include <QMenu>
#include <QNetworkProxyFactory>
#include <QPluginLoader>
#include <QSettings>
#include <QUrl>

namespace {

const char helpAddress[] =
    "https://www.kelva.example/index.php/de/downloads/produktinformationen-handbuecher";

/// The plug-in's instance; null with a trace line when it cannot be loaded. The loader may go: the plug-in
/// stays loaded.
QObject *loadPlugin(const QString &fileName)
{
    const QString path = QCoreApplication::applicationDirPath() + QDir::separator() + fileName;
    QPluginLoader loader;
    loader.setFileName(path);
    if (!loader.load()) {
        qDebug() << "Unable to load " << path << loader.errorString();
        return nullptr;
    }
    return loader.instance();
}

/// Copies that were opened in an earlier session and changed there are the user's now.
void sayChangedDocuments(QWidget *window)
{
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    const QStringList changed = openeddocuments::clearUp(settings, QDateTime::currentDateTime());
    if (!changed.isEmpty())
        plainbox::information(
            window, KelvaClientMain::tr("Information"),
            KelvaClientMain::tr(
                "Copies of documents that you opened were changed. They are kept here, and not in "
                "the archive:") +
                '\n' + changed.join('\n'));
}

} // namespace

KelvaClientMain::KelvaClientMain(QWidget *parent)
    : QMainWindow(parent),
      docTree(new KelvaDocTree(tr("Folders"), true, QString(), QString(), nullptr)),
      statusBarExt(new kelvastatusbarext),
      archiveWorker(new KelvaArchiveWorker),
      toolBarManager(new QtToolBarManager(this)),
      m_gate(new RefreshGate(this))
{
    toolBarManager->setMainWindow(this);
    m_trashButton = statusBarExt->getTrashButton();
    archiveWorker->setParentWidget(this);
    setupUi(this);
    m_editors = std::make_unique<ColumnEditors>(m_infoView);
    setupPanels();
    connectPanels();
    clientIdent = QStringLiteral("Kelva Client#%1#%2#").arg(programversion::text, QHostInfo::localHostName());
}

void KelvaClientMain::setupPanels()
{
    m_searchCell = new SearchCell(m_SearchString);

    m_tWOrdner->setSaveState(true, "kelvaMainFolderView");
    setDockNestingEnabled(true);
    m_layout = std::make_unique<WindowLayout>(
        this, WindowLayout::Panels{m_dockFolder, m_dockStatus, m_dockSearch, m_dockDocuments, m_twStatus});
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    m_infoView->horizontalHeader()->setSectionsMovable(true);
    m_infoView->horizontalHeader()->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_infoView->verticalHeader()->hide();
    updateFolderColumn();

    // A dock that was closed comes back from here.
    m_menuView->addSeparator();
    for (const QDockWidget *dock : {m_dockFolder, m_dockStatus, m_dockSearch, m_dockDocuments})
        m_menuView->addAction(dock->toggleViewAction());

    auto *linkMenu = new QMenu(this);
    linkMenu->addActions({action_Link_Email, action_Link_Clip});
    action_Link->setMenu(linkMenu);
    action_MoveToArchive->setMenu(new QMenu(this));

    groupBox_Search->setStyleSheet(
        "QGroupBox::title { subcontrol-position: top center; subcontrol-origin: margin; "
        "padding-top: 0px;padding-left:1px;padding-right:1px;} QGroupBox { border: 1px "
        "solid gray;border-radius: 5px;margin-top: 1ex;}");
    centralWidget()->hide();
    // Set by the form as well, but this is the one way to give the bar its place.
    statusBar()->insertPermanentWidget(0, statusBarExt, 0);
    m_selectedCount = new QLabel(statusBar());
    statusBar()->insertPermanentWidget(0, m_selectedCount, 0);
    m_selectedCount->hide();
    new PanelSwitcher(this, {m_tWOrdner, m_twStatus, m_treeSearch, m_SearchString, m_infoView});
    connect(action_SelectAll, SIGNAL(triggered()), m_infoView, SLOT(selectAll()));
}

void KelvaClientMain::connectPanels()
{
    connect(m_infoView, SIGNAL(doubleClicked(QModelIndex)), this, SLOT(documentDoubleClicked(QModelIndex)));
    connect(m_currentSubArchiv, SIGNAL(currentIndexChanged(int)), this, SLOT(subArchiveChanged(int)));
    connect(m_infoView->selectionModel(), SIGNAL(selectionChanged(QItemSelection, QItemSelection)), this,
            SLOT(docSelChanged(QItemSelection)));
    connect(m_infoView->getModel(), SIGNAL(dataChanged(QModelIndex, QModelIndex)), this,
            SLOT(infoViewItemChanged()));
    connect(m_gate, SIGNAL(opened()), this, SLOT(catchUp()));
    connect(m_infoView, SIGNAL(redrawMain()), this, SLOT(repaint()));
    connect(m_bSuchen, SIGNAL(clicked()), this, SLOT(searchClicked()));
    connect(m_bClearSuchen, SIGNAL(clicked()), this, SLOT(doClearSearch()));
    connect(m_bClearSuchen2, SIGNAL(clicked()), this, SLOT(doClearSearch()));
    connect(m_bFilterBearbeiten, SIGNAL(clicked()), this, SLOT(doEditFilters()));
    connect(action_About, SIGNAL(triggered(bool)), this, SLOT(showAbout()));
    connect(action_Hilfe, SIGNAL(triggered(bool)), this, SLOT(showHelp()));
}

KelvaClientMain::~KelvaClientMain()
{
    saveScreenSettings();
    if (classifyClient) {
        classifyClient->disconnectClient();
        classifyClient->deleteLater();
    }
    delete archiveWorker;
    docTree->deleteLater();
    m_editors.reset(); // before the table that its delegates are children of
    toolBarManager->deleteLater();
    statusBarExt->deleteLater();
    delete archiveInterface; // the last one: every client that it made is gone
    QCoreApplication::quit();
}

bool KelvaClientMain::init()
{
    // The window is still hidden: without the lock the first box or chooser that closes would end the
    // program.
    const QEventLoopLocker locker;
    writeApplicationInfo(programversion::application, QString("%1").arg(programversion::text),
                         QString("%1").arg(programversion::build));
    initProxy();
    if (!loadClassificationPlugin() || !loadArchivePlugin()) {
        plainbox::critical(this, tr("Error"), tr("Cannot load classify plugin!")); // the same for both
        QCoreApplication::quit();
        return false;
    }
    if (!doLogin()) {
        QCoreApplication::quit();
        return false;
    }
    show();
    sayChangedDocuments(this);
    return true;
}

void KelvaClientMain::show()
{
    QWidget::show();
    // They came up before the window did, and would lie behind one that is maximised.
    for (QDockWidget *dock : {m_dockFolder, m_dockStatus, m_dockSearch, m_dockDocuments})
        if (dock->isFloating() && dock->isVisible()) {
            dock->hide();
            dock->show();
        }
}

void KelvaClientMain::writeApplicationInfo(const QString &name, const QString &version, const QString &build)
{
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    settings.beginGroup("Software" + name); // one flat group, no separator in between
    settings.setValue("Name", name);
    settings.setValue("Version", version);
    settings.setValue("Build", build);
    settings.endGroup();
}

void KelvaClientMain::initProxy()
{
    const ProxySettings settings =
        readProxySettings(QSettings("Norbant GmbH", QCoreApplication::applicationName()));
    if (settings.useSystem)
        QNetworkProxyFactory::setUseSystemConfiguration(true);
    else
        QNetworkProxy::setApplicationProxy(settings.proxy);
}

bool KelvaClientMain::loadClassificationPlugin()
{
    QObject *instance = loadPlugin("libclassifyclient.so");
    if (!instance)
        return false;
    // The plug-in has a meta object of its own for the interface, so only the identifier finds it.
    classifyClient = static_cast<ClassifyInterface *>(instance->qt_metacast(CLASSIFY_INTERFACE_IID));
    if (!classifyClient)
        return false;
    classifyClient = classifyClient->createClient(QString());
    if (!classifyClient)
        return false;
    m_session.offline = classifyClient->getConnectionMode().startsWith("Offline");
    if (m_session.offline) {
        qDebug("Client in offline mode...");
        disconnect(statusBarExt->getShowUnReadCheckBox(), SIGNAL(clicked()), this, SLOT(doUpdateDocuments()));
        statusBarExt->getShowUnReadCheckBox()->hide();
        return true;
    }
    connect(classifyClient, SIGNAL(clientDisconnect()), this, SLOT(clientDisconnected()));
    connect(classifyClient, SIGNAL(serverRequest(QString)), this, SLOT(handleServerRequest(QString)));
    return true;
}

bool KelvaClientMain::loadArchivePlugin()
{
    QObject *instance = loadPlugin("libkelvaarchiveclient.so");
    if (!instance)
        return false;
    archiveInterface =
        static_cast<kelvaArchiveClientInterface *>(instance->qt_metacast(KELVA_ARCHIVE_CLIENT_INTERFACE_IID));
    return archiveInterface != nullptr;
}

void KelvaClientMain::showAbout()
{
    KelvaAbout about(this);
    about.setInformation(m_session.profile.displayLine1, m_session.profile.displayLine2,
                         classifyClient->getServerVersion());
    about.exec();
}

void KelvaClientMain::showHelp()
{
    QDesktopServices::openUrl(QUrl(QUrl::fromPercentEncoding(helpAddress)));
}

bool KelvaClientMain::event(QEvent *event)
{
    // An open menu without a tip of its own would wipe the count of documents off the status bar.
    if (event->type() == QEvent::StatusTip && static_cast<QStatusTipEvent *>(event)->tip().isEmpty())
        return true;
    return QMainWindow::event(event);
}

void KelvaClientMain::closeEvent(QCloseEvent *event)
{
    if (isVisible() && initialized)
        m_layout->note();
    QMainWindow::closeEvent(event);
    emit closed();
}
