#pragma once

#include "store/result.h"

#include <QString>
#include <QStringList>

namespace kelva {

class Database;
class Session;

struct NewUser
{
    QString login;
    QString password;
    QString name;
    QString shortName;
};

/// Ok when the password fits the stored hash; an empty hash fits none and takes as long. WrongPassword, or
/// Refused without a look at it when the account was tried too often of late.
Result<void> checkPassword(const Database &database, const QString &login, const QString &password,
                           const QString &hash);

/// Users, roles and passwords. Everything but one's own password and the lists of names is the
/// administrators'.
class Users
{
public:
    explicit Users(Session &session) : m_session(session) {}

    /// Records: id, login, name, short name, "", "1" for a directory user or "0".
    Result<QStringList> list();
    /// Makes the personal role as well and gives it to the user.
    Result<qint64> create(const NewUser &user);
    /// An empty password keeps the old one.
    Result<void> update(qint64 id, const NewUser &user);
    /// Refuses the session's own user and the last administrator.
    Result<void> remove(const QStringList &ids);
    Result<void> setPassword(const QString &login, const QString &password);
    Result<void> setPasswordExpired(const QString &login, bool expired);
    Result<void> changeOwnPassword(const QString &oldPassword, const QString &newPassword);
    /// Needs no session: the old password is the proof.
    static Result<void> changeExpiredPassword(const QString &path, const QString &login,
                                              const QString &oldPassword, const QString &newPassword);

    Result<QStringList> roles();
    Result<void> createRoles(const QStringList &names);
    Result<void> removeRoles(const QStringList &names);
    Result<QStringList> rolesOf(const QString &login);
    Result<void> setRolesOf(const QString &login, const QStringList &roles);
    Result<QStringList> usersOf(const QString &role);
    Result<void> setUsersOf(const QString &role, const QStringList &logins);

private:
    Session &m_session;
};

} // namespace kelva
