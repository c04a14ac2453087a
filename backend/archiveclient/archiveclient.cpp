#include "archiveclient.h"

#include "service/archive.h"
#include "service/blobs.h"
#include "service/documents.h"
#include "service/subarchives.h"
#include "service/temporaryfiles.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopeGuard>
#include <QScopedValueRollback>

using kelva::Action;
using kelva::Content;
using kelva::Error;
using kelva::ErrorCode;
using kelva::Result;
using kelva::Session;

namespace {

/// Often enough for a progress bar, seldom enough to cost nothing.
constexpr qint64 reportIntervalMs = 40;

} // namespace

kelvaArchiveClientInterface *ArchiveClient::createClient(QString)
{
    return new ArchiveClient;
}

QString ArchiveClient::lastError()
{
    return m_connection.lastError();
}

bool ArchiveClient::connectToArchive(QString host, int port)
{
    if (isBusy())
        return false;
    m_connection.clearError();
    m_connection.close();
    m_host = host;
    m_port = port;
    m_reachable = true;
    if (!kelva::Connection::offlineArchive().isEmpty())
        return true;
    const Result<QString> path = kelva::archive::fileFor(host, port);
    m_reachable = path.ok() && QFileInfo::exists(path.value());
    if (!path)
        m_connection.setError(path.error());
    else if (!m_reachable)
        m_connection.setError(
            {ErrorCode::NotFound, QStringLiteral("There is no archive at %1.").arg(path.value())});
    return m_reachable;
}

bool ArchiveClient::login(QString user, QString password)
{
    if (isBusy())
        return false;
    m_connection.clearError();
    if (!m_reachable) {
        m_connection.setError(
            {ErrorCode::BadInput, QStringLiteral("There is no connection to the archive.")});
        return false;
    }
    const bool offline = !kelva::Connection::offlineArchive().isEmpty();
    const Result<void> done =
        offline ? m_connection.openOffline() : m_connection.login(m_host, m_port, user, password);
    if (!done)
        m_connection.setError(done.error());
    kelva::clearTemporaryFiles();
    if (done.ok() && !offline)
        kelva::removeAbandonedUploads(*m_connection.session());
    return done.ok();
}

bool ArchiveClient::disconnectFromArchive()
{
    m_cancelled = true;
    m_reachable = false;
    // The transfer below us still works with the session.
    if (!m_transferring)
        m_connection.close();
    return true;
}

bool ArchiveClient::selectArchive(QString archiveKey)
{
    return m_connection.perform([&](Session &session) {
        const Result<qint64> id = kelva::SubArchives(session).find(archiveKey);
        if (id)
            session.setSubArchive(id.value());
        return id;
    });
}

bool ArchiveClient::getSubArchives(QStringList &archives)
{
    archives = m_connection.fetch([](Session &session) { return kelva::SubArchives(session).list(); },
                                  QStringList());
    return !archives.isEmpty();
}

bool ArchiveClient::countSubArchiveDocuments(int &count)
{
    count = m_connection.fetch(
        [](Session &session) { return kelva::SubArchives(session).countDocuments(session.subArchive()); },
        -1);
    return count >= 0;
}

bool ArchiveClient::createSubArchive(QString name, QString comment)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::SubArchives(session).create(name, comment); });
}

bool ArchiveClient::renameSubArchive(int id, QString name)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::SubArchives(session).rename(id, name); });
}

bool ArchiveClient::deleteSubArchive(int id)
{
    return m_connection.perform([&](Session &session) { return kelva::SubArchives(session).remove(id); });
}

bool ArchiveClient::isBusy()
{
    if (m_transferring)
        m_connection.setError({ErrorCode::Busy, QStringLiteral("A transfer is running.")});
    return m_transferring;
}

Content::Progress ArchiveClient::startTransfer(qint64 bytes)
{
    m_cancelled = false;
    m_sinceReport.start();
    emit totalFileSize(QString::number(bytes));
    return [this, bytes](qint64 done) {
        if (done == bytes || m_sinceReport.elapsed() >= reportIntervalMs) {
            m_sinceReport.restart();
            emit currentReadSize(QString::number(done));
            QCoreApplication::processEvents();
        }
        return !m_cancelled;
    };
}

bool ArchiveClient::uploadDocument(QString archive, QString localFile, bool newDocument)
{
    if (isBusy())
        return false;
    const QScopedValueRollback<bool> transferring(m_transferring, true);
    return m_connection.perform([&](Session &session) -> Result<void> {
        const auto restore =
            qScopeGuard([&session, selected = session.subArchive()] { session.setSubArchive(selected); });
        if (!archive.trimmed().isEmpty()) {
            const Result<qint64> id = kelva::SubArchives(session).find(archive);
            if (!id)
                return id.error();
            session.setSubArchive(id.value());
        }
        const qint64 bytes = QFileInfo(localFile).size();
        const Content::Progress report = startTransfer(bytes);
        const Result<qint64> stored = Content(session).store(localFile, newDocument, [&](qint64 done) {
            const bool goOn = report(done);
            if (goOn && done == bytes)
                emit saveDocEnd();
            return goOn;
        });
        if (!stored)
            return stored.error();
        m_lastDocument = stored.value();
        return {};
    });
}

bool ArchiveClient::downloadDocument(int docId, QString &path, int mode)
{
    path.clear();
    if (isBusy())
        return false;
    if (mode < 0 || mode > 2) {
        m_connection.setError({ErrorCode::BadInput, QStringLiteral("The kind of transfer is not known.")});
        return false;
    }
    const QScopedValueRollback<bool> transferring(m_transferring, true);
    path = m_connection.fetch(
        [&](Session &session) -> Result<QString> {
            const Result<qint64> bytes = Content(session).size(docId);
            if (!bytes)
                return bytes.error();
            return Content(session).fetch(docId, static_cast<Action>(mode), startTransfer(bytes.value()));
        },
        QString());
    return !path.isEmpty();
}

qint64 ArchiveClient::getLastDocId()
{
    return m_lastDocument;
}

void ArchiveClient::cancelStreaming()
{
    m_cancelled = true;
}

QStringList ArchiveClient::searchDocuments(QString query)
{
    return m_connection.fetch([&](Session &session) { return Content(session).search(query); },
                              QStringList());
}

QStringList ArchiveClient::getDocumentInfo(QStringList docIds)
{
    return m_connection.fetch([&](Session &session) { return Content(session).info(docIds); }, QStringList());
}

bool ArchiveClient::getDocumentActions(QStringList docIds, QStringList &actions, int mode, QString user)
{
    bool done = false;
    actions = m_connection.fetch(
        [&](Session &session) {
            const Result<QStringList> found = Content(session).actions(docIds, mode, user);
            done = found.ok();
            return found;
        },
        QStringList());
    return done;
}

bool ArchiveClient::deleteDocument(QString docId, QStringList comment)
{
    return m_connection.perform(
        [&](Session &session) { return Content(session).remove(docId, comment.join(QLatin1Char('\n'))); });
}

bool ArchiveClient::writeDocumentInfo(int, int)
{
    return m_connection.refuseUnavailable();
}

bool ArchiveClient::moveDocToArchive(qint64 docId, int target)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Documents(session).moveToSubArchive(docId, target); });
}

void ArchiveClient::getApiStatistics(qint64 &today, qint64 &total, qint64 &failed)
{
    today = 0;
    total = 0;
    failed = 0;
}
