#include "store/database.h"

#include <limits>

#include <sqlite3.h>

namespace kelva {
namespace {

void bindValue(sqlite3_stmt *statement, int place, const QVariant &value)
{
    const auto type = static_cast<QMetaType::Type>(value.userType());
    // A text that was never set is an empty text; any other value that was not is NULL.
    if (value.isNull() && type != QMetaType::QString) {
        sqlite3_bind_null(statement, place);
        return;
    }
    switch (type) {
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
    default: {
        const QString text = value.toString();
        sqlite3_bind_text16(statement, place, text.utf16(), text.size() * 2, SQLITE_TRANSIENT);
    }
    }
}

QString textOf(sqlite3_stmt *statement, int column)
{
    const auto *units = static_cast<const QChar *>(sqlite3_column_text16(statement, column));
    return QString(units, sqlite3_column_bytes16(statement, column) / 2);
}

QVariant valueOf(sqlite3_stmt *statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return static_cast<qint64>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_BLOB: {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(statement, column));
        return QByteArray(bytes ? bytes : "", sqlite3_column_bytes(statement, column));
    }
    case SQLITE_NULL:
        return QVariant(QVariant::String); // null, but there: no row at all gives an invalid one
    default:
        return textOf(statement, column);
    }
}

} // namespace

QString Row::text(int column) const
{
    return textOf(m_statement, column);
}

qint64 Row::number(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

double Row::fraction(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

bool Row::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

void Row::appendTo(QByteArray *text, int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    text->append(bytes, sqlite3_column_bytes(m_statement, column));
}

Statement::Statement(Database &database, const QString &sql)
    : m_database(database),
      m_prepared(database.prepare(sql))
{
}

bool Statement::run(const QVariantList &values)
{
    if (!m_prepared || !m_database.mayRun() || !m_database.bind(m_prepared.get(), values))
        return false;
    m_database.finishWriting(m_prepared.get());
    sqlite3_reset(m_prepared.get());
    return !m_database.failed();
}

qint64 Statement::insert(const QVariantList &values)
{
    if (!m_prepared || !m_database.mayRun() || !m_database.bind(m_prepared.get(), values))
        return 0;
    const qint64 id = m_database.step(m_prepared.get()) ? sqlite3_column_int64(m_prepared.get(), 0) : 0;
    m_database.finishWriting(m_prepared.get());
    sqlite3_reset(m_prepared.get());
    return m_database.failed() ? 0 : id;
}

/// Empty, and the failure noted, when it cannot be run.
Database::Prepared Database::prepare(const QString &sql)
{
    sqlite3_stmt *prepared = nullptr;
    if (mayRun()) {
        const QByteArray text = sql.toUtf8();
        sqlite3_prepare_v2(handle(), text.constData(), text.size(), &prepared, nullptr);
        if (!prepared)
            noteFailure();
    }
    return Prepared(prepared, &sqlite3_finalize);
}

Database::Prepared Database::prepare(const QString &sql, const QVariantList &values)
{
    Prepared prepared = prepare(sql);
    if (prepared && !bind(prepared.get(), values))
        prepared.reset();
    return prepared;
}

bool Database::bind(sqlite3_stmt *statement, const QVariantList &values)
{
    if (sqlite3_bind_parameter_count(statement) != values.size()) {
        fail({ErrorCode::Storage, QStringLiteral("The archive reported an error (%1).").arg(SQLITE_RANGE)});
        return false;
    }
    for (int i = 0; i < values.size(); ++i)
        bindValue(statement, i + 1, values.at(i));
    return true;
}

/// False at the end, and on a failure, which is noted.
bool Database::step(sqlite3_stmt *statement)
{
    const int code = sqlite3_step(statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        noteFailure();
    return code == SQLITE_ROW;
}

void Database::finishWriting(sqlite3_stmt *statement)
{
    while (!failed() && step(statement)) {
    }
    m_affected = sqlite3_changes(handle());
}

bool Database::run(const QString &sql, const QVariantList &values)
{
    const Prepared statement = prepare(sql, values);
    if (!statement)
        return false;
    finishWriting(statement.get());
    return !failed();
}

qint64 Database::insert(const QString &sql, const QVariantList &values)
{
    return Statement(*this, sql + QStringLiteral(" RETURNING id")).insert(values);
}

Query Database::query(const QString &sql, const QVariantList &values)
{
    Query query;
    const Prepared statement = prepare(sql, values);
    if (!statement)
        return query;
    const int columns = sqlite3_column_count(statement.get());
    while (step(statement.get())) {
        QVariantList row;
        row.reserve(columns);
        for (int column = 0; column < columns; ++column)
            row << valueOf(statement.get(), column);
        query.m_rows << row;
    }
    // Half of the rows would look like all of them.
    if (failed())
        query.m_rows.clear();
    return query;
}

QVariant Database::value(const QString &sql, const QVariantList &values)
{
    const Prepared statement = prepare(sql, values);
    return statement && step(statement.get()) ? valueOf(statement.get(), 0) : QVariant();
}

QStringList Database::texts(const QString &sql, const QVariantList &values)
{
    QStringList list;
    const Prepared statement = prepare(sql, values);
    while (statement && step(statement.get()))
        list << textOf(statement.get(), 0);
    return failed() ? QStringList() : list;
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
    while (step(statement.get())) {
        m_handsOutRows = true;
        take(Row(statement.get()));
        m_handsOutRows = false;
    }
    return !failed();
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

} // namespace kelva
