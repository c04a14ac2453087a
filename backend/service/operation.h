#pragma once

#include "service/session.h"
#include "store/database.h"

#include <QVector>

#include <type_traits>

namespace kelva {

/// What a session must have for an operation to begin. What it then sees or may change is decided record by
/// record, by Access.
enum class Permission {
    Anybody,       ///< an account; or the archive is read offline
    Writer,        ///< an account: an archive that is read offline is not written
    OldPassword,   ///< proved by what is handed in, as the account may have expired; never offline
    Classify,      ///< kelvaCLASSIFY
    ReadHistory,   ///< kelvaHISTORY; or the archive is read offline
    CreateFolders, ///< kelvaCREATEFOLDER or kelvaADMIN
    Administer,    ///< kelvaADMIN
};

struct Operation
{
    const char *name; ///< "Class::function", and what it is used for where that makes a difference
    Permission permission;
};

/// Every operation of the service.
const QVector<Operation> &operations();

/// Ok, or Refused. An operation that is not in the list is refused to everybody. For what reaches beyond one
/// transaction; all else asks by read() or change().
Result<void> permit(Session &session, const char *operation);

template<typename Work>
auto perform(Session &session, const char *operation, Transaction::Kind kind, Work work)
    -> std::invoke_result_t<Work, Database &>
{
    using Outcome = std::invoke_result_t<Work, Database &>;
    Database &database = session.database();
    Transaction transaction(database, kind);
    if (database.failed())
        return database.error();
    const Result<void> permitted = permit(session, operation);
    Outcome outcome = permitted ? work(database) : Outcome(permitted.error());
    if (!outcome) {
        // The first failure says why: a record that could not be read is not a missing one.
        database.fail(outcome.error());
        return database.error();
    }
    if (const Result<void> done = transaction.commit(); !done)
        return done.error();
    return outcome;
}

/// Opens an operation that only reads: all of work, a function from Database & to a Result, meets one state
/// of the archive. Fails as permit() does, with the first statement that failed, or as work does.
template<typename Work>
auto read(Session &session, const char *operation, Work work)
{
    return perform(session, operation, Transaction::Kind::Read, work);
}

/// The same for an operation that writes: it is done as a whole or, when it fails, not at all.
template<typename Work>
auto change(Session &session, const char *operation, Work work,
            Transaction::Kind kind = Transaction::Kind::Write)
{
    return perform(session, operation, kind, work);
}

} // namespace kelva
