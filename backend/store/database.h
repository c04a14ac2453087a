#pragma once

#include "store/result.h"

#include <QStringList>
#include <QVariantList>
#include <QVector>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>

struct sqlite3;
struct sqlite3_stmt;

namespace kelva {

/// The rows of one statement. They are all there before the first one is looked at, so that other statements
/// may run between them. A failed statement yields no row and its error stays with the database.
class Query
{
public:
    bool next() { return ++m_row < m_rows.size(); }
    const QVariant &value(int column) const { return m_rows.at(m_row).at(column); }
    QString text(int column) const { return value(column).toString(); }
    qint64 number(int column) const { return value(column).toLongLong(); }
    bool flag(int column) const { return number(column) != 0; }
    QByteArray bytes(int column) const { return value(column).toByteArray(); }

private:
    friend class Database;

    QVector<QVariantList> m_rows;
    int m_row = -1;
};

/// The row that a statement stands at, for forEachRow().
class Row
{
public:
    QString text(int column) const;
    qint64 number(int column) const;
    double fraction(int column) const;
    bool flag(int column) const { return number(column) != 0; }
    bool isNull(int column) const;
    /// Adds the text in UTF-8; nothing for NULL.
    void appendTo(QByteArray *text, int column) const;

private:
    friend class Database;
    explicit Row(sqlite3_stmt *statement) : m_statement(statement) {}

    sqlite3_stmt *m_statement;
};

/// A statement that is prepared once and run many times with other values.
class Statement
{
public:
    Statement(class Database &database, const QString &sql);
    bool run(const QVariantList &values);
    /// For "INSERT ... RETURNING id"; 0 on failure.
    qint64 insert(const QVariantList &values);

private:
    class Database &m_database;
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> m_prepared;
};

/// One open archive file and its connection. Not for use by two threads.
///
/// Statements do not return their errors one by one: the first one that fails since the transaction began is
/// kept, and commit() or result() hands it on. So an operation is a Transaction, its statements, and one
/// check at the end.
class Database
{
public:
    enum class Mode {
        ReadWrite, ///< an existing archive; an older schema is upgraded
        Create,    ///< makes the file (0600) and its directory (0700); an existing file is refused
        ReadOnly,  ///< an existing archive on any medium; nothing is written, not even beside it
    };

    /// busyTimeoutMs: how long a statement waits for another program's transaction.
    /// version: what Create makes, for trying upgrades; 0 for the current one.
    static Result<std::unique_ptr<Database>> open(const QString &path, Mode mode, int busyTimeoutMs = 5000,
                                                  int version = 0);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    const QString &path() const { return m_path; }
    bool isReadOnly() const { return m_readOnly; }
    sqlite3 *handle() const { return m_handle; }

    bool run(const QString &sql, const QVariantList &values = {});
    /// Runs an INSERT into a table with an id and returns the new row's; 0 on failure.
    qint64 insert(const QString &sql, const QVariantList &values);
    Query query(const QString &sql, const QVariantList &values = {});
    /// First column of the first row; an invalid value when there is no row.
    QVariant value(const QString &sql, const QVariantList &values = {});
    QStringList texts(const QString &sql, const QVariantList &values = {});
    /// First column of every row; for many numbers, without the cost of a row object each.
    QVector<qint64> numbers(const QString &sql, const QVariantList &values = {});
    /// The same, but gives up without an error, and without a value, after so many steps of the database's
    /// machine. A record looked at takes ten or so. stepsToFirst: when even the first row takes longer, the
    /// database sorts, or finds next to nothing; 0 for no such bound.
    std::optional<QVector<qint64>> numbersWithin(qint64 steps, const QString &sql, const QVariantList &values,
                                                 qint64 stepsToFirst = 0);
    /// Hands every row to the function: for thousands of rows, cheaper than a Query. The function runs no
    /// statement: it would fail, and all of this with it. False on failure.
    bool forEachRow(const QString &sql, const QVariantList &values,
                    const std::function<void(const Row &)> &take);
    /// Rows that the last run() inserted, changed or deleted.
    int affected() const { return m_affected; }

    /// Grows whenever written rows were taken back, in temporary tables too.
    int rollbacks() const { return m_rollbacks; }

    bool failed() const { return m_error.has_value(); }
    /// To be asked when failed().
    const Error &error() const { return *m_error; }
    /// Makes the transaction fail for a reason of the caller's; the first error wins.
    void fail(Error error);
    /// The value, or the first error since the transaction began.
    template<typename T>
    Result<T> result(T value) const
    {
        if (m_error)
            return *m_error;
        return value;
    }

    /// Copies the archive as it stands, while others work with it. The target must not exist.
    Result<void> backupTo(const QString &target);
    /// Another connection, of this process or another, has the archive open.
    bool isUsedByOthers();
    /// Faults found by reading everything, one sentence each; empty for a sound archive.
    QStringList integrityFaults();
    /// Gathers what the query planner wants to know; for use after bulk insertions.
    void analyze();

private:
    friend class Statement;
    friend class TimeLimit;
    friend class Transaction;
    explicit Database(QString path) : m_path(std::move(path)) {}
    Result<void> connect(Mode mode, int busyTimeoutMs, int version);
    Result<void> bringUpToDate(Mode mode, int target);
    bool mayRun();
    using Prepared = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;
    Prepared prepare(const QString &sql);
    Prepared prepare(const QString &sql, const QVariantList &values);
    bool bind(sqlite3_stmt *statement, const QVariantList &values);
    bool step(sqlite3_stmt *statement);
    void finishWriting(sqlite3_stmt *statement);
    void noteFailure();
    void watchProgress();

    QString m_path;
    sqlite3 *m_handle = nullptr;
    bool m_readOnly = false;
    int m_depth = 0; ///< transactions open; an inner one takes part in the outer one
    int m_rollbacks = 0;
    int m_affected = 0;
    bool m_handsOutRows = false; ///< forEachRow() is at work
    std::optional<Error> m_error;
    std::multiset<std::chrono::steady_clock::time_point> m_deadlines; ///< of the time limits in force
    qint64 m_stepsLeft = 0; ///< of the statement at work; 0 for any number, negative when used up
    qint64 m_stepsAtATime = 0;
};

/// As long as it lives, what is still at work after so many milliseconds fails with TooSlow, the full-text
/// engine's own work included, and so does every statement after that. Of several limits the earliest
/// counts; they may end in any order. Not to be used where something is written.
class TimeLimit
{
public:
    TimeLimit(Database &database, qint64 ms);
    ~TimeLimit();
    TimeLimit(const TimeLimit &) = delete;
    TimeLimit &operator=(const TimeLimit &) = delete;

private:
    void enforce();

    Database &m_database;
    std::multiset<std::chrono::steady_clock::time_point>::iterator m_deadline;
};

/// Rolls back unless commit() succeeded. Write locks the archive at once, so that what is read stays true
/// until it is written; Read gives all statements the same state of the archive, and ends what takes longer
/// than anybody waits. WriteBehind is a Write that
/// does not wait for the disk: everybody sees it and it survives the end of the program, but a power failure
/// may take it back, until the next Write has been committed.
class Transaction
{
public:
    enum class Kind { Read, Write, WriteBehind };

    Transaction(Database &database, Kind kind);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    /// Fails with the first error of the statements since the transaction began; nothing is written then.
    Result<void> commit();

private:
    void waitForDisk(bool wait);
    Database &m_database;
    std::optional<TimeLimit> m_limit;
    Kind m_kind;
    bool m_open = false;
    bool m_outer = false;
    bool m_done = false;
};

} // namespace kelva
