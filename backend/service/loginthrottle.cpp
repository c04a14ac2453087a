#include "service/loginthrottle.h"

#include <QMutexLocker>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace kelva {
namespace {

constexpr int freeAttempts = 5;
constexpr int longestWaitS = 60;
constexpr qint64 second = 1000;
/// So long after the last attempt an account starts afresh.
constexpr qint64 memoryMs = 15 * 60 * second;
constexpr int manyAccounts = 1000;

int waitAfter(int failures)
{
    constexpr int doublings = 6; // past the longest wait
    const int beyond = failures - freeAttempts;
    return beyond < 0 ? 0 : std::min(longestWaitS, 1 << std::min(beyond, doublings));
}

} // namespace

LoginThrottle &LoginThrottle::instance()
{
    static LoginThrottle throttle([] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    });
    return throttle;
}

int LoginThrottle::begin(const QString &account)
{
    const QMutexLocker lock(&m_mutex);
    const qint64 now = m_nowMs();
    forgetOld(now);
    Attempts &attempts = m_attempts[account];
    if (now - attempts.notBefore > memoryMs)
        attempts = Attempts();
    if (attempts.failures > 0 && now < attempts.notBefore)
        return static_cast<int>((attempts.notBefore - now + second - 1) / second);
    ++attempts.failures;
    attempts.notBefore = now + waitAfter(attempts.failures) * second;
    return 0;
}

void LoginThrottle::succeeded(const QString &account)
{
    const QMutexLocker lock(&m_mutex);
    m_attempts.remove(account);
}

/// Made-up names must not fill the memory.
void LoginThrottle::forgetOld(qint64 now)
{
    if (m_attempts.size() < manyAccounts)
        return;
    for (auto entry = m_attempts.begin(); entry != m_attempts.end();)
        entry = now >= entry->notBefore ? m_attempts.erase(entry) : std::next(entry);
}

} // namespace kelva
