#pragma once

#include "service/session.h"
#include "store/result.h"

#include <QString>

#include <memory>

namespace kelva {

/// What both plug-ins need to keep: the session, the text of the last failure, and whether an archive lies
/// beside the program that is browsed without a login.
class Connection
{
public:
    enum class ExpiredAccounts { Refused, Allowed };

    /// Path of the archive beside the program; empty when there is none.
    static QString offlineArchive();

    bool isConnected() const { return m_session != nullptr; }
    Session *session() { return m_session.get(); }
    Result<void> login(const QString &host, int port, const QString &user, const QString &password);
    Result<void> openOffline();
    void close() { m_session.reset(); }

    const QString &lastError() const { return m_lastError; }
    void clearError() { m_lastError.clear(); }
    void setError(const Error &error) { m_lastError = error.text; }

    /// Runs an operation on the session. False and a text when there is none or the operation fails.
    template<typename Operation>
    bool perform(Operation operation, ExpiredAccounts expired = ExpiredAccounts::Refused)
    {
        m_lastError.clear();
        if (!requireSession(expired))
            return false;
        const auto result = operation(*m_session);
        if (!result)
            setError(result.error());
        return result.ok();
    }

    /// The same for operations with a value, which is fallback on failure.
    template<typename Operation, typename Value>
    Value fetch(Operation operation, Value fallback)
    {
        m_lastError.clear();
        if (!requireSession())
            return fallback;
        auto result = operation(*m_session);
        if (result)
            return std::move(result.value());
        setError(result.error());
        return fallback;
    }

    bool refuseUnavailable();

private:
    bool requireSession(ExpiredAccounts expired = ExpiredAccounts::Refused);

    std::unique_ptr<Session> m_session;
    QString m_lastError;
};

} // namespace kelva
