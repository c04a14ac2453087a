#include "service/session.h"

#include "service/rights.h"
#include "service/users.h"

namespace kelva {
namespace {

qint64 vocabularyCounter(Database &database)
{
    return database.value(QStringLiteral("SELECT value FROM counter WHERE name = 'vocabulary'")).toLongLong();
}

Error accountGone()
{
    return {ErrorCode::Refused,
            QStringLiteral("Your user account has expired or was deleted. Please log in again.")};
}

} // namespace

Session::Session(std::unique_ptr<Database> database, Access::Scope scope, QString login)
    : m_database(std::move(database)),
      m_login(std::move(login)),
      m_scope(scope)
{
}

Result<std::unique_ptr<Session>> Session::open(const QString &path, Access::Scope scope, const QString &login,
                                               const Identify &identify)
{
    const bool readOnly = scope == Access::Scope::ReadOnly;
    auto database = Database::open(path, readOnly ? Database::Mode::ReadOnly : Database::Mode::ReadWrite);
    if (!database)
        return database.error();
    std::unique_ptr<Session> session(new Session(std::move(database.value()), scope, login));
    if (identify) {
        const Result<qint64> account = identify(session->database());
        if (!account)
            return account.error();
        session->m_userId = account.value();
    }
    if (const Result<void> loaded = session->refresh(); !loaded)
        return loaded.error();
    return {std::move(session)};
}

Result<std::unique_ptr<Session>> Session::login(const QString &path, const QString &user,
                                                const QString &password)
{
    return open(path, Access::Scope::Roles, user, [&](Database &database) -> Result<qint64> {
        qint64 account = 0;
        QString hash;
        bool expired = false;
        {
            Transaction reading(database, Transaction::Kind::Read);
            Query row = database.query(
                QStringLiteral("SELECT id, password, expired FROM account WHERE login = ? AND directory = 0"),
                {user});
            if (row.next()) {
                account = row.number(0);
                hash = row.text(1);
                expired = row.flag(2);
            }
            if (database.failed())
                return database.error();
        }
        if (const Result<void> checked = checkPassword(database, user, password, hash); !checked)
            return checked.error();
        if (expired)
            return Error{ErrorCode::PasswordExpired,
                         QStringLiteral("Password expired. Please choose a new one.")};
        return account;
    });
}

Result<std::unique_ptr<Session>> Session::openOffline(const QString &path)
{
    return open(path, Access::Scope::ReadOnly, QString(), {});
}

Result<std::unique_ptr<Session>> Session::openAsOwner(const QString &path, const QString &name)
{
    return open(path, Access::Scope::Owner, name, [&](Database &database) -> Result<qint64> {
        return database.value(QStringLiteral("SELECT id FROM account WHERE login = ?"), {name}).toLongLong();
    });
}

Result<std::unique_ptr<Session>> Session::openAsUser(const QString &path, const QString &user)
{
    return open(path, Access::Scope::Roles, user, [&](Database &database) -> Result<qint64> {
        const QVariant account =
            database.value(QStringLiteral("SELECT id FROM account WHERE login = ?"), {user});
        if (!account.isValid())
            return Error{ErrorCode::NotFound, QStringLiteral("There is no user %1.").arg(user)};
        return account.toLongLong();
    });
}

Result<void> Session::refresh()
{
    Transaction reading(*m_database, Transaction::Kind::Read);
    if (m_scope == Access::Scope::ReadOnly)
        m_roles = QStringList{rights::everyUser};
    else if (m_scope == Access::Scope::Owner)
        m_roles = rights::assignable();
    else
        m_roles = m_database->texts(
            QStringLiteral("SELECT role FROM account_role WHERE account = ? ORDER BY role"), {m_userId});
    m_knownVocabulary = vocabularyCounter(*m_database);
    m_accessAsOf = -1;
    return reading.commit();
}

/// One statement for both, since every operation begins with it.
bool Session::hasAccount(qint64 *vocabulary)
{
    Query row = m_database->query(
        QStringLiteral("SELECT value, (SELECT 1 FROM account WHERE id = ? AND expired = 0) FROM counter"
                       " WHERE name = 'vocabulary'"),
        {m_userId});
    if (!row.next())
        return m_scope != Access::Scope::Roles || m_database->failed();
    *vocabulary = row.number(0);
    return m_scope != Access::Scope::Roles || row.flag(1);
}

Result<void> Session::requireAccount()
{
    (void)access();
    return m_accountGone ? Result<void>(accountGone()) : Result<void>();
}

Result<void> Session::requireWritable() const
{
    if (isOffline())
        return Error{ErrorCode::Refused, QStringLiteral("The archive is read-only.")};
    return {};
}

const Access &Session::access()
{
    qint64 counter = 0;
    m_accountGone = !hasAccount(&counter);
    if (m_accountGone) {
        m_database->fail(accountGone());
        m_access = Access();
        m_accessAsOf = -1;
        return m_access;
    }
    // Taking back a transaction takes back the folders prepared in it as well.
    if (counter != m_accessAsOf || m_database->rollbacks() != m_accessRollbacks) {
        // The user's own roles may be what changed; rights that were taken away must not outlive the change.
        QStringList roles = m_roles;
        if (m_scope == Access::Scope::Roles)
            roles = m_database->texts(QStringLiteral("SELECT role FROM account_role WHERE account = ?"),
                                      {m_userId});
        m_access = Access(*m_database, m_scope, roles);
        // What could not be read to its end is read again by the next operation.
        m_accessAsOf = m_database->failed() ? -1 : counter;
        m_accessRollbacks = m_database->rollbacks();
    }
    return m_access;
}

Result<void> Session::acknowledgeVocabulary()
{
    Transaction reading(*m_database, Transaction::Kind::Read);
    m_knownVocabulary = vocabularyCounter(*m_database);
    return reading.commit();
}

bool Session::takeVocabularyChange()
{
    const qint64 counter = vocabularyCounter(*m_database);
    if (counter == m_knownVocabulary || m_database->failed())
        return false;
    m_knownVocabulary = counter;
    return true;
}

void Session::noteVocabularyChange()
{
    const qint64 before = vocabularyCounter(*m_database);
    m_database->run(QStringLiteral("UPDATE counter SET value = value + 1 WHERE name = 'vocabulary'"));
    // Somebody else's change in between must still be noticed.
    if (before == m_knownVocabulary)
        m_knownVocabulary = before + 1;
}

QString Session::timestamp() const
{
    return m_now().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
}

} // namespace kelva
