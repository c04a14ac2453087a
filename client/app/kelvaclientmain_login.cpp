#include "app/kelvaclientmain.h"

#include "app/kelvachangepass.h"
#include "app/kelvadoclogin.h"
#include "app/startoptions.h"
#include "documents/kelvatrashbutton.h"
#include "folders/kelvadoctree.h"
#include "server/classifyinterface.h"
#include "server/kelvalogindata.h"
#include "server/plainbox.h"
#include "server/recordformat.h"

#include <QCloseEvent>
#include <QProgressDialog>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QTimer>

namespace {

constexpr int blinkMs = 300;
/// There are 12 texts: the bar ends one short of full, and is meant to.
constexpr int splashSteps = 13;

/// Without a cancel button, Escape or the window's cross would still close the dialog and set the window
/// free.
class ReloadProgress final : public QProgressDialog
{
public:
    ReloadProgress(const QString &text, QWidget *parent) : QProgressDialog(text, QString(), 0, 0, parent)
    {
        setCancelButton(nullptr);
    }
    void reject() override {}

protected:
    void closeEvent(QCloseEvent *event) override { event->ignore(); }
};

QStringList archiveFields(const QString &entry)
{
    return entry.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
}

} // namespace

bool KelvaClientMain::doLogin()
{
    if (offlineMode ? !enterOfflineArchive() : !chooseProfile()) {
        QCoreApplication::quit();
        return false;
    }
    loginSplash = new KelvaDocLogin;
    // Also when an exception leaves the login: a splash without a program behind it cannot be closed.
    const auto closeSplash = qScopeGuard([this] {
        delete loginSplash;
        loginSplash = nullptr;
    });
    loginSplash->setDisplayLines(profile.displayLine1, profile.displayLine2);
    loginSplash->loginMode();
    loginSplash->show();
    loginSplash->update();
    QCoreApplication::processEvents();

    const bool connected = connectToClassification() && !m_connectionLost;
    const bool archiveKnown = connected && (offlineMode || isArchiveKnown());
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
    setWindowTitle("Kelva - " + profile.displayLine1 + " - " + classifyClient->getArchiveName());
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
    const QStringList fields = archiveFields(archives.first());
    const QSignalBlocker blocker(m_currentSubArchiv);
    m_currentSubArchiv->addItem(QIcon(), fields.value(0), fields.value(fields.size() > 1 ? 1 : 0));
    return true;
}

bool KelvaClientMain::chooseProfile()
{
    kelvaLoginData login;
    QString message;
    const QString id = parseStartOptions(QCoreApplication::arguments()).profileId;
    if (!id.isEmpty() && login.getProfileById(profile, message, id.toInt()))
        return takeProfile();
    if (!login.getProfile(profile, message, this, false)) {
        if (!login.getIsUserCanceled())
            plainbox::information(this, tr("Information"), message);
        return false;
    }
    return takeProfile();
}

bool KelvaClientMain::takeProfile()
{
    loginName = profile.user;
    loginPassword = profile.password;
    serverHost = archiveHost = profile.host;
    serverPort = archivePort = profile.port.toInt();
    classifyClient->setProfileId(profile.id);
    profileIdentifier =
        QStringLiteral("kelvaClientSettings1408_%1_%2_%3")
            .arg(serverHost, QString::number(serverPort), QString::number(classifyClient->getProfileId()));
    m_infoView->setProfileIdentifier(profileIdentifier);

    const QStringList fields = archiveFields(profile.archiveEntry);
    if (fields.size() != 2) {
        plainbox::information(
            this, tr("Information"),
            tr("The archive information can not be read. Check the settings in the Connection Manager!"));
        return false;
    }
    const QSignalBlocker blocker(m_currentSubArchiv);
    m_currentSubArchiv->clear();
    m_currentSubArchiv->addItem(fields.at(0), fields.at(1));
    return true;
}

bool KelvaClientMain::isArchiveKnown()
{
    QStringList archives;
    classifyClient->getArchiveList(archives);
    const QString key = archiveFields(profile.archiveEntry).value(1);
    for (const QString &archive : qAsConst(archives)) {
        const QStringList fields = archiveFields(archive);
        if (fields.value(fields.size() > 1 ? 1 : 0) == key)
            return true;
    }
    return false;
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
    if (!classifyClient->connectClient(serverHost, serverPort, loginName, loginPassword))
        return reportFailedConnection();
    setLoginText(tr("Loading user data..."));
    userRights = classifyClient->getUserRights();
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
        return changeExpiredPass(serverHost, loginName, serverPort) && connectToClassification();
    if (message == "WRONGVERSION") {
        plainbox::critical(this, tr("Error"),
                           tr("Version mismatch. Your client and server components has different versions."));
        return false;
    }
    plainbox::critical(this, tr("Error"),
                       tr("The connection to the server could not be established: ") + message);
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
    loginPassword = dialog.getNewPass();
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
    loginPassword = dialog.getNewPass();
}

bool KelvaClientMain::updateAll(bool updateDocs)
{
    // It lets events run: a second one must not start on half a workplace.
    if (m_reloading)
        return true;
    m_infoView->finishEditing();
    bool reloaded = false;
    {
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

    releaseFixedDelegates();
    login.reloadProfile(profile.id);
    loadSettings();
    if (updateDocs)
        m_infoView->resetHeaders();
    if (!initFolders())
        return false;
    initStatus();
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
    m_connectionLost = true; // a login that is under way ends with it
    plainbox::critical(this, tr("Error"), tr("Cannot establish a connection to Kelva!"));
    classifyClient->disconnectClient();
    close();
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
