#include "service/searches.h"

#include "contract/recordformat.h"
#include "service/operation.h"
#include "service/records.h"
#include "service/recordvalues.h"
#include "service/rights.h"

namespace kelva {
namespace {

constexpr int maximumName = 254;
constexpr int maximumDefinition = 1 << 20;

/// The definition holds separators that are its own; a record must not break at them. Half a definition would
/// be another search, so one that is too long is refused.
Result<QString> cleanDefinition(QString text)
{
    if (text.size() > maximumDefinition)
        return Error{ErrorCode::BadInput, QStringLiteral("The search is too long.")};
    text.remove(recordformat::fieldSeparator);
    text.remove(QChar(u'\0'));
    return text;
}

Result<QString> cleanName(const QString &name)
{
    const QString clean = storedText(name, maximumName).toString().trimmed();
    if (clean.isEmpty())
        return Error{ErrorCode::BadInput, QStringLiteral("The search needs a name.")};
    return clean;
}

bool isPersonalOfOthers(const QStringList &roles, const QString &login)
{
    if (roles.isEmpty())
        return false;
    for (const QString &role : roles)
        if (!role.startsWith(rights::personalPrefix) || role == rights::personalPrefix + login)
            return false;
    return true;
}

QStringList rolesOfSearch(Database &database, qint64 id)
{
    return database.texts(QStringLiteral("SELECT role FROM search_role WHERE search = ? ORDER BY role"),
                          {id});
}

Result<void> storeRoles(Session &session, qint64 id, const QStringList &roles)
{
    Database &database = session.database();
    const QString personal = rights::personalPrefix + session.login();
    QStringList wanted = roles;
    wanted.removeAll(QString());
    if (wanted.isEmpty())
        wanted << personal;
    database.run(QStringLiteral("DELETE FROM search_role WHERE search = ?"), {id});
    for (const QString &role : qAsConst(wanted)) {
        // What stands in other users' lists is the administrators' business.
        if (role != personal && !session.access().isAdmin())
            return Error{ErrorCode::Refused,
                         QStringLiteral("You cannot give the search to the role %1.").arg(role.left(80))};
        if (!database.value(QStringLiteral("SELECT 1 FROM role WHERE name = ?"), {role}).isValid())
            return Error{ErrorCode::NotFound,
                         QStringLiteral("The role %1 does not exist.").arg(role.left(80))};
        database.run(
            QStringLiteral("INSERT INTO search_role(search, role) VALUES(?, ?) ON CONFLICT DO NOTHING"),
            {id, role});
    }
    return {};
}

/// Administrators may, and others what is theirs alone: a search of theirs that was shared is no longer.
Result<void> checkMayChange(Session &session, qint64 id)
{
    if (!session.database().value(QStringLiteral("SELECT 1 FROM search WHERE id = ?"), {id}).isValid())
        return Error{ErrorCode::NotFound, QStringLiteral("The search does not exist.")};
    const QStringList roles = rolesOfSearch(session.database(), id);
    const QString personal = rights::personalPrefix + session.login();
    if (session.access().isAdmin() || roles == QStringList{personal})
        return {};
    if (!roles.contains(personal))
        return Error{ErrorCode::Refused, QStringLiteral("The search belongs to another user.")};
    return Error{ErrorCode::Refused,
                 QStringLiteral("The search is for other users, too; only an administrator can change it.")};
}

} // namespace

Result<QStringList> Searches::list(const QString &login)
{
    return read(m_session, "Searches::list", [&](Database &database) -> Result<QStringList> {
        const Access &access = m_session.access();
        // Another user's searches are the administrators' to see.
        const QString user = login.isEmpty() || !access.isAdmin() ? m_session.login() : login;
        QStringList roles = database.texts(QStringLiteral("SELECT role FROM account_role r JOIN account a"
                                                          " ON a.id = r.account WHERE a.login = ?"),
                                           {user});
        const bool administers = roles.contains(rights::admin) || m_session.isOffline();
        roles << rights::everyUser << rights::personalPrefix + user;
        QStringList records;
        for (Query row =
                 database.query(QStringLiteral("SELECT id, name, definition FROM search ORDER BY name, id"));
             row.next();) {
            const QStringList own = rolesOfSearch(database, row.number(0));
            bool open = administers && !isPersonalOfOthers(own, user);
            for (const QString &role : own)
                open = open || roles.contains(role);
            if (open)
                records << joinFields(
                    {row.text(0), row.text(1), row.text(2), own.join(recordformat::listSeparator)});
        }
        return records;
    });
}

Result<qint64> Searches::save(const QString &name, const QString &definition, const QStringList &roles)
{
    return change(m_session, "Searches::save", [&](Database &database) -> Result<qint64> {
        const Result<QString> cleanedName = cleanName(name);
        const Result<QString> cleaned = cleanDefinition(definition);
        if (!cleanedName || !cleaned)
            return cleanedName ? cleaned.error() : cleanedName.error();
        const qint64 id =
            database.insert(QStringLiteral("INSERT INTO search(name, definition, owner) VALUES(?, ?, ?)"),
                            {cleanedName.value(), cleaned.value(), m_session.login()});
        if (const Result<void> stored = storeRoles(m_session, id, roles); !stored)
            return stored.error();
        return id;
    });
}

Result<void> Searches::update(qint64 id, const QString &name, const QString &definition,
                              const QStringList &roles)
{
    return change(m_session, "Searches::update", [&](Database &database) -> Result<void> {
        if (const Result<void> allowed = checkMayChange(m_session, id); !allowed)
            return allowed;
        const Result<QString> cleanedName = cleanName(name);
        const Result<QString> cleaned = cleanDefinition(definition);
        if (!cleanedName || !cleaned)
            return cleanedName ? cleaned.error() : cleanedName.error();
        database.run(QStringLiteral("UPDATE search SET name = ?, definition = ? WHERE id = ?"),
                     {cleanedName.value(), cleaned.value(), id});
        return storeRoles(m_session, id, roles);
    });
}

Result<void> Searches::remove(const QString &id)
{
    return change(m_session, "Searches::remove", [&](Database &database) -> Result<void> {
        if (const Result<void> allowed = checkMayChange(m_session, id.toLongLong()); !allowed)
            return allowed;
        database.run(QStringLiteral("DELETE FROM search WHERE id = ?"), {id.toLongLong()});
        return {};
    });
}

} // namespace kelva
