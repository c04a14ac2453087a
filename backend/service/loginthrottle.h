#pragma once

#include <QHash>
#include <QMutex>
#include <QString>

#include <functional>

namespace kelva {

/// Slows down who guesses passwords, account by account: after some free attempts each failure makes the next
/// attempt wait, longer every time up to a limit. Nobody sleeps: an attempt that comes too early is refused
/// without a look at the password. May be used by any thread.
class LoginThrottle
{
public:
    /// nowMs: a clock that never goes back.
    explicit LoginThrottle(std::function<qint64()> nowMs) : m_nowMs(std::move(nowMs)) {}
    /// The one of this process.
    static LoginThrottle &instance();

    /// Seconds until the account may be tried again; 0 when it may be now. Counts as a failure until
    /// succeeded(), so that attempts made side by side do not slip through.
    int begin(const QString &account);
    void succeeded(const QString &account);

private:
    struct Attempts
    {
        int failures = 0;
        qint64 notBefore = 0;
    };
    void forgetOld(qint64 now);

    std::function<qint64()> m_nowMs;
    QMutex m_mutex;
    QHash<QString, Attempts> m_attempts;
};

} // namespace kelva
