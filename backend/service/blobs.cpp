#include "service/blobs.h"

#include "service/session.h"

#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace kelva {
namespace {

constexpr int pieceSize = 256 * 1024;
/// Pieces held in memory before they are written.
constexpr int batch = 32;

Error cancelled()
{
    return {ErrorCode::Refused, QStringLiteral("The transfer was cancelled.")};
}

/// This computer and what process ids mean on it: a container counts its own.
QString processSpace()
{
    return QSysInfo::machineHostName() + QLatin1Char('/') +
           QFile::symLinkTarget(QStringLiteral("/proc/self/ns/pid")).section(QLatin1Char('/'), -1);
}

/// Who works at an upload, and when it last did: time, process space and process id.
QString uploadMark(const Session &session)
{
    return QStringLiteral("%1 %2 %3").arg(session.timestamp(), processSpace()).arg(::getpid());
}

/// A process of this computer that is no more, or one of any that has not been at it for a day.
bool isAbandoned(const Session &session, const QString &mark)
{
    const QString yesterday = session.today().addDays(-1).toString(Qt::ISODate) +
                              session.timestamp().mid(QStringLiteral("yyyy-MM-dd").size());
    if (mark < yesterday)
        return true;
    const auto pid = static_cast<pid_t>(mark.section(QLatin1Char(' '), 2, 2).toInt());
    return pid > 0 && mark.section(QLatin1Char(' '), 1, 1) == processSpace() && ::kill(pid, 0) != 0 &&
           errno == ESRCH;
}

} // namespace

void removeAbandonedUploads(Session &session)
{
    Database &database = session.database();
    QVector<qint64> abandoned;
    for (Query row = database.query(QStringLiteral("SELECT id, touched FROM blob WHERE touched IS NOT NULL"));
         row.next();)
        if (isAbandoned(session, row.text(1)))
            abandoned.append(row.number(0));
    for (const qint64 blob : qAsConst(abandoned))
        database.run(QStringLiteral("DELETE FROM blob WHERE id = ? AND touched IS NOT NULL"), {blob});
}

BlobWriter::~BlobWriter()
{
    if (!m_staged || m_kept)
        return;
    Transaction writing(m_session.database(), Transaction::Kind::Write);
    m_session.database().run(QStringLiteral("DELETE FROM blob WHERE id = ? AND touched IS NOT NULL"),
                             {m_blob});
    // Should this fail as well, a later writer clears up.
    (void)writing.commit().ok();
}

Result<void> BlobWriter::readAll(QFile &file, const Content::Progress &progress)
{
    // An empty file is reported as well: it has arrived with its first look.
    if (file.size() == 0 && progress && !progress(0))
        return cancelled();
    for (;;) {
        const QByteArray piece = file.read(pieceSize);
        if (piece.isEmpty())
            break;
        m_hash.add(piece);
        m_size += piece.size();
        m_pieces << piece;
        if (m_pieces.size() == batch)
            if (const Result<void> staged = stage(); !staged)
                return staged;
        if (progress && !progress(m_size))
            return cancelled();
    }
    if (file.error() != QFileDevice::NoError)
        return Error{
            ErrorCode::Storage,
            QStringLiteral("The file %1 cannot be read: %2").arg(file.fileName(), file.errorString())};
    return {};
}

Result<void> BlobWriter::stage()
{
    Transaction writing(m_session.database(), Transaction::Kind::Write);
    if (m_blob == 0) {
        removeAbandonedUploads(m_session);
        startBlob(true);
    } else {
        m_session.database().run(QStringLiteral("UPDATE blob SET touched = ? WHERE id = ?"),
                                 {uploadMark(m_session), m_blob});
    }
    insertPieces();
    const Result<void> done = writing.commit();
    m_staged = m_staged || done.ok();
    return done;
}

void BlobWriter::startBlob(bool unfinished)
{
    m_blob = m_session.database().insert(QStringLiteral("INSERT INTO blob(touched) VALUES(?)"),
                                         {unfinished ? QVariant(uploadMark(m_session)) : QVariant()});
}

void BlobWriter::insertPieces()
{
    Statement insert(m_session.database(),
                     QStringLiteral("INSERT INTO blob_piece(blob, number, data) VALUES(?, ?, ?)"));
    for (const QByteArray &piece : qAsConst(m_pieces))
        insert.run({m_blob, m_number++, piece});
    m_pieces.clear();
}

Result<qint64> BlobWriter::finish()
{
    Database &database = m_session.database();
    if (m_blob == 0)
        startBlob(false);
    insertPieces();
    database.run(QStringLiteral("UPDATE blob SET size = ?, sha256 = ?, touched = NULL WHERE id = ?"),
                 {m_size, m_hash.result(), m_blob});
    if (!database.failed() && database.affected() == 0)
        return Error{ErrorCode::Conflict, QStringLiteral("The transfer took too long and was broken off.")};
    return database.result(m_blob);
}

qint64 insertBlob(Database &database, const QByteArray &content)
{
    const qint64 blob = database.insert(QStringLiteral("INSERT INTO blob(size, sha256) VALUES(?, ?)"),
                                        {content.size(), Checksum::of(content)});
    int number = 0;
    for (int at = 0; at < content.size(); at += pieceSize)
        database.run(QStringLiteral("INSERT INTO blob_piece(blob, number, data) VALUES(?, ?, ?)"),
                     {blob, number++, content.mid(at, pieceSize)});
    return blob;
}

Result<void> copyBlob(Database &database, qint64 blob, const QString &path, const Content::Progress &progress)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return Error{ErrorCode::Storage, QStringLiteral("The file %1 cannot be written.").arg(path)};
    const QByteArray expected =
        database.value(QStringLiteral("SELECT sha256 FROM blob WHERE id = ?"), {blob}).toByteArray();
    Checksum hash;
    qint64 done = 0;
    // One statement per piece: events may run in between, and a blob never changes.
    for (int number = 0;; ++number) {
        const QVariant piece = database.value(
            QStringLiteral("SELECT data FROM blob_piece WHERE blob = ? AND number = ?"), {blob, number});
        if (database.failed())
            return database.error();
        if (!piece.isValid())
            break;
        const QByteArray bytes = piece.toByteArray();
        if (file.write(bytes) != bytes.size())
            return Error{ErrorCode::Storage,
                         QStringLiteral("The file %1 cannot be written: %2").arg(path, file.errorString())};
        hash.add(bytes);
        done += bytes.size();
        if (progress && !progress(done))
            return cancelled();
    }
    if (!file.flush())
        return Error{ErrorCode::Storage,
                     QStringLiteral("The file %1 cannot be written: %2").arg(path, file.errorString())};
    if (hash.result() != expected)
        return Error{ErrorCode::NotAnArchive, QStringLiteral("The stored file is damaged.")};
    return {};
}

QStringList blobFaults(Database &database)
{
    QStringList faults;
    const QVector<qint64> blobs =
        database.numbers(QStringLiteral("SELECT id FROM blob WHERE touched IS NULL"));
    if (database.failed())
        faults << QStringLiteral("Not every content can be found.");
    for (const qint64 blob : blobs) {
        Checksum hash;
        for (const qint64 piece : database.numbers(
                 QStringLiteral("SELECT id FROM blob_piece WHERE blob = ? ORDER BY number"), {blob}))
            hash.add(database.value(QStringLiteral("SELECT data FROM blob_piece WHERE id = ?"), {piece})
                         .toByteArray());
        if (hash.result() !=
            database.value(QStringLiteral("SELECT sha256 FROM blob WHERE id = ?"), {blob}).toByteArray())
            faults << QStringLiteral("The content %1 does not match its checksum.").arg(blob);
    }
    return faults;
}

} // namespace kelva
