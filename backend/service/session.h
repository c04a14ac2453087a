#pragma once

#include "service/access.h"
#include "service/recordlayouts.h"
#include "store/database.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace kelva {

/// One user at work with one archive. The operations are classes of their own (Documents, Folders, Users,
/// ...) that are made on the spot with the session they work for: Documents(session).get(id).
class Session
{
public:
    /// WrongPassword for an unknown user and a wrong password alike; PasswordExpired only with the right
    /// password; Refused when the account was tried too often.
    static Result<std::unique_ptr<Session>> login(const QString &path, const QString &user,
                                                  const QString &password);
    /// Reads an archive on a medium: no login, every document, no writing.
    static Result<std::unique_ptr<Session>> openOffline(const QString &path);
    /// Every right and no user check, for the tools of whoever owns the file. Changes are written under this
    /// name.
    static Result<std::unique_ptr<Session>> openAsOwner(const QString &path, const QString &name);
    /// For the vocabulary of a profile's user without his password, for whoever owns the file. NotFound for
    /// an unknown login.
    static Result<std::unique_ptr<Session>> openAsUser(const QString &path, const QString &user);

    Database &database() { return *m_database; }
    const QString &login() const { return m_login; }
    qint64 userId() const { return m_userId; }
    /// The same as it is stored with what belongs to the user: NULL without an account.
    QVariant account() const { return m_userId == 0 ? QVariant() : QVariant(m_userId); }
    bool isOffline() const { return m_scope == Access::Scope::ReadOnly; }

    /// What this session may do; brought up to date when somebody changed rights or folders. Nothing once the
    /// account was deleted or has expired: the transaction at work fails then.
    const Access &access();
    /// Refused when the account is gone.
    Result<void> requireAccount();
    /// Refused when the archive is read offline.
    Result<void> requireWritable() const;
    /// Role names of the user as of login or the last refresh(): rights, free roles, "r_" + login.
    const QStringList &roles() const { return m_roles; }
    /// Reads the user's roles anew.
    Result<void> refresh();
    /// What others changed so far is known from now on. roles() stay as they are.
    Result<void> acknowledgeVocabulary();

    /// Restricts lists to one sub-archive; 0 for all.
    void setSubArchive(qint64 id) { m_subArchive = id; }
    qint64 subArchive() const { return m_subArchive; }

    /// True once after somebody else has changed the vocabulary.
    bool takeVocabularyChange();
    /// To be called inside the transaction that changes vocabulary (folders, status, types, attributes,
    /// rights).
    void noteVocabularyChange();

    RecordLayouts &recordLayouts() { return m_recordLayouts; }

    QDate today() const { return m_now().date(); }
    /// "yyyy-MM-ddTHH:mm:ss"
    QString timestamp() const;
    void setClock(std::function<QDateTime()> now) { m_now = std::move(now); }

private:
    /// Id of the account that a session is for, or why there is none.
    using Identify = std::function<Result<qint64>(Database &)>;

    Session(std::unique_ptr<Database> database, Access::Scope scope, QString login);
    static Result<std::unique_ptr<Session>> open(const QString &path, Access::Scope scope,
                                                 const QString &login, const Identify &identify);
    bool hasAccount(qint64 *vocabulary);

    std::unique_ptr<Database> m_database;
    QString m_login;
    qint64 m_userId = 0;
    Access::Scope m_scope = Access::Scope::Roles;
    QStringList m_roles;
    qint64 m_subArchive = 0;
    qint64 m_knownVocabulary = 0;
    Access m_access;
    qint64 m_accessAsOf = -1;
    int m_accessRollbacks = 0;
    bool m_accountGone = false;
    RecordLayouts m_recordLayouts;
    std::function<QDateTime()> m_now = [] { return QDateTime::currentDateTime(); };
};

} // namespace kelva
