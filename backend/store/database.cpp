#include "store/database.h"

#include "store/schema.h"
#include "store/sqlfunctions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <QtEndian>

#include <array>
#include <cstring>

#include <fcntl.h>
#include <sqlite3.h>

#include <unistd.h>

namespace kelva {
namespace {

/// The codes of the database say more than its words would to a user.
Error sqliteError(int code)
{
    switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {ErrorCode::Busy,
                QStringLiteral("The archive is in use by another program. Please try again.")};
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
        return {ErrorCode::NotAnArchive, QStringLiteral("The archive file is damaged or no archive.")};
    case SQLITE_FULL:
        return {ErrorCode::Storage, QStringLiteral("The disk is full. Nothing was saved.")};
    case SQLITE_READONLY:
        return {ErrorCode::Storage, QStringLiteral("The archive is read-only.")};
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return {ErrorCode::Storage, QStringLiteral("The archive file cannot be opened.")};
    case SQLITE_IOERR:
        return {ErrorCode::Storage,
                QStringLiteral("The archive could not be read or written (%1).").arg(code)};
    case SQLITE_CONSTRAINT:
        return {ErrorCode::BadInput, QStringLiteral("The archive refused the change (%1).").arg(code)};
    case SQLITE_TOOBIG:
        return {ErrorCode::BadInput, QStringLiteral("A value is too long to be stored.")};
    case SQLITE_INTERRUPT:
        return {ErrorCode::TooSlow, QStringLiteral("The search takes too long. Please narrow it down.")};
    default:
        return {ErrorCode::Storage, QStringLiteral("The archive reported an error (%1).").arg(code)};
    }
}

QByteArray uri(const QString &path, bool immutable)
{
    QUrl file = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    if (immutable)
        file.setQuery(QStringLiteral("immutable=1"));
    return file.toEncoded();
}

/// Looks at the file without leaving anything beside it. Only ever through SQLite: a process that closes a
/// file loses all its locks on it, those of its other connections too, and the next program to leave the
/// archive would take the write-ahead log with it.
Result<void> checkHeader(const QString &path)
{
    const Error noArchive{ErrorCode::NotAnArchive, QStringLiteral("The file %1 is no archive.").arg(path)};
    const QFileInfo info(path);
    if (!info.exists())
        return Error{ErrorCode::NotFound, QStringLiteral("There is no archive at %1.").arg(path)};
    if (!info.isFile())
        return noArchive;
    sqlite3 *opened = nullptr;
    const int code = sqlite3_open_v2(uri(path, true).constData(), &opened,
                                     SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(opened, &sqlite3_close);
    if (code != SQLITE_OK)
        return Error{ErrorCode::Storage, QStringLiteral("The archive %1 cannot be opened.").arg(path)};
    // The bytes themselves: SQLite would compare the first page with the length of the file, and while
    // another program writes the log back, or after it was killed at that, the two do not fit.
    sqlite3_file *file = nullptr;
    sqlite3_file_control(opened, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    std::array<char, 100> header{};
    constexpr int idOffset = 68;
    if (!file || !file->pMethods ||
        file->pMethods->xRead(file, header.data(), header.size(), 0) != SQLITE_OK ||
        std::memcmp(header.data(), "SQLite format 3", 16) != 0 ||
        qFromBigEndian<qint32>(header.data() + idOffset) != schema::applicationId)
        return noArchive;
    return {};
}

Result<void> createEmptyFile(const QString &path)
{
    const QDir directory = QFileInfo(path).absoluteDir();
    if (!directory.exists()) {
        if (!directory.mkpath(QStringLiteral(".")))
            return Error{ErrorCode::Storage,
                         QStringLiteral("The directory %1 cannot be made.").arg(directory.path())};
        QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    const int file = ::open(QFile::encodeName(path).constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
    if (file < 0)
        return Error{ErrorCode::Storage, errno == EEXIST
                                             ? QStringLiteral("There is a file %1 already.").arg(path)
                                             : QStringLiteral("The file %1 cannot be made: %2")
                                                   .arg(path, QString::fromLocal8Bit(std::strerror(errno)))};
    ::close(file);
    return {};
}

} // namespace

Database::~Database()
{
    if (m_handle && !m_readOnly) {
        // Nobody waits at the end for somebody else's transaction.
        sqlite3_busy_timeout(m_handle, 0);
        sqlite3_exec(m_handle, "PRAGMA analysis_limit = 400; PRAGMA optimize", nullptr, nullptr, nullptr);
    }
    sqlite3_close_v2(m_handle);
}

Result<std::unique_ptr<Database>> Database::open(const QString &path, Mode mode, int busyTimeoutMs,
                                                 int version)
{
    if (mode == Mode::Create) {
        if (const Result<void> made = createEmptyFile(path); !made)
            return made.error();
    } else if (const Result<void> header = checkHeader(path); !header) {
        return header.error();
    }
    std::unique_ptr<Database> database(new Database(path));
    if (const Result<void> connected = database->connect(mode, busyTimeoutMs, version); !connected)
        return connected.error();
    return {std::move(database)};
}

Result<void> Database::connect(Mode mode, int busyTimeoutMs, int version)
{
    m_readOnly = mode == Mode::ReadOnly;
    const int access = m_readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    const int opened = sqlite3_open_v2(uri(m_path, m_readOnly).constData(), &m_handle,
                                       access | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
    if (opened != SQLITE_OK)
        return sqliteError(opened);
    sqlite3_busy_timeout(m_handle, busyTimeoutMs);
    sqlite3_extended_result_codes(m_handle, 1);
    registerSqlFunctions(handle());
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // A medium may come from anybody. One's own archives need trust: their triggers write full-text tables.
    if (m_readOnly)
        run(QStringLiteral("PRAGMA trusted_schema = OFF"));
    run(QStringLiteral("PRAGMA foreign_keys = ON"));
    run(QStringLiteral("PRAGMA temp_store = MEMORY"));
    run(QStringLiteral("PRAGMA cache_size = -65536"));
    if (mode == Mode::Create) {
        // In the file itself before the first write-ahead log, so that a glance at its head tells what it is.
        run(QStringLiteral("PRAGMA application_id = %1").arg(schema::applicationId));
    }
    if (!m_readOnly) {
        if (value(QStringLiteral("PRAGMA journal_mode = WAL")).toString() != QLatin1String("wal"))
            return m_error ? *m_error : sqliteError(SQLITE_READONLY);
        run(QStringLiteral("PRAGMA synchronous = FULL"));
    }
    return bringUpToDate(mode, mode == Mode::Create && version > 0 ? version : schema::currentVersion());
}

Result<void> Database::bringUpToDate(Mode mode, int target)
{
    const int version = value(QStringLiteral("PRAGMA user_version")).toInt();
    if (m_error)
        return *m_error;
    if (version > schema::currentVersion())
        return Error{ErrorCode::WrongVersion,
                     QStringLiteral("The archive %1 was written by a newer version of Kelva.").arg(m_path)};
    if (version == target)
        return {};
    if (version < 0 || (version == 0 && mode != Mode::Create))
        return Error{ErrorCode::NotAnArchive,
                     QStringLiteral("The archive %1 was never completed.").arg(m_path)};
    if (m_readOnly)
        return Error{
            ErrorCode::WrongVersion,
            QStringLiteral("The archive %1 was written by an older version of Kelva and must be opened once "
                           "where it can be written.")
                .arg(m_path)};
    return schema::upgrade(*this, version, target);
}

/// The database may have taken the transaction back by itself, when the disk was full for one; what came
/// after would then be written on its own.
bool Database::mayRun()
{
    if (m_depth == 0)
        m_error.reset();
    if (m_handsOutRows)
        fail({ErrorCode::BadInput, QStringLiteral("The operation was broken off.")});
    if (!m_deadlines.empty() && !m_error && *m_deadlines.begin() <= std::chrono::steady_clock::now())
        fail(sqliteError(SQLITE_INTERRUPT));
    return !m_error;
}

void Database::fail(Error error)
{
    if (!m_error)
        m_error = std::move(error);
}

void Database::noteFailure()
{
    fail(sqliteError(sqlite3_extended_errcode(handle())));
}

Result<void> Database::backupTo(const QString &target)
{
    if (QFileInfo::exists(target))
        return Error{ErrorCode::Storage, QStringLiteral("There is a file %1 already.").arg(target)};
    const QString unfinished = target + QStringLiteral(".unfinished");
    QFile::remove(unfinished);
    if (const Result<void> made = createEmptyFile(unfinished); !made)
        return made;
    if (!run(QStringLiteral("VACUUM INTO ?"), {unfinished})) {
        QFile::remove(unfinished);
        return *m_error;
    }
    // The copy counts as a backup only once it is on the medium.
    const int file = ::open(QFile::encodeName(unfinished).constData(), O_RDWR | O_CLOEXEC);
    const bool synced = file >= 0 && ::fsync(file) == 0;
    if (file >= 0)
        ::close(file);
    if (!synced || !QFile::rename(unfinished, target)) {
        QFile::remove(unfinished);
        return Error{ErrorCode::Storage, QStringLiteral("The backup %1 could not be written.").arg(target)};
    }
    return {};
}

} // namespace kelva
