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
    const QHash<QString, QSet<QString>> own =
        scope == Scope::Roles ? folderRoles(database) : QHash<QString, QSet<QString>>();
    m_opensEverything = own.isEmpty();
    m_seesEverything = m_opensEverything || m_roles.contains(rights::allDocuments);
    if (m_opensEverything)
        return;
    QSet<QString> opened{unassigned};
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
            opened.insert(oid);
    }

    m_opened = FolderSet(database, opened);
}

bool Access::has(const QString &right) const
{
    return m_scope == Scope::Owner || (m_scope == Scope::Roles && m_roles.contains(right));
}

bool Access::seesEveryDocument() const
{
    return m_scope != Scope::Roles || m_roles.contains(rights::allDocuments);
}

bool Access::maySee(const QString &folder) const
{
    return m_seesEverything || m_opened.contains(folder);
}

bool Access::mayWrite(const QString &folder) const
{
    return has(rights::classify) && (m_opensEverything || m_opened.contains(folder));
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
    return m_seesEverything ? sql::always : FolderSet::condition(column);
}

QString Access::writableCondition(const QString &column) const
{
    if (!has(rights::classify))
        return sql::never;
    return m_opensEverything ? sql::always : FolderSet::condition(column);
}

} // namespace kelva
