#include "store/database.h"
#include "store/watchdog.h"

#include <sqlite3.h>

namespace kelva {
namespace {

/// What lists and searches may take is less, and said where they are.
constexpr qint64 longestReadMs = 20'000;

} // namespace

TimeLimit::TimeLimit(Database &database, qint64 ms) : m_database(database)
{
    m_deadline =
        m_database.m_deadlines.insert(std::chrono::steady_clock::now() + std::chrono::milliseconds(ms));
    enforce();
}

TimeLimit::~TimeLimit()
{
    m_database.m_deadlines.erase(m_deadline);
    enforce();
}

void TimeLimit::enforce()
{
    if (m_database.m_deadlines.empty())
        Watchdog::instance().release(m_database.handle());
    else
        Watchdog::instance().watch(m_database.handle(), *m_database.m_deadlines.begin());
}

Transaction::Transaction(Database &database, Kind kind) : m_database(database), m_kind(kind)
{
    m_outer = m_database.m_depth == 0;
    if (!m_outer) {
        ++m_database.m_depth;
        m_open = true;
        return;
    }
    m_database.m_error.reset();
    waitForDisk(false);
    if (kind == Kind::Read)
        m_limit.emplace(m_database, longestReadMs);
    m_open = m_database.run(kind == Kind::Read ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE"));
    m_database.m_depth = 1;
}

/// Only between transactions, where it always succeeds. Does nothing for a transaction of another kind.
void Transaction::waitForDisk(bool wait)
{
    if (m_kind == Kind::WriteBehind)
        sqlite3_exec(m_database.handle(), wait ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL",
                     nullptr, nullptr, nullptr);
}

Transaction::~Transaction()
{
    if (m_done)
        return;
    m_limit.reset();
    if (--m_database.m_depth > 0) {
        if (m_kind != Kind::Read)
            m_database.fail({ErrorCode::BadInput, QStringLiteral("The operation was broken off.")});
        return;
    }
    if (!m_open) {
        waitForDisk(true);
        return;
    }
    // Keeps the error of the statements: the caller may still ask for it.
    const std::optional<Error> error = m_database.m_error;
    if (m_kind != Kind::Read) {
        m_database.run(QStringLiteral("ROLLBACK"));
        ++m_database.m_rollbacks;
        waitForDisk(true);
    } else {
        // Nothing was written but temporary tables, and those are still good.
        m_database.run(QStringLiteral("COMMIT"));
    }
    m_database.m_error = error;
}

Result<void> Transaction::commit()
{
    if (m_database.m_error)
        return *m_database.m_error;
    m_limit.reset();
    if (m_outer && !m_database.run(QStringLiteral("COMMIT")))
        return *m_database.m_error;
    --m_database.m_depth;
    m_done = true;
    if (m_outer)
        waitForDisk(true);
    return {};
}

} // namespace kelva
