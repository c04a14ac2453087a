#include "app/kelvaclientmain.h"

#include "app/kelvachangepass.h"
#include "app/kelvadoclogin.h"
#include "app/startoptions.h"
#include "contract/classifyinterface.h"
#include "documents/kelvatrashbutton.h"
#include "documents/refreshgate.h"
#include "folders/columneditors.h"
#include "folders/kelvadoctree.h"
#include "server/archiveentry.h"
#include "server/kelvaarchiveworker.h"
#include "server/kelvalogindata.h"
#include "widgets/plainbox.h"

#include <QCloseEvent>
#include <QProcess>
#include <QProgressDialog>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QTimer>

namespace {

constexpr int blinkMs = 300;
/// There are 12 texts: the bar ends one short of full, and is meant to.
constexpr int splashSteps = 13;

/// The archive's answer to a login that does not know the user or his password.
const char wrongPassword[] = "Wrong username or password!";

/// Without a cancel button, Escape or the window's cross would still close the dialog and set the window
/// free.
class ReloadProgress final : public QProgressDialog
{
public:
    ReloadProgress(const QString &text, QWidget *parent) : QProgressDialog(text, QString(), 0, 0, parent)
    {
        setCancelButton(nullptr);
        setWindowTitle(parent->windowTitle());
    }
    void reject() override {}

protected:
    void closeEvent(QCloseEvent *event) override { event->ignore(); }
};

/// Whether the archive has the sub-archive that the profile names.
bool isKnown(ClassifyInterface &service, const kelvaProfileData &profile)
{
    QStringList archives;
    service.getArchiveList(archives);
    return ArchiveEntry::isKnown(ArchiveEntry::parse(profile.archiveEntry).key, archives);
}

/// User and password are the profile's, which only the Connection Manager can change.
void offerManager(QWidget *window, const QString &text)
{
    const QString hint =
        KelvaClientMain::tr("User and password of the profile are kept in the Connection Manager.");
    if (plainbox::failureWithOffer(window, KelvaClientMain::tr("Error"), text, hint,
                                   KelvaClientMain::tr("Open Connection Manager")))
        QProcess::startDetached(QCoreApplication::applicationDirPath() + "/kelvamanager", {});
}

} // namespace

bool KelvaClientMain::doLogin()
{
    if (m_session.offline ? !enterOfflineArchive() : !chooseProfile()) {
        QCoreApplication::quit();
        return false;
    }
    loginSplash = new KelvaDocLogin;
    // Also when an exception leaves the login: a splash without a program behind it cannot be closed.
    const auto closeSplash = qScopeGuard([this] {
        delete loginSplash;
        loginSplash = nullptr;
    });
    loginSplash->setDisplayLines(m_session.profile.displayLine1, m_session.profile.displayLine2);
    loginSplash->loginMode();
    loginSplash->show();
    loginSplash->update();
    QCoreApplication::processEvents();

    const bool connected = connectToClassification() && !m_connectionLost;
    const bool archiveKnown = connected && (m_session.offline || isKnown(*classifyClient, m_session.profile));
    if (!archiveKnown)
        loginSplash->hide();
    if (!connected) {
        // On a first login connectToClassification() has said what is wrong.
        if (!firstConnect)
            plainbox::critical(this, tr("Error"), tr("Cannot establish a connection to Kelva!"));
        close();
        return false;
    }
    if (!archiveKnown) {
        plainbox::information(
            this, tr("Information"),
            tr("The configured archive was not found. Check the settings in the Connection Manager !"));
        QCoreApplication::quit();
        return false;
    }
    firstConnect = false;
    initialized = true;
    setWindowTitle("Kelva - " + m_session.profile.displayLine1 + " - " + classifyClient->getArchiveName());
    return true;
}

bool KelvaClientMain::enterOfflineArchive()
{
    QStringList archives;
    classifyClient->getArchiveList(archives);
    if (archives.isEmpty()) {
        plainbox::information(this, tr("Information"),
                              tr("The archive information could not be read. Archive corrupt?"));
        return false;
    }
    const ArchiveEntry entry = ArchiveEntry::parse(archives.first());
    const QSignalBlocker blocker(m_currentSubArchiv);
    m_currentSubArchiv->addItem(QIcon(), entry.name, entry.key);
    return true;
}

bool KelvaClientMain::chooseProfile()
{
    kelvaLoginData login;
    QString message;
    const QString id = parseStartOptions(QCoreApplication::arguments()).profileId;
    // An id below 0 is that of a profile that was never read.
    if (!id.isEmpty() && id.toInt() >= 0 && login.getProfileById(m_session.profile, message, id.toInt()))
        return takeProfile();
    if (!login.getProfile(m_session.profile, message, this, false)) {
        if (!login.getIsUserCanceled())
            plainbox::information(this, tr("Information"), message);
        return false;
    }
    return takeProfile();
}

bool KelvaClientMain::takeProfile()
{
    m_session.login = m_session.profile.user;
    m_session.password = m_session.profile.password;
    m_session.host = m_session.profile.host;
    m_session.port = m_session.profile.port.toInt();
    classifyClient->setProfileId(m_session.profile.id);
    m_infoView->setProfileIdentifier(m_session.settingsPrefix(classifyClient->getProfileId()));

    const ArchiveEntry entry = ArchiveEntry::parse(m_session.profile.archiveEntry);
    if (!entry.hasKey) {
        plainbox::information(
            this, tr("Information"),
            tr("The archive information can not be read. Check the settings in the Connection Manager!"));
        return false;
    }
    const QSignalBlocker blocker(m_currentSubArchiv);
    m_currentSubArchiv->clear();
    m_currentSubArchiv->addItem(entry.name, entry.key);
    return true;
}

bool KelvaClientMain::doLoginWithoutDialog()
{
    return connectToClassification();
}

void KelvaClientMain::setLoginText(const QString &text)
{
    if (loginSplash)
        loginSplash->setLoginText(text);
}

bool KelvaClientMain::connectToClassification()
{
    setLoginText(tr("Checking login..."));
    if (loginSplash)
        loginSplash->setSteps(splashSteps);
    if (!classifyClient->connectClient(m_session.host, m_session.port, m_session.login, m_session.password))
        return reportFailedConnection();
    setLoginText(tr("Loading user data..."));
    m_session.rights = classifyClient->getUserRights();
    setLoginText(tr("Creating workplace..."));
    loadToolBar();
    loadSettings();
    setLoginText(tr("Initialize extended search..."));
    initExtendedSearch();
    setLoginText(tr("Loading extensions..."));
    setLoginText(tr("Loading workbench..."));
    setLoginText(tr("Loading system folders..."));
    if (!initFolders())
        return false;
    setLoginText(tr("Loading classification fields..."));
    initStatus();
    setLoginText(tr("Loading filters..."));
    loadFilters();
    setLoginText(tr("Loading screen settings..."));
    loadScreenSettings();
    uiReady = true;
    setLoginText(tr("Just one second..."));
    subArchiveChanged(0, true);
    setLoginText(tr("Finished."));

    const QStringList folders = parseStartOptions(QCoreApplication::arguments()).folderOids;
    for (const QString &oid : folders)
        if (const KelvaDocItem *folder = docTree->findItem(oid))
            m_tWOrdner->setCurrentIndex(docTree->indexFromItem(folder));
    return true;
}

bool KelvaClientMain::reportFailedConnection()
{
    const QString message = classifyClient->lastMessage();
    if (message.startsWith("Password expired"))
        return changeExpiredPass(m_session.host, m_session.login, m_session.port) &&
               connectToClassification();
    if (message == "WRONGVERSION") {
        plainbox::critical(this, tr("Error"),
                           tr("Version mismatch. Your client and server components has different versions."));
        return false;
    }
    const QString text = tr("The connection to the server could not be established: ") + message;
    if (message == wrongPassword)
        offerManager(this, text);
    else
        plainbox::critical(this, tr("Error"), text);
    classifyClient->disconnectClient();
    return false;
}

bool KelvaClientMain::changeExpiredPass(const QString &host, const QString &user, int port)
{
    KelvaChangePass dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    if (!classifyClient->changeExpiredPassword(host, dialog.getOldPass(), dialog.getNewPass(), user, port)) {
        plainbox::critical(this, tr("Error"),
                           tr("The password could not be changed: ") + classifyClient->lastMessage());
        return false;
    }
    plainbox::information(this, tr("Password changed"), tr("Password changed successfully!"));
    keepPassword(dialog.getOldPass(), dialog.getNewPass());
    return true;
}

void KelvaClientMain::changePassword()
{
    KelvaChangePass dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (!classifyClient->changeOwnPassword(dialog.getOldPass(), dialog.getNewPass())) {
        plainbox::critical(this, tr("Error"),
                           tr("The password could not be changed: ") + classifyClient->lastMessage());
        return;
    }
    plainbox::information(this, tr("Password changed"), tr("Password changed successfully!"));
    keepPassword(dialog.getOldPass(), dialog.getNewPass());
}

void KelvaClientMain::keepPassword(const QString &oldPassword, const QString &newPassword)
{
    m_session.password = newPassword;
    // The profile takes it over where it keeps the old one; otherwise the user types it there himself.
    kelvaLoginData().changePassword(m_session.profile.id, oldPassword, newPassword);
}

bool KelvaClientMain::updateAll(bool updateDocs)
{
    // It lets events run: a second one must not start on half a workplace.
    if (m_reloading)
        return true;
    m_infoView->finishEditing();
    if (!m_gate->isFree()) {
        m_gate->missReload();
        return true;
    }
    return reload(updateDocs);
}

bool KelvaClientMain::reload(bool updateDocs)
{
    bool reloaded = false;
    {
        const RefreshGate::Hold hold(*m_gate);
        const QScopedValueRollback<bool> reloading(m_reloading, true);
        m_changedWhileReloading = false;
        reloaded = reloadWorkplace(updateDocs);
    }
    if (!reloaded) {
        close();
        return false;
    }
    if (m_changedWhileReloading)
        startReloadBlink();
    if (updateDocs)
        selChanged();
    return true;
}

bool KelvaClientMain::reloadWorkplace(bool updateDocs)
{
    // Nothing may refresh the list half-way.
    if (selectTimerId != -1) {
        killTimer(selectTimerId);
        selectTimerId = -1;
    }
    disconnect(m_twStatus, SIGNAL(currentRowChanged(int)), this, SLOT(selChanged()));
    kelvaLoginData login;
    ReloadProgress progress(tr("Reloading workbench..."), this);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    progress.show();
    QCoreApplication::processEvents();

    m_editors->release();
    if (!m_session.offline)
        login.reloadProfile(m_session.profile.id);
    loadSettings();
    if (updateDocs)
        m_infoView->resetHeaders();
    // A connection that is lost half-way ends it; a dead session's answers must not be shown or stored.
    if (m_connectionLost || !initFolders() || m_connectionLost)
        return false;
    initStatus();
    if (m_connectionLost)
        return false;
    loadFilters();
    emit updatePluginData();
    classifyClient->refreshSession();
    stopReloadBlink();
    resetFilters(false, true);
    QCoreApplication::processEvents();
    reloadPending = false;
    // initStatus() has connected the pair as well; two connections would refresh twice.
    disconnect(m_twStatus, SIGNAL(currentRowChanged(int)), this, SLOT(selChanged()));
    connect(m_twStatus, SIGNAL(currentRowChanged(int)), this, SLOT(selChanged()), Qt::DirectConnection);
    return true;
}

void KelvaClientMain::clientDisconnected()
{
    m_connectionLost = true; // a login or a reload that is under way ends with it
    archiveWorker->cancelStreaming();
    plainbox::critical(this, tr("Error"), tr("Cannot establish a connection to Kelva!"));
    classifyClient->disconnectClient();
    close();
    // Whatever dialog is still open must not keep the process; the settings are saved on the way out.
    QCoreApplication::quit();
}

void KelvaClientMain::handleServerRequest(QString request)
{
    if (request != "DORELOADALL")
        return;
    m_changedWhileReloading = m_reloading;
    startReloadBlink();
}

void KelvaClientMain::startReloadBlink()
{
    stopReloadBlink();
    reloadBlinkTimer = new QTimer(this);
    connect(reloadBlinkTimer, SIGNAL(timeout()), this, SLOT(blinkReload()));
    reloadBlinkTimer->start(blinkMs);
}

void KelvaClientMain::stopReloadBlink()
{
    if (reloadBlinkTimer) {
        reloadBlinkTimer->disconnect(this);
        reloadBlinkTimer->stop();
        delete reloadBlinkTimer;
    }
    action_ReloadAll->setIcon(QIcon(":/icons/folderreload.png"));
    reloadBlinkTimer = nullptr;
}

void KelvaClientMain::blinkReload()
{
    bool ok = false;
    const bool red = action_ReloadAll->data().toInt(&ok) != 0 && ok;
    action_ReloadAll->setIcon(QIcon(red ? ":/icons/folderreload.png" : ":/icons/folderreloadred.png"));
    action_ReloadAll->setData(red ? 0 : 1);
}
