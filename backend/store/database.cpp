#include "store/database.h"

#include "store/schema.h"
#include "store/sqlfunctions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QUrl>
#include <QUuid>
#include <QtEndian>

#include <array>
#include <cstring>
#include <limits>

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

/// A text that was never set is an empty text; NULL is said by an invalid value.
QVariant bound(const QVariant &value)
{
    return value.userType() == QMetaType::QString && value.isNull() ? QVariant(QStringLiteral("")) : value;
}

void bindValue(sqlite3_stmt *statement, int place, const QVariant &value)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        sqlite3_bind_int64(statement, place, value.toLongLong());
        break;
    case QMetaType::Double:
        sqlite3_bind_double(statement, place, value.toDouble());
        break;
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        sqlite3_bind_blob(statement, place, bytes.constData(), bytes.size(), SQLITE_TRANSIENT);
        break;
    }
    case QMetaType::UnknownType:
        sqlite3_bind_null(statement, place);
        break;
    default: {
        const QByteArray text = value.toString().toUtf8();
        sqlite3_bind_text(statement, place, text.constData(), text.size(), SQLITE_TRANSIENT);
    }
    }
}

} // namespace

bool Query::next()
{
    if (m_query.next())
        return true;
    if (m_query.lastError().isValid())
        m_database.noteFailure(m_query);
    return false;
}

QString Row::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(m_statement, column));
}

qint64 Row::number(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

Statement::Statement(Database &database, const QString &sql)
    : m_database(database),
      m_query(database.connection())
{
    m_query.setForwardOnly(true);
    m_prepared = m_query.prepare(sql);
    if (!m_prepared)
        m_database.noteFailure(m_query);
}

bool Statement::run(const QVariantList &values)
{
    if (!m_prepared || !m_database.mayRun())
        return false;
    for (int i = 0; i < values.size(); ++i)
        m_query.bindValue(i, bound(values.at(i)));
    if (m_query.exec())
        return true;
    m_database.noteFailure(m_query);
    return false;
}

Database::Database(QString path, QString connection)
    : m_path(std::move(path)),
      m_connection(std::move(connection))
{
}

Database::~Database()
{
    {
        QSqlDatabase own = connection();
        if (own.isOpen()) {
            if (!m_readOnly) {
                QSqlQuery optimize(own);
                // Nobody waits at the end for somebody else's transaction.
                optimize.exec(QStringLiteral("PRAGMA busy_timeout = 0"));
                optimize.exec(QStringLiteral("PRAGMA analysis_limit = 400"));
                optimize.exec(QStringLiteral("PRAGMA optimize"));
            }
            own.close();
        }
    }
    QSqlDatabase::removeDatabase(m_connection);
}

QSqlDatabase Database::connection() const
{
    return QSqlDatabase::database(m_connection, false);
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
    // Each plug-in of the process has this code of its own, but they share the names.
    const QString name = QStringLiteral("kelva-") + QUuid::createUuid().toString(QUuid::Id128);
    QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    std::unique_ptr<Database> database(new Database(path, name));
    if (const Result<void> connected = database->connect(mode, busyTimeoutMs, version); !connected)
        return connected.error();
    return {std::move(database)};
}

Result<void> Database::connect(Mode mode, int busyTimeoutMs, int version)
{
    m_readOnly = mode == Mode::ReadOnly;
    {
        QSqlDatabase own = connection();
        QString options = QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeoutMs);
        if (m_readOnly)
            options += QStringLiteral(";QSQLITE_OPEN_READONLY");
        own.setConnectOptions(options);
        own.setDatabaseName(QString::fromLatin1(uri(m_path, m_readOnly)));
        if (!own.open())
            return sqliteError(own.lastError().nativeErrorCode().toInt());
    }
    m_handle = *static_cast<sqlite3 *const *>(connection().driver()->handle().constData());
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
    if (!m_deadlines.empty() && !m_error && *m_deadlines.begin() <= std::chrono::steady_clock::now())
        fail(sqliteError(SQLITE_INTERRUPT));
    return !m_error;
}

/// Empty, and the failure noted, when it cannot be run.
std::optional<QSqlQuery> Database::execute(const QString &sql, const QVariantList &values)
{
    if (!mayRun())
        return std::nullopt;
    QSqlQuery statement(connection());
    statement.setForwardOnly(true);
    bool done = statement.prepare(sql);
    if (done) {
        for (int i = 0; i < values.size(); ++i)
            statement.bindValue(i, bound(values.at(i)));
        done = statement.exec();
    }
    if (done)
        return statement;
    noteFailure(statement);
    return std::nullopt;
}

bool Database::run(const QString &sql, const QVariantList &values)
{
    if (!execute(sql, values))
        return false;
    m_lastInsertId = sqlite3_last_insert_rowid(handle());
    m_affected = sqlite3_changes(handle());
    return true;
}

Query Database::query(const QString &sql, const QVariantList &values)
{
    return Query(execute(sql, values).value_or(QSqlQuery(connection())), *this);
}

QVariant Database::value(const QString &sql, const QVariantList &values)
{
    Query row = query(sql, values);
    return row.next() ? row.value(0) : QVariant();
}

QStringList Database::texts(const QString &sql, const QVariantList &values)
{
    QStringList list;
    for (Query row = query(sql, values); row.next();)
        list << row.text(0);
    return list;
}

QVector<qint64> Database::numbers(const QString &sql, const QVariantList &values)
{
    return numbersWithin(std::numeric_limits<qint64>::max(), sql, values).value_or(QVector<qint64>());
}

std::optional<QVector<qint64>> Database::numbersWithin(qint64 steps, const QString &sql,
                                                       const QVariantList &values, qint64 stepsToFirst)
{
    const Prepared statement = prepare(sql, values);
    if (!statement)
        return QVector<qint64>();
    m_stepsLeft = stepsToFirst > 0 ? qMin(stepsToFirst, steps) : steps;
    watchProgress();
    QVector<qint64> list;
    int code = sqlite3_step(statement.get());
    if (stepsToFirst > 0 && code == SQLITE_ROW) {
        m_stepsLeft = steps;
        watchProgress();
    }
    for (; code == SQLITE_ROW; code = sqlite3_step(statement.get()))
        list.append(sqlite3_column_int64(statement.get(), 0));
    const bool outOfSteps = m_stepsLeft < 0;
    m_stepsLeft = 0;
    watchProgress();
    if (code == SQLITE_DONE)
        return list;
    if (code == SQLITE_INTERRUPT && outOfSteps)
        return std::nullopt;
    noteFailure();
    return QVector<qint64>();
}

bool Database::forEachRow(const QString &sql, const QVariantList &values,
                          const std::function<void(const Row &)> &take)
{
    const Prepared statement = prepare(sql, values);
    if (!statement)
        return false;
    int code = sqlite3_step(statement.get());
    for (; code == SQLITE_ROW; code = sqlite3_step(statement.get()))
        take(Row(statement.get()));
    if (code != SQLITE_DONE)
        noteFailure();
    return code == SQLITE_DONE;
}

/// Empty, and the failure noted, when it cannot be run.
Database::Prepared Database::prepare(const QString &sql, const QVariantList &values)
{
    sqlite3_stmt *prepared = nullptr;
    if (mayRun()) {
        const QByteArray text = sql.toUtf8();
        sqlite3_prepare_v2(handle(), text.constData(), text.size(), &prepared, nullptr);
        if (!prepared)
            noteFailure();
    }
    for (int i = 0; prepared && i < values.size(); ++i)
        bindValue(prepared, i + 1, values.at(i));
    return Prepared(prepared, &sqlite3_finalize);
}

/// Lets the database ask now and then whether the statement at work may go on.
void Database::watchProgress()
{
    constexpr qint64 unbounded = std::numeric_limits<int>::max();
    constexpr qint64 oftenEnough = 10'000; // some hundred records
    if (m_stepsLeft <= 0 || m_stepsLeft > unbounded) {
        m_stepsLeft = 0;
        sqlite3_progress_handler(handle(), 0, nullptr, nullptr);
        return;
    }
    m_stepsAtATime = qMin(m_stepsLeft, oftenEnough);
    const auto mustStop = [](void *context) {
        auto *self = static_cast<Database *>(context);
        self->m_stepsLeft -= self->m_stepsAtATime;
        if (self->m_stepsLeft <= 0)
            self->m_stepsLeft = -1;
        return self->m_stepsLeft < 0 ? 1 : 0;
    };
    sqlite3_progress_handler(handle(), static_cast<int>(m_stepsAtATime), mustStop, this);
}

void Database::noteFailure()
{
    fail(sqliteError(sqlite3_extended_errcode(handle())));
}

void Database::fail(Error error)
{
    if (!m_error)
        m_error = std::move(error);
}

void Database::noteFailure(const QSqlQuery &query)
{
    fail(sqliteError(query.lastError().nativeErrorCode().toInt()));
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
