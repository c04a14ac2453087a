#pragma once

#include "store/result.h"

#include <QString>
#include <QStringList>

namespace kelva {

class Session;

/// Stored searches, each open to the users of its roles.
class Searches
{
public:
    explicit Searches(Session &session) : m_session(session) {}

    /// Records of id, name, definition, roles: what is open to one of the login's roles. Administrators also
    /// see what is shared with roles that they do not have, but nobody else's personal searches. Any other
    /// login than the session's is for administrators.
    Result<QStringList> list(const QString &login);
    /// Without roles the search belongs to the session's user alone, and only administrators give it others.
    /// Only they change or remove a search that is shared.
    Result<qint64> save(const QString &name, const QString &definition, const QStringList &roles);
    Result<void> update(qint64 id, const QString &name, const QString &definition, const QStringList &roles);
    Result<void> remove(const QString &id);

private:
    Session &m_session;
};

} // namespace kelva
