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

    /// Records of id, name, definition, roles.
    Result<QStringList> list(const QString &login);
    /// Without roles the search belongs to the session's user alone.
    Result<qint64> save(const QString &name, const QString &definition, const QStringList &roles);
    Result<void> update(qint64 id, const QString &name, const QString &definition, const QStringList &roles);
    Result<void> remove(const QString &id);

private:
    Session &m_session;
};

} // namespace kelva
