#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

struct sqlite3;

namespace kelva {

/// A thread that breaks off what connections are still at when their time is over. The database asks nobody
/// while its full-text engine works, so nothing on the connection's own thread could do it.
class Watchdog
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// The one of this process; the thread starts with the first watch and ends with the process.
    static Watchdog &instance();
    ~Watchdog();
    Watchdog(const Watchdog &) = delete;
    Watchdog &operator=(const Watchdog &) = delete;

    /// From then on, what the connection does ends with SQLITE_INTERRUPT, until release(). One at a time for
    /// a connection: the later call counts.
    void watch(sqlite3 *connection, Time deadline);
    /// The connection is not touched any more when this returns.
    void release(sqlite3 *connection);

private:
    struct Watched
    {
        sqlite3 *connection;
        Time deadline;
    };

    Watchdog() = default;
    void run();

    std::mutex m_mutex;
    std::condition_variable m_wakeUp;
    std::vector<Watched> m_watched;
    Time m_nextLook = Time::max();
    bool m_ends = false;
    std::thread m_thread;
};

} // namespace kelva
