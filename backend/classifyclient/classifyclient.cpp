#include "classifyclient.h"

#include "service/archive.h"
#include "service/documentlist.h"
#include "service/documents.h"
#include "service/records.h"
#include "service/settings.h"
#include "service/subarchives.h"
#include "service/users.h"
#include "service/vocabulary.h"

#include <QCoreApplication>
#include <QFileInfo>

using kelva::Error;
using kelva::ErrorCode;
using kelva::Result;
using kelva::Session;

namespace {

constexpr int changeIntervalMs = 2000;

} // namespace

ClassifyClient::ClassifyClient(QObject *parent) : ClassifyInterface(parent)
{
    m_changes.setInterval(changeIntervalMs);
    connect(&m_changes, &QTimer::timeout, this, &ClassifyClient::lookForChanges);
    // Whoever made this object may leave it to the end of the process, and no thread must run then.
    if (QCoreApplication::instance())
        connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
                [this] { m_indexer.stop(); });
}

ClassifyInterface *ClassifyClient::createClient(QString)
{
    return new ClassifyClient;
}

QString ClassifyClient::lastMessage()
{
    return m_connection.lastError();
}

QString ClassifyClient::lastError()
{
    return m_connection.lastError();
}

QString ClassifyClient::getConnectionMode()
{
    return kelva::Connection::offlineArchive().isEmpty() ? QStringLiteral("Online")
                                                         : QStringLiteral("Offline mode");
}

bool ClassifyClient::connectClient(QString host, int port, QString user, QString password)
{
    m_connection.clearError();
    m_changes.stop();
    m_indexer.stop();
    m_login = user;
    m_host = host;
    m_port = port;
    const bool offline = !kelva::Connection::offlineArchive().isEmpty();
    const Result<void> connected =
        offline ? m_connection.openOffline() : m_connection.login(host, port, user, password);
    if (!connected) {
        Error error = connected.error();
        if (error.code == ErrorCode::WrongVersion)
            error.text = QStringLiteral("WRONGVERSION");
        m_connection.setError(error);
        return false;
    }
    if (offline)
        return publishOffline();
    m_changes.start();
    m_indexer.start(m_connection.session()->database().path());
    return true;
}

void ClassifyClient::disconnectClient()
{
    m_changes.stop();
    m_indexer.stop();
    m_connection.close();
    m_offlineBlock.reset();
}

bool ClassifyClient::publishOffline()
{
    return m_connection.perform([this](Session &session) -> Result<void> {
        const Result<QByteArray> block = kelva::workbenchBlock(session);
        if (!block)
            return block.error();
        const QString key = kelva::workbenchKey(m_login, m_host, m_port, m_profileId);
        if (!m_offlineBlock || m_offlineBlock->key() != key)
            m_offlineBlock = std::make_unique<kelva::WorkbenchSegment>(key);
        return m_offlineBlock->publish(block.value());
    });
}

void ClassifyClient::lookForChanges()
{
    Session *session = m_connection.session();
    if (!session)
        return;
    if (!QFileInfo::exists(session->database().path())) {
        disconnectClient();
        emit clientDisconnect();
        return;
    }
    if (session->takeVocabularyChange())
        emit serverRequest(QStringLiteral("DORELOADALL"));
}

QString ClassifyClient::getLoginName()
{
    return m_login;
}

QString ClassifyClient::getServerHost()
{
    return m_host;
}

int ClassifyClient::getServerPort()
{
    return m_port;
}

qint64 ClassifyClient::getProfileId()
{
    return m_profileId;
}

void ClassifyClient::setProfileId(qint64 id)
{
    m_profileId = id;
}

QString ClassifyClient::getServerVersion()
{
    return QStringLiteral("Kelva archive " KELVA_VERSION);
}

QStringList ClassifyClient::getUserRights()
{
    return m_connection.fetch([](Session &session) { return Result<QStringList>(session.roles()); },
                              QStringList());
}

void ClassifyClient::getArchiveList(QStringList &archives)
{
    archives.clear();
    // Offline the list is asked for before anything else.
    if (!m_connection.isConnected() && !kelva::Connection::offlineArchive().isEmpty()) {
        if (const Result<void> opened = m_connection.openOffline(); !opened) {
            m_connection.setError(opened.error());
            return;
        }
    }
    archives = m_connection.fetch([](Session &session) { return kelva::SubArchives(session).list(); },
                                  QStringList());
}

QString ClassifyClient::getArchiveName()
{
    return m_connection.fetch(
        [](Session &session) -> Result<QString> {
            kelva::SubArchives archives(session);
            if (session.subArchive() > 0)
                return archives.name(session.subArchive());
            const Result<QStringList> all = archives.list();
            if (!all)
                return all.error();
            return kelva::splitFields(all.value().value(0)).value(0);
        },
        QString());
}

void ClassifyClient::setCurrentArchive(QString archiveKey)
{
    m_connection.perform([&](Session &session) {
        const Result<qint64> id = kelva::SubArchives(session).find(archiveKey);
        if (id)
            session.setSubArchive(id.value());
        return id;
    });
}

void ClassifyClient::reloadServerData()
{
    m_connection.perform([](Session &session) { return session.acknowledgeVocabulary(); });
    if (m_offlineBlock)
        publishOffline();
}

void ClassifyClient::refreshSession()
{
    // Rights are looked up for every operation. What others change is not taken as known here: it may have
    // come after the data block was read.
    m_connection.perform([](Session &) { return Result<void>(); });
}

bool ClassifyClient::changeOwnPassword(QString oldPassword, QString newPassword)
{
    // Open to users whose password has expired meanwhile, too.
    return m_connection.perform(
        [&](Session &session) { return kelva::Users(session).changeOwnPassword(oldPassword, newPassword); },
        kelva::Connection::ExpiredAccounts::Allowed);
}

bool ClassifyClient::changeExpiredPassword(QString host, QString oldPassword, QString newPassword,
                                           QString user, int port)
{
    m_connection.clearError();
    const Result<QString> path = kelva::archive::fileFor(host, port);
    const Result<void> changed =
        path ? kelva::Users::changeExpiredPassword(path.value(), user, oldPassword, newPassword)
             : Result<void>(path.error());
    if (!changed)
        m_connection.setError(changed.error());
    return changed.ok();
}

QStringList ClassifyClient::getDocuments(QStringList filters)
{
    return m_connection.fetch([&](Session &session) { return kelva::listDocuments(session, filters); },
                              QStringList());
}

QStringList ClassifyClient::getDocument(QString docId, QString)
{
    return m_connection.fetch([&](Session &session) { return kelva::Documents(session).get(docId); },
                              QStringList());
}

bool ClassifyClient::saveDocument(QString docId, QStringList fields)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Documents(session).save(docId, fields); });
}

bool ClassifyClient::deleteDocumentVersion(QString docId, QString, QStringList)
{
    return m_connection.perform([&](Session &session) { return kelva::Documents(session).close(docId); });
}

qint64 ClassifyClient::countDocuments(QString where, bool)
{
    return m_connection.fetch([&](Session &session) { return kelva::Documents(session).count(where); },
                              qint64(-1));
}

qint64 ClassifyClient::countFolderDocuments(QString oidPattern, int, bool)
{
    return m_connection.fetch(
        [&](Session &session) { return kelva::Documents(session).countInFolder(oidPattern); }, qint64(-1));
}

bool ClassifyClient::getDocumentHistory(QString docId, QStringList &rows)
{
    rows = m_connection.fetch([&](Session &session) { return kelva::Documents(session).history(docId); },
                              QStringList());
    return !rows.isEmpty();
}

bool ClassifyClient::archiveDocument(qint64 docId, QString fileName, QString, QString extra)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Documents(session).classify(docId, fileName, extra); });
}

bool ClassifyClient::moveToTrash(QStringList docIds)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Documents(session).setTrashed(docIds, true); });
}

bool ClassifyClient::restoreFromTrash(QStringList docIds)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Documents(session).setTrashed(docIds, false); });
}

bool ClassifyClient::moveDocumentToArchive(qint64 docId, int target)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Documents(session).moveToSubArchive(docId, target); });
}

QStringList ClassifyClient::getMinMaxDates()
{
    return m_connection.fetch([](Session &session) { return kelva::Vocabulary(session).dateBounds(); },
                              QStringList());
}

QStringList ClassifyClient::getDescriptionCompletions()
{
    return m_connection.fetch([](Session &session) { return kelva::Vocabulary(session).descriptions(); },
                              QStringList());
}

bool ClassifyClient::getSetting(QString section, QString key, QByteArray &value, QString &owner)
{
    bool found = false;
    const kelva::Setting setting = m_connection.fetch(
        [&](Session &session) {
            const Result<kelva::Setting> result = kelva::Settings(session).get(section, key);
            found = result.ok();
            return result;
        },
        kelva::Setting());
    value = setting.value;
    owner = setting.owner;
    return found;
}

bool ClassifyClient::saveSetting(QString section, QString key, QByteArray value, QString owner, bool update)
{
    return m_connection.perform([&](Session &session) {
        return kelva::Settings(session).save(section, key, {value, owner}, update);
    });
}
