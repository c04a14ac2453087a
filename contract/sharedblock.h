#pragma once

#include <QByteArray>
#include <QString>

/// Bytes in shared memory for the programs of one user. They are found as QSharedMemory finds its segments,
/// by two key files in the temporary directory, and read or written under the same semaphore. Files, segment
/// and semaphore that any other user made or may use are not touched, and every wait ends.
class SharedBlock final
{
public:
    enum class Outcome {
        Done,
        Missing, ///< nobody has published under this key
        Foreign, ///< another user holds the key file, the segment or the semaphore
        Locked,  ///< whoever holds the lock does not let go of it
        Failed,  ///< the system refused
    };

    /// How long read() and publish() wait for the lock.
    static constexpr int patienceMs = 3000;

    /// Publishes under this key for as long as the object lives.
    explicit SharedBlock(const QString &key);
    ~SharedBlock();
    SharedBlock(const SharedBlock &) = delete;
    SharedBlock &operator=(const SharedBlock &) = delete;

    const QString &key() const { return m_key; }
    /// Replaces what readers find; those that read just now keep what they have. Never Missing.
    Outcome publish(const QByteArray &block);

    /// Copies the whole segment: bytes behind the block are zero, or what a longer one has left there.
    static Outcome read(const QString &key, QByteArray &block);
    /// A sentence for the user; empty when done.
    static QString text(Outcome outcome, const QString &key);
    /// Removes what killed programs of this user published, and returns how many segments that were.
    static int removeAbandoned();

private:
    Outcome tryToPublish(const QByteArray &block);
    Outcome findLock();
    Outcome makeRoom(int size);
    Outcome adopt(int id, int size);
    void attach(int id);
    void release();

    const QString m_key;
    int m_semaphore = -1;
    int m_segment = -1;
    char *m_data = nullptr;
    qint64 m_size = 0;
};
