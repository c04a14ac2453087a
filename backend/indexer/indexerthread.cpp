#include "indexer/indexerthread.h"

#include "indexer/indexer.h"

namespace kelva {
namespace {

constexpr int idleIntervalMs = 2000;
/// After an error: the disk is full, the archive locked, the program missing.
constexpr int troubleIntervalMs = 30000;

} // namespace

IndexerThread::~IndexerThread()
{
    stop();
}

void IndexerThread::start(const QString &archivePath)
{
    stop();
    m_stopping = false;
    m_thread.reset(QThread::create([this, archivePath] { work(archivePath); }));
    m_thread->start();
}

void IndexerThread::stop()
{
    if (!m_thread)
        return;
    m_stopping = true;
    wake();
    m_thread->wait();
    m_thread.reset();
}

void IndexerThread::pause(int timeoutMs)
{
    m_wake.tryAcquire(1, timeoutMs);
}

void IndexerThread::work(const QString &archivePath)
{
    IndexerOptions options;
    options.cancelled = [this] { return m_stopping.load(); };
    std::unique_ptr<Indexer> indexer;
    // Whoever has just logged in waits for the first list.
    pause(idleIntervalMs);
    while (!m_stopping) {
        if (!indexer) {
            if (auto opened = Indexer::open(archivePath, options))
                indexer = std::move(opened.value());
        }
        if (!indexer) {
            pause(troubleIntervalMs);
            continue;
        }
        const Result<Indexer::Step> step = indexer->processNext();
        if (!step)
            pause(troubleIntervalMs);
        else if (step.value() == Indexer::Step::Nothing)
            pause(idleIntervalMs);
    }
}

} // namespace kelva
