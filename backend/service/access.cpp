#include "service/access.h"

#include "service/rights.h"
#include "store/database.h"

namespace kelva {
namespace {

const QString unassigned = QStringLiteral("0");

QString purposeOf(const QString &right)
{
    if (right == rights::classify)
        return QStringLiteral("classify documents");
    if (right == rights::history)
        return QStringLiteral("see the history of documents");
    if (right == rights::createFolder)
        return QStringLiteral("create folders");
    if (right == rights::versioning)
        return QStringLiteral("store new versions of documents");
    return QStringLiteral("administer the archive");
}

/// Own roles of each folder that has some.
QHash<QString, QSet<QString>> folderRoles(Database &database)
{
    QHash<QString, QSet<QString>> roles;
    for (Query row = database.query(QStringLiteral("SELECT folder, role FROM folder_role")); row.next();)
        roles[row.text(0)].insert(row.text(1));
    return roles;
}

bool opens(const QSet<QString> &folderRoles, const QSet<QString> &userRoles)
{
    return folderRoles.contains(rights::publicFolder) || folderRoles.contains(rights::everyUser) ||
           folderRoles.intersects(userRoles);
}

} // namespace

Access::Access(Database &database, Scope scope, const QStringList &userRoles)
    : m_scope(scope),
      m_roles(userRoles.cbegin(), userRoles.cend())
{
    m_seesEverything = scope != Scope::Roles || m_roles.contains(rights::allDocuments);
    if (m_seesEverything)
        return;
    const QHash<QString, QSet<QString>> own = folderRoles(database);
    if (own.isEmpty()) {
        m_seesEverything = true;
        return;
    }
    QHash<QString, bool> decided;
    for (Query row = database.query(QStringLiteral("SELECT oid FROM folder ORDER BY length(oid)"));
         row.next();) {
        const QString oid = row.text(0);
        bool open = true;
        if (const auto roles = own.constFind(oid); roles != own.cend()) {
            open = opens(*roles, m_roles);
        } else {
            // Parents are shorter and so decided already; a missing level hands on what is above it.
            for (int dot = oid.lastIndexOf(QLatin1Char('.')); dot > 0;
                 dot = oid.lastIndexOf(QLatin1Char('.'), dot - 1)) {
                const auto above = decided.constFind(oid.left(dot));
                if (above != decided.cend()) {
                    open = *above;
                    break;
                }
            }
        }
        decided.insert(oid, open);
        if (open)
            m_visible.insert(oid);
    }
    m_visible.insert(unassigned);

    database.run(
        QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS visible_folder(oid TEXT PRIMARY KEY) WITHOUT ROWID"));
    database.run(QStringLiteral("DELETE FROM visible_folder"));
    Statement insert(database, QStringLiteral("INSERT INTO visible_folder VALUES(?)"));
    for (const QString &oid : qAsConst(m_visible))
        insert.run({oid});
}

bool Access::has(const QString &right) const
{
    return m_scope == Scope::Owner || (m_scope == Scope::Roles && m_roles.contains(right));
}

bool Access::maySee(const QString &folder) const
{
    return m_seesEverything || m_visible.contains(folder);
}

bool Access::mayWrite(const QString &folder) const
{
    return has(rights::classify) && maySee(folder);
}

Result<void> Access::require(const QString &right) const
{
    if (m_scope == Scope::ReadOnly)
        return Error{ErrorCode::Refused, QStringLiteral("The archive is read-only.")};
    if (has(right))
        return {};
    return Error{ErrorCode::Refused, QStringLiteral("You don't have the right to %1.").arg(purposeOf(right))};
}

QString Access::visibleCondition(const QString &column) const
{
    return m_seesEverything ? QStringLiteral("1")
                            : QStringLiteral("%1 IN (SELECT oid FROM temp.visible_folder)").arg(column);
}

} // namespace kelva
