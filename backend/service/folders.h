#pragma once

#include "service/records.h"
#include "store/result.h"

#include <QString>
#include <QStringList>

namespace kelva {

class Database;
class Session;

/// The folder tree, its rights and the standard structures. A folder is named by its oid, a dotted path of
/// numbers.
class Folders
{
public:
    explicit Folders(Session &session) : m_session(session) {}

    enum class Scope {
        InUse,        ///< what the session sees and the way to it ("L"), inactive folders left out
        WithInactive, ///< the same with inactive ones; the flag of all below them holds "I" as well
        All,          ///< every folder, for administrators
    };
    /// Records of nine fields: oid, name, flag, key, parent oid, "0", "L" or "", "E" or "", keywords; parents
    /// first, siblings by name.
    Result<Records> list(Scope scope);
    /// Records of oid, name, flag, key, parent oid, "1" or "0", and "D" or "I" or "U" with keywords.
    Result<void> save(const Records &records);
    /// parentOid "-1" makes a main folder. Returns the new oid.
    Result<QString> create(const QString &parentOid, const QString &name, const QString &key,
                           const QString &keywords);
    /// Decimal text: one more than the largest last component of all oids.
    Result<QString> nextOid();

    Result<QStringList> roles(const QString &oid);
    Result<void> setRoles(const QString &oid, const QStringList &roles);

    /// The standard structure kept for a folder, as it was saved; empty when there is none.
    Result<Records> structure(const QString &oid);
    Result<void> saveStructure(const QString &oid, const Records &records);

private:
    Session &m_session;
};

/// The folder that column 1 of a record shows for a folder: its first two levels, of which the first has one
/// digit.
QString mainFolderOf(const QString &oid);
/// Rows of the archive that no list of folders shows, one sentence each.
QStringList folderFaults(Database &database);
/// "0", or decimal numbers joined by dots.
bool isFolderOid(const QString &oid);

} // namespace kelva
