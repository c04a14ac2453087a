#pragma once

#include <QSemaphore>
#include <QString>
#include <QThread>

#include <atomic>
#include <memory>

namespace kelva {

/// Indexes an archive in the background, with a connection of its own: whoever archives or searches never
/// waits for it. New documents, of whatever process, are found within seconds.
class IndexerThread
{
public:
    IndexerThread() = default;
    ~IndexerThread();
    IndexerThread(const IndexerThread &) = delete;
    IndexerThread &operator=(const IndexerThread &) = delete;

    void start(const QString &archivePath);
    /// Breaks off the document at hand, which stays to do, and waits for the end: some tenths of a second.
    void stop();
    /// There may be something to do now.
    void wake() { m_wake.release(); }

private:
    void work(const QString &archivePath);
    void pause(int timeoutMs);

    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_stopping{false};
    QSemaphore m_wake;
};

} // namespace kelva
