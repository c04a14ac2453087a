#pragma once

#include "clause/clause.h"
#include "store/folderset.h"
#include "store/result.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace kelva {

class Database;

/// What a session may see and write: the one place that decides. A folder without roles of its own takes
/// those of its nearest ancestor that has some; with none at all it is open to everybody, and so is "0", not
/// assigned.
class Access
{
public:
    enum class Scope {
        Roles,    ///< as the user's roles say
        Owner,    ///< everything
        ReadOnly, ///< sees everything, writes nothing
    };

    Access() = default;
    /// Reads folders and their roles, and prepares the connection for the conditions.
    Access(Database &database, Scope scope, const QStringList &userRoles);

    bool has(const QString &right) const;
    bool isAdmin() const { return has(QStringLiteral("kelvaADMIN")); }
    /// Every record.
    bool seesEverything() const { return m_seesEverything; }
    /// And every file that has no record yet.
    bool seesEveryDocument() const;
    bool maySee(const QString &folder) const;
    /// A record in this folder may be changed: kelvaALLDOCS opens folders for reading alone.
    bool mayWrite(const QString &folder) const;
    /// Ok, or Refused with a sentence that names what the right is for.
    Result<void> require(const QString &right) const;

    /// Conditions on the column of a folder oid; always true when all of them may be.
    QString visibleCondition(const QString &column) const;
    QString writableCondition(const QString &column) const;

private:
    Scope m_scope = Scope::Roles;
    QSet<QString> m_roles;
    FolderSet m_opened; ///< by their roles
    bool m_opensEverything = false;
    bool m_seesEverything = false;
};

} // namespace kelva
