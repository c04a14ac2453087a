#include "service/users.h"

#include "service/loginthrottle.h"
#include "service/operation.h"
#include "service/records.h"
#include "service/recordvalues.h"
#include "service/rights.h"
#include "store/password.h"

namespace kelva {
namespace {

constexpr int maximumName = 254;

Error unknownUser()
{
    return {ErrorCode::NotFound, QStringLiteral("The user does not exist.")};
}

/// Names end up in records, keys and shared memory names.
Result<void> checkName(const QString &name, const QString &what)
{
    if (name.trimmed().isEmpty() || name.size() > maximumName || cleanText(name) != name)
        return Error{ErrorCode::BadInput, QStringLiteral("The name of the %1 is not valid.").arg(what)};
    return {};
}

qint64 accountOf(Database &database, const QString &login)
{
    return database.value(QStringLiteral("SELECT id FROM account WHERE login = ?"), {login}).toLongLong();
}

QStringList readUsers(Database &database, const QString &condition, const QVariantList &values)
{
    QStringList users;
    Query row =
        database.query(QStringLiteral("SELECT id, login, name, short_name, directory FROM account WHERE %1"
                                      " ORDER BY login")
                           .arg(condition),
                       values);
    while (row.next())
        users << joinFields({row.text(0), row.text(1), row.text(2), row.text(3), QString(),
                             row.flag(4) ? QStringLiteral("1") : QStringLiteral("0")});
    return users;
}

/// A folder whose only role goes away would be open to whoever its parent is open to.
Result<void> checkNoFolderNeeds(Database &database, const QString &role)
{
    const QVariant folder = database.value(
        QStringLiteral(
            "SELECT f.name FROM folder_role r JOIN folder f ON f.oid = r.folder WHERE r.role = ?"
            " AND NOT EXISTS(SELECT 1 FROM folder_role o WHERE o.folder = r.folder AND o.role <> r.role)"),
        {role});
    if (!folder.isValid())
        return {};
    return Error{
        ErrorCode::InUse,
        QStringLiteral("The role %1 is the only one that opens the folder \"%2\". Give the folder another "
                       "role first.")
            .arg(role, folder.toString())};
}

void removeRole(Database &database, const QString &role)
{
    database.run(QStringLiteral("DELETE FROM folder_role WHERE role = ?"), {role});
    database.run(QStringLiteral("DELETE FROM role WHERE name = ?"), {role});
}

Result<void> checkAdministratorRemains(Database &database)
{
    if (database
            .value(QStringLiteral("SELECT 1 FROM account_role r JOIN account a ON a.id = r.account"
                                  " WHERE r.role = ? AND a.directory = 0 LIMIT 1"),
                   {rights::admin})
            .isValid())
        return {};
    return Error{ErrorCode::Refused, QStringLiteral("The archive needs a user who administers it.")};
}

Result<void> storePassword(Database &database, qint64 account, const QString &password)
{
    if (password.isEmpty())
        return Error{ErrorCode::BadInput, QStringLiteral("A password is needed.")};
    const QString hash = hashPassword(password);
    if (hash.isEmpty())
        return Error{ErrorCode::Storage, QStringLiteral("There is not enough memory to store a password.")};
    database.run(QStringLiteral("UPDATE account SET password = ?, expired = 0 WHERE id = ?"),
                 {hash, account});
    return {};
}

/// Compares with the stored hash and stores the new password.
Result<void> replacePassword(Database &database, const QString &login, const QString &oldPassword,
                             const QString &newPassword)
{
    Query row = database.query(
        QStringLiteral("SELECT id, password FROM account WHERE login = ? AND directory = 0"), {login});
    const bool found = row.next();
    const qint64 account = found ? row.number(0) : 0;
    if (const Result<void> checked =
            checkPassword(database, login, oldPassword, found ? row.text(1) : QString());
        !checked)
        return checked;
    return storePassword(database, account, newPassword);
}

Result<void> giveRoles(Database &database, qint64 account, const QString &login, const QStringList &roles)
{
    const QString personal = rights::personalPrefix + login;
    database.run(QStringLiteral("DELETE FROM account_role WHERE account = ? AND role <> ?"),
                 {account, personal});
    for (const QString &role : roles) {
        if (!database.value(QStringLiteral("SELECT 1 FROM role WHERE name = ?"), {role}).isValid())
            return Error{ErrorCode::NotFound,
                         QStringLiteral("The role %1 does not exist.").arg(role.left(80))};
        database.run(
            QStringLiteral("INSERT INTO account_role(account, role) VALUES(?, ?) ON CONFLICT DO NOTHING"),
            {account, role});
    }
    return {};
}

} // namespace

Result<void> checkPassword(const Database &database, const QString &login, const QString &password,
                           const QString &hash)
{
    const QString account = database.path() + QLatin1Char('\n') + login;
    if (const int seconds = LoginThrottle::instance().begin(account); seconds > 0)
        return Error{ErrorCode::Refused,
                     QStringLiteral("There were too many attempts with a wrong password. Please try again in "
                                    "%1 seconds.")
                         .arg(seconds)};
    if (!isPassword(password, hash))
        return Error{ErrorCode::WrongPassword, QStringLiteral("Wrong username or password!")};
    LoginThrottle::instance().succeeded(account);
    return {};
}

Result<QStringList> Users::list()
{
    return read(m_session, "Users::list", [&](Database &database) -> Result<QStringList> {
        return readUsers(database, sql::always, {});
    });
}

Result<qint64> Users::create(const NewUser &user)
{
    return change(m_session, "Users::create", [&](Database &database) -> Result<qint64> {
        if (const Result<void> valid = checkName(user.login, QStringLiteral("user")); !valid)
            return valid.error();
        if (accountOf(database, user.login) != 0)
            return Error{ErrorCode::BadInput, QStringLiteral("There is a user %1 already.").arg(user.login)};
        const qint64 account = database.insert(
            QStringLiteral("INSERT INTO account(login, password, name, short_name) VALUES(?, '', ?, ?)"),
            {user.login, storedText(user.name, maximumName), storedText(user.shortName, maximumName)});
        if (const Result<void> stored = storePassword(database, account, user.password); !stored)
            return stored.error();
        const QString personal = rights::personalPrefix + user.login;
        database.run(QStringLiteral("INSERT INTO role(name) VALUES(?) ON CONFLICT DO NOTHING"), {personal});
        database.run(QStringLiteral("INSERT INTO account_role(account, role) VALUES(?, ?)"),
                     {account, personal});
        m_session.noteVocabularyChange();
        return account;
    });
}

Result<void> Users::update(qint64 id, const NewUser &user)
{
    return change(m_session, "Users::update", [&](Database &database) -> Result<void> {
        const QVariant login = database.value(QStringLiteral("SELECT login FROM account WHERE id = ?"), {id});
        if (!login.isValid())
            return unknownUser();
        // Records, events and the personal role carry the login.
        if (login.toString() != user.login)
            return Error{ErrorCode::Refused, QStringLiteral("The login name of a user cannot be changed.")};
        database.run(QStringLiteral("UPDATE account SET name = ?, short_name = ? WHERE id = ?"),
                     {storedText(user.name, maximumName), storedText(user.shortName, maximumName), id});
        return user.password.isEmpty() ? Result<void>() : storePassword(database, id, user.password);
    });
}

Result<void> Users::remove(const QStringList &ids)
{
    return change(m_session, "Users::remove", [&](Database &database) -> Result<void> {
        for (const QString &id : ids) {
            const QVariant login =
                database.value(QStringLiteral("SELECT login FROM account WHERE id = ?"), {id.toLongLong()});
            if (!login.isValid())
                return unknownUser();
            if (login.toString() == m_session.login())
                return Error{ErrorCode::Refused, QStringLiteral("You cannot delete yourself.")};
            const QString personal = rights::personalPrefix + login.toString();
            if (const Result<void> free = checkNoFolderNeeds(database, personal); !free)
                return free;
            database.run(QStringLiteral("DELETE FROM account WHERE id = ?"), {id.toLongLong()});
            removeRole(database, personal);
        }
        if (const Result<void> remains = checkAdministratorRemains(database); !remains)
            return remains;
        m_session.noteVocabularyChange();
        return {};
    });
}

Result<void> Users::setPassword(const QString &login, const QString &password)
{
    return change(m_session, "Users::setPassword", [&](Database &database) -> Result<void> {
        const qint64 account = accountOf(database, login);
        if (account == 0)
            return unknownUser();
        return storePassword(database, account, password);
    });
}

Result<void> Users::setPasswordExpired(const QString &login, bool expired)
{
    return change(m_session, "Users::setPasswordExpired", [&](Database &database) -> Result<void> {
        database.run(QStringLiteral("UPDATE account SET expired = ? WHERE login = ?"),
                     {expired ? 1 : 0, login});
        if (database.affected() == 0)
            return unknownUser();
        return {};
    });
}

Result<void> Users::changeOwnPassword(const QString &oldPassword, const QString &newPassword)
{
    return change(m_session, "Users::changeOwnPassword", [&](Database &database) {
        return replacePassword(database, m_session.login(), oldPassword, newPassword);
    });
}

Result<void> Users::changeExpiredPassword(const QString &path, const QString &login,
                                          const QString &oldPassword, const QString &newPassword)
{
    auto database = Database::open(path, Database::Mode::ReadWrite);
    if (!database)
        return database.error();
    if (oldPassword == newPassword)
        return Error{ErrorCode::BadInput, QStringLiteral("The new password is the old one.")};
    Transaction writing(*database.value(), Transaction::Kind::Write);
    if (const Result<void> replaced = replacePassword(*database.value(), login, oldPassword, newPassword);
        !replaced)
        return replaced;
    return writing.commit();
}

Result<QStringList> Users::roles()
{
    return read(m_session, "Users::roles", [&](Database &database) -> Result<QStringList> {
        return database.texts(QStringLiteral("SELECT name FROM role ORDER BY name"));
    });
}

Result<void> Users::createRoles(const QStringList &names)
{
    return change(m_session, "Users::createRoles", [&](Database &database) -> Result<void> {
        for (const QString &name : names) {
            if (const Result<void> valid = checkName(name, QStringLiteral("role")); !valid)
                return valid;
            if (rights::isSystemRole(name))
                return Error{ErrorCode::BadInput, QStringLiteral("The name %1 is reserved.").arg(name)};
            if (database.value(QStringLiteral("SELECT 1 FROM role WHERE name = ?"), {name}).isValid())
                return Error{ErrorCode::BadInput, QStringLiteral("There is a role %1 already.").arg(name)};
            database.run(QStringLiteral("INSERT INTO role(name) VALUES(?)"), {name});
        }
        m_session.noteVocabularyChange();
        return {};
    });
}

Result<void> Users::removeRoles(const QStringList &names)
{
    return change(m_session, "Users::removeRoles", [&](Database &database) -> Result<void> {
        for (const QString &name : names) {
            if (rights::isSystemRole(name))
                return Error{ErrorCode::Refused, QStringLiteral("The role %1 cannot be deleted.").arg(name)};
            if (const Result<void> free = checkNoFolderNeeds(database, name); !free)
                return free;
            removeRole(database, name);
        }
        m_session.noteVocabularyChange();
        return {};
    });
}

Result<QStringList> Users::rolesOf(const QString &login)
{
    const char *const operation = login == m_session.login() ? "Users::rolesOf, own" : "Users::rolesOf";
    return read(m_session, operation, [&](Database &database) -> Result<QStringList> {
        return database.texts(QStringLiteral("SELECT role FROM account_role r JOIN account a"
                                             " ON a.id = r.account WHERE a.login = ? ORDER BY role"),
                              {login});
    });
}

Result<void> Users::setRolesOf(const QString &login, const QStringList &roles)
{
    return change(m_session, "Users::setRolesOf", [&](Database &database) -> Result<void> {
        const qint64 account = accountOf(database, login);
        if (account == 0)
            return unknownUser();
        if (const Result<void> given = giveRoles(database, account, login, roles); !given)
            return given;
        if (const Result<void> remains = checkAdministratorRemains(database); !remains)
            return remains;
        m_session.noteVocabularyChange();
        return {};
    });
}

Result<QStringList> Users::usersOf(const QString &role)
{
    return read(m_session, "Users::usersOf", [&](Database &database) -> Result<QStringList> {
        return readUsers(database, QStringLiteral("id IN (SELECT account FROM account_role WHERE role = ?)"),
                         {role});
    });
}

Result<void> Users::setUsersOf(const QString &role, const QStringList &logins)
{
    return change(m_session, "Users::setUsersOf", [&](Database &database) -> Result<void> {
        if (!database.value(QStringLiteral("SELECT 1 FROM role WHERE name = ?"), {role}).isValid())
            return Error{ErrorCode::NotFound,
                         QStringLiteral("The role %1 does not exist.").arg(role.left(80))};
        if (role.startsWith(rights::personalPrefix))
            return Error{ErrorCode::Refused, QStringLiteral("The role %1 belongs to its user.").arg(role)};
        database.run(QStringLiteral("DELETE FROM account_role WHERE role = ?"), {role});
        for (const QString &login : logins) {
            const qint64 account = accountOf(database, login);
            if (account == 0)
                return unknownUser();
            database.run(
                QStringLiteral("INSERT INTO account_role(account, role) VALUES(?, ?) ON CONFLICT DO NOTHING"),
                {account, role});
        }
        if (const Result<void> remains = checkAdministratorRemains(database); !remains)
            return remains;
        m_session.noteVocabularyChange();
        return {};
    });
}

} // namespace kelva
