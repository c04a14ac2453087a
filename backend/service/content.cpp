#include "service/content.h"

#include "contract/recordformat.h"
#include "service/blobs.h"
#include "service/documentfilter.h"
#include "service/filetexts.h"
#include "service/operation.h"
#include "service/records.h"
#include "service/recordvalues.h"
#include "service/retention.h"
#include "service/rights.h"
#include "service/temporaryfiles.h"
#include "service/visibledocuments.h"
#include "store/schema.h"
#include "store/textindex.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <sys/stat.h>

namespace kelva {
namespace {

constexpr int maximumFileName = 254;

Error noDocument()
{
    return {ErrorCode::NotFound, QStringLiteral("The document does not exist.")};
}

Error noFile()
{
    return {ErrorCode::NotFound, QStringLiteral("The document has no file, or it has been deleted.")};
}

QVector<qint64> parseIds(const QStringList &texts)
{
    QVector<qint64> ids;
    for (const QString &text : texts) {
        bool isNumber = false;
        const qint64 id = text.toLongLong(&isNumber);
        if (isNumber)
            ids.append(id);
    }
    return ids;
}

void recordEvent(Session &session, qint64 archiveId, Action action,
                 const QString &comment = QStringLiteral(""))
{
    session.database().run(QStringLiteral("INSERT INTO event(document, action, time, login, account, comment)"
                                          " VALUES(?, ?, ?, ?, ?, ?)"),
                           {archiveId, static_cast<int>(action), session.timestamp(), session.login(),
                            session.account(), storedText(comment)});
}

/// Cuts a long name in its middle: the suffix says what the file is.
QString storedFileName(const QString &name)
{
    const int excess = name.size() - maximumFileName;
    const QString suffix = QFileInfo(name).suffix();
    const int cut = name.size() - suffix.size() - 1 - excess;
    const bool cutBase = excess > 0 && cut > 0;
    return storedText(cutBase ? name.left(cut) + QLatin1Char('.') + suffix : name, maximumFileName)
        .toString();
}

/// Closing a file takes all of the process's locks on it away, those of the archive's connections too. So the
/// archive and the files beside it are never opened, under whatever name.
bool isArchiveItself(const Database &database, const QString &file)
{
    struct stat wanted
    {
    };
    if (::stat(QFile::encodeName(file).constData(), &wanted) != 0)
        return false;
    for (const char *suffix : {"", "-wal", "-shm"}) {
        struct stat own
        {
        };
        if (::stat(QFile::encodeName(database.path() + QLatin1String(suffix)).constData(), &own) == 0 &&
            own.st_dev == wanted.st_dev && own.st_ino == wanted.st_ino)
            return true;
    }
    return false;
}

Result<void> copyToNewFile(Database &database, qint64 blob, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::NewOnly))
        return Error{ErrorCode::Storage,
                     QStringLiteral("The file %1 cannot be made: %2").arg(path, file.errorString())};
    file.close();
    const Result<void> copied = copyBlob(database, blob, path, {});
    if (!copied)
        file.remove();
    return copied;
}

qint64 blobOf(Database &database, qint64 archiveId)
{
    return database
        .value(QStringLiteral("SELECT v.blob FROM file_version v JOIN document d ON d.id = v.document"
                              " AND d.version = v.version WHERE d.id = ? AND d.deleted = 0"),
               {archiveId})
        .toLongLong();
}

bool mayWriteDocument(Session &session, qint64 archiveId)
{
    bool filed = false;
    for (const QString &folder : session.database().texts(
             QStringLiteral("SELECT folder FROM classification WHERE document = ?"), {archiveId})) {
        filed = true;
        if (session.access().mayWrite(folder))
            return true;
    }
    return !filed;
}

/// The newest document of a name in a sub-archive that the session may change; 0 when there is none. Refused
/// when it sees one but may not change it.
Result<qint64> documentNamed(Session &session, qint64 subArchive, const QString &fileName)
{
    bool sees = false;
    for (const qint64 id : session.database().numbers(
             QStringLiteral("SELECT id FROM document WHERE subarchive = ? AND file_name = ? AND deleted = 0"
                            " ORDER BY id DESC"),
             {subArchive, fileName})) {
        if (!maySeeDocument(session, id))
            continue;
        if (mayWriteDocument(session, id))
            return id;
        sees = true;
    }
    if (sees)
        return Error{ErrorCode::Refused, QStringLiteral("You don't have the rights to change the document.")};
    return qint64(0);
}

/// Makes a finished blob the content of a new document or of a new version of an old one.
Result<qint64> attachBlob(Session &session, qint64 blob, const QString &fileName, bool newDocument)
{
    Database &database = session.database();
    qint64 subArchive = session.subArchive();
    if (subArchive == 0)
        subArchive = database.value(QStringLiteral("SELECT min(id) FROM subarchive")).toLongLong();
    const Result<qint64> named =
        newDocument ? Result<qint64>(0) : documentNamed(session, subArchive, fileName);
    if (!named)
        return named;
    qint64 document = named.value();
    const bool isVersion = document != 0;
    if (isVersion) {
        if (const Result<void> allowed = session.access().require(rights::versioning); !allowed)
            return allowed.error();
        database.run(QStringLiteral("UPDATE document SET version = version + 1 WHERE id = ?"), {document});
    } else {
        document = database.insert(
            QStringLiteral("INSERT INTO document(subarchive, file_name, creator, account, created, version)"
                           " VALUES(?, ?, ?, ?, ?, 1)"),
            {subArchive, fileName, session.login(), session.account(), session.timestamp()});
    }
    database.run(QStringLiteral("INSERT INTO file_version(document, version, blob, creator, created)"
                                " SELECT id, version, ?, ?, ? FROM document WHERE id = ?"),
                 {blob, session.login(), session.timestamp(), document});
    FileTexts::enter(database, document);
    recordEvent(session, document, isVersion ? Action::NewVersion : Action::Created);
    return document;
}

} // namespace

Result<qint64> Content::store(const QString &localFile, bool newDocument, const Progress &progress)
{
    if (const Result<void> permitted = permit(m_session, "Content::store"); !permitted)
        return permitted.error();
    if (isArchiveItself(m_session.database(), localFile))
        return Error{ErrorCode::BadInput, QStringLiteral("The archive cannot be filed in itself.")};
    QFile file(localFile);
    if (!QFileInfo(localFile).isFile() || !file.open(QIODevice::ReadOnly))
        return Error{ErrorCode::NotFound, QStringLiteral("The file %1 cannot be read.").arg(localFile)};
    const QString fileName = storedFileName(QFileInfo(localFile).fileName());
    BlobWriter writer(m_session);
    if (const Result<void> read = writer.readAll(file, progress); !read)
        return read.error();
    const auto document = change(m_session, "Content::store", [&](Database &) -> Result<qint64> {
        const Result<qint64> blob = writer.finish();
        return blob ? attachBlob(m_session, blob.value(), fileName, newDocument) : blob;
    });
    if (document)
        writer.keep();
    return document;
}

Result<QString> Content::fetch(qint64 archiveId, Action action, const Progress &progress)
{
    qint64 blob = 0;
    const auto fileName = read(m_session, "Content::fetch", [&](Database &database) -> Result<QString> {
        if (!maySeeDocument(m_session, archiveId))
            return noDocument();
        blob = blobOf(database, archiveId);
        if (blob == 0)
            return noFile();
        return database.value(QStringLiteral("SELECT file_name FROM document WHERE id = ?"), {archiveId})
            .toString();
    });
    if (!fileName)
        return fileName;
    const Result<QString> path = makeTemporaryFile(fileName.value());
    if (!path)
        return path;
    if (const Result<void> copied = copyBlob(m_session.database(), blob, path.value(), progress); !copied) {
        QFile::remove(path.value());
        return copied.error();
    }
    finishTemporaryFile(path.value());
    if (m_session.isOffline())
        return path;
    if (const Result<void> recorded = record(archiveId, action); !recorded) {
        QFile::remove(path.value());
        return recorded.error();
    }
    return path;
}

Result<QStringList> Content::exportVersions(qint64 archiveId, const QString &directory)
{
    using Versions = QVector<QPair<qint64, QString>>;
    const auto versions =
        read(m_session, "Content::exportVersions", [&](Database &database) -> Result<Versions> {
            Versions found;
            if (!maySeeDocument(m_session, archiveId))
                return noDocument();
            for (Query row = database.query(
                     QStringLiteral(
                         "SELECT v.blob, v.version, d.file_name FROM file_version v JOIN document d"
                         " ON d.id = v.document WHERE d.id = ? ORDER BY v.version"),
                     {archiveId});
                 row.next();)
                found.append(
                    {row.number(0), QStringLiteral("%1/%2-%3")
                                        .arg(directory, row.text(1),
                                             row.text(2).replace(QLatin1Char('/'), QLatin1Char('_')))});
            return found.isEmpty() ? Result<Versions>(noFile()) : found;
        });
    if (!versions)
        return versions.error();
    QStringList written;
    for (const auto &[blob, path] : versions.value()) {
        if (const Result<void> copied = copyToNewFile(m_session.database(), blob, path); !copied) {
            for (const QString &file : qAsConst(written))
                QFile::remove(file);
            return copied.error();
        }
        written << path;
    }
    const Result<void> recorded = record(archiveId, Action::Exported);
    return recorded ? Result<QStringList>(written) : recorded.error();
}

Result<qint64> Content::size(qint64 archiveId)
{
    return read(m_session, "Content::size", [&](Database &database) -> Result<qint64> {
        if (!maySeeDocument(m_session, archiveId))
            return noDocument();
        return database
            .value(QStringLiteral("SELECT size FROM blob WHERE id = ?"), {blobOf(database, archiveId)})
            .toLongLong();
    });
}

Result<QStringList> Content::info(const QStringList &archiveIds)
{
    return read(m_session, "Content::info", [&](Database &database) -> Result<QStringList> {
        QStringList records;
        const SqlCondition visible = visibleDocuments(m_session, QStringLiteral("d.id"));
        const SqlCondition asked = sql::inList(QStringLiteral("d.id"), parseIds(archiveIds));
        Query row = database.query(QStringLiteral("SELECT d.id, d.file_name FROM document d WHERE %1 AND %2")
                                       .arg(asked.sql, visible.sql),
                                   asked.values + visible.values);
        while (row.next()) {
            const QString name = row.text(1);
            records << QStringList{row.text(0), name, QString(), QFileInfo(name).suffix()}.join(
                recordformat::listSeparator);
        }
        return records;
    });
}

Result<QStringList> Content::actions(const QStringList &archiveIds, int action, const QString &user)
{
    return read(m_session, "Content::actions", [&](Database &database) -> Result<QStringList> {
        const SqlCondition visible = visibleDocuments(m_session, QStringLiteral("e.document"));
        const SqlCondition asked = sql::inList(QStringLiteral("e.document"), parseIds(archiveIds));
        QString text = QStringLiteral("SELECT e.document, e.id, e.action, e.time, e.login FROM event e"
                                      " WHERE %1 AND %2")
                           .arg(asked.sql, visible.sql);
        QVariantList values = asked.values + visible.values;
        if (action >= 0) {
            text += QStringLiteral(" AND e.action = ?");
            values << action;
        }
        if (!user.isEmpty()) {
            text += QStringLiteral(" AND e.login = ?");
            values << user;
        }
        QStringList records;
        for (Query row = database.query(text + QStringLiteral(" ORDER BY e.document, e.id"), values);
             row.next();)
            records << joinFields({row.text(0), row.text(1), row.text(2), row.text(3), row.text(4)});
        return records;
    });
}

Result<void> Content::record(qint64 archiveId, Action action)
{
    // The file that goes out does not wait for the disk either.
    return change(
        m_session, "Content::record",
        [&](Database &) -> Result<void> {
            if (!maySeeDocument(m_session, archiveId))
                return noDocument();
            recordEvent(m_session, archiveId, action);
            return {};
        },
        Transaction::Kind::WriteBehind);
}

Result<void> Content::remove(const QString &archiveId, const QString &comment)
{
    return change(m_session, "Content::remove", [&](Database &database) -> Result<void> {
        const qint64 id = archiveId.toLongLong();
        if (!database.value(QStringLiteral("SELECT 1 FROM document WHERE id = ? AND deleted = 0"), {id})
                 .isValid())
            return noDocument();
        const Retention retention = Retention::load(database);
        for (Query row = database.query(
                 QStringLiteral(
                     "SELECT trashed, docart, cdate, folder FROM classification WHERE document = ?"),
                 {id});
             row.next();) {
            if (!m_session.access().maySee(row.text(3)))
                return noDocument();
            if (!row.flag(0))
                return Error{ErrorCode::Refused,
                             QStringLiteral("The document is not in the trash with all its entries.")};
            if (retention.isInForce(row.number(1), row.text(2), m_session.today()))
                return Error{
                    ErrorCode::Refused,
                    QStringLiteral("The document cannot be deleted because of its retention period.")};
        }
        const QVector<qint64> blobs =
            database.numbers(QStringLiteral("SELECT blob FROM file_version WHERE document = ?"), {id});
        database.run(QStringLiteral("DELETE FROM file_version WHERE document = ?"), {id});
        for (const qint64 blob : blobs)
            database.run(QStringLiteral("DELETE FROM blob WHERE id = ?"), {blob});
        database.run(QStringLiteral("DELETE FROM file_text WHERE document = ?"), {id});
        database.run(QStringLiteral("UPDATE document SET deleted = 1 WHERE id = ?"), {id});
        recordEvent(m_session, id, Action::Deleted, comment);
        return {};
    });
}

Result<QStringList> Content::search(const QString &text)
{
    const Result<TextTerms> terms = fullTextTerms(text);
    if (!terms)
        return terms.error();
    if (terms.value().empty())
        return Error{ErrorCode::BadInput, QStringLiteral("There is nothing to look for.")};
    return read(m_session, "Content::search", [&](Database &database) -> Result<QStringList> {
        const TimeLimit patience(database, longestSearchMs(database));
        // The words of a file are those of every entry, a description is seen with its own entry alone.
        const SqlCondition visible = visibleDocuments(m_session, QStringLiteral("d.id"));
        const SqlCondition inFile = textindex::fileWords(QStringLiteral("d.id"), terms.value());
        const SqlCondition inEntry = textindex::words(
            QStringLiteral("c.id"), schema::wordTable(QStringLiteral("bemerkung")), terms.value());
        const QVector<qint64> ids = database.numbers(
            QStringLiteral("SELECT d.id FROM document d WHERE %1 AND %2"
                           " UNION SELECT c.document FROM classification c WHERE %3 AND %4 ORDER BY 1")
                .arg(inFile.sql, visible.sql, inEntry.sql,
                     m_session.access().visibleCondition(QStringLiteral("c.folder"))),
            inFile.values + visible.values + inEntry.values);
        QStringList records;
        for (const qint64 id : ids)
            records << joinFields({QString::number(id), QString::number(id)});
        return records;
    });
}

} // namespace kelva
