#include "store/watchdog.h"

#include <algorithm>

#include <sqlite3.h>

namespace kelva {

Watchdog &Watchdog::instance()
{
    static Watchdog watchdog;
    return watchdog;
}

Watchdog::~Watchdog()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_wakeUp.notify_one();
    if (m_thread.joinable())
        m_thread.join();
}

void Watchdog::watch(sqlite3 *connection, Time deadline)
{
    bool isEarlier = false;
    {
        const std::lock_guard lock(m_mutex);
        const auto known = std::find_if(m_watched.begin(), m_watched.end(), [=](const Watched &watched) {
            return watched.connection == connection;
        });
        if (known != m_watched.end())
            known->deadline = deadline;
        else
            m_watched.push_back({connection, deadline});
        isEarlier = deadline < m_nextLook;
        if (isEarlier)
            m_nextLook = deadline;
        if (!m_thread.joinable())
            m_thread = std::thread([this] { run(); });
    }
    // Most watches are over long before their deadline; the thread sleeps through those.
    if (isEarlier)
        m_wakeUp.notify_one();
}

void Watchdog::release(sqlite3 *connection)
{
    const std::lock_guard lock(m_mutex);
    m_watched.erase(std::remove_if(m_watched.begin(), m_watched.end(),
                                   [=](const Watched &watched) { return watched.connection == connection; }),
                    m_watched.end());
}

void Watchdog::run()
{
    // An interruption only reaches the statement at work, so it is repeated for the ones that follow.
    constexpr auto again = std::chrono::milliseconds(20);
    std::unique_lock lock(m_mutex);
    while (!m_ends) {
        const Time now = std::chrono::steady_clock::now();
        m_nextLook = Time::max();
        for (const Watched &watched : m_watched) {
            if (watched.deadline <= now)
                sqlite3_interrupt(watched.connection);
            m_nextLook = std::min(m_nextLook, std::max(watched.deadline, now + again));
        }
        if (m_nextLook == Time::max())
            m_wakeUp.wait(lock);
        else
            m_wakeUp.wait_until(lock, m_nextLook);
    }
}

} // namespace kelva
