#pragma once

#include "store/result.h"

#include <QStringList>

namespace kelva {

class Database;
class Session;

/// Which documents the full-text search knows the content of. An indexer takes the texts; here documents are
/// entered for it.
class FileTexts
{
public:
    /// As they stand in the archive and leave the program.
    enum State { Waiting = 0, Processed = 4, Failed = 6 };

    explicit FileTexts(Session &session) : m_session(session) {}

    /// Records of state and number of documents; a state of no document has none.
    Result<QStringList> counts();
    /// Everything is to be done again; administrators only. What was found so far is searched until then.
    Result<void> recreate();

    /// A new file or version, in the transaction that brings it. Who is at the old version works in vain.
    static void enter(Database &database, qint64 archiveId);

private:
    Session &m_session;
};

} // namespace kelva
