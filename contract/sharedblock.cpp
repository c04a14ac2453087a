#include "contract/sharedblock.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Outcome = SharedBlock::Outcome;

constexpr int projectId = 'Q';
constexpr int ownerOnly = 0600;
constexpr qint64 smallestSegment = 1 << 20;
constexpr const char *segmentPrefix = "qipc_sharedmemory_";
constexpr const char *semaphorePrefix = "qipc_systemsem_";

union SemaphoreArgument {
    int value;
    semid_ds *state;
};

/// Stands at the very end of a segment: whose it is when its key file is gone.
struct Mark
{
    char magic[16];
    char name[20]; ///< SHA-1 of the key
    int semaphore;
    key_t semaphoreKey;
};
constexpr char magic[sizeof(Mark::magic)] = {'k', 'e', 'l', 'v', 'a', '-', 'd', 'a',
                                             't', 'a', '-', 'b', 'l', 'o', 'c', 'k'};

QByteArray nameOf(const QString &key)
{
    return QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha1);
}

/// The file that QSharedMemory uses for this key.
QByteArray keyFile(const char *prefix, const QString &key)
{
    QString name = QString::fromLatin1(prefix);
    for (const QChar letter : key)
        if ((letter >= QLatin1Char('A') && letter <= QLatin1Char('Z')) ||
            (letter >= QLatin1Char('a') && letter <= QLatin1Char('z')))
            name += letter;
    name += QString::fromLatin1(nameOf(key).toHex());
    return QFile::encodeName(QDir::tempPath() + QLatin1Char('/') + name);
}

Outcome systemKey(const QByteArray &file, key_t &key)
{
    struct stat state = {};
    if (::lstat(file.constData(), &state) != 0)
        return errno == ENOENT ? Outcome::Missing : Outcome::Failed;
    if (!S_ISREG(state.st_mode) || state.st_uid != ::geteuid())
        return Outcome::Foreign;
    key = ::ftok(file.constData(), projectId);
    return key == -1 ? Outcome::Missing : Outcome::Done;
}

Outcome makeKeyFile(const QByteArray &file)
{
    const int made = ::open(file.constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, ownerOnly);
    if (made < 0 && errno != EEXIST)
        return Outcome::Failed;
    if (made >= 0)
        ::close(made);
    return Outcome::Done;
}

/// The key of another file is another one: the old one is kept until then, or its number would be given
/// again.
bool changeKeyFile(const QByteArray &file)
{
    const QByteArray aside = file + ".old";
    const bool changed =
        ::rename(file.constData(), aside.constData()) == 0 && makeKeyFile(file) == Outcome::Done;
    ::unlink(aside.constData());
    return changed;
}

/// Whoever made it can always get at it again, whomever it was given to.
bool isOwn(const ipc_perm &permissions)
{
    return permissions.uid == ::geteuid() && permissions.cuid == ::geteuid() &&
           (permissions.mode & (S_IRWXG | S_IRWXO)) == 0;
}

Outcome failure()
{
    if (errno == EACCES || errno == EPERM)
        return Outcome::Foreign;
    return errno == ENOENT || errno == EIDRM || errno == EINVAL ? Outcome::Missing : Outcome::Failed;
}

Outcome findSemaphore(key_t key, int &id)
{
    id = ::semget(key, 1, 0);
    semid_ds state = {};
    SemaphoreArgument argument = {};
    argument.state = &state;
    if (id < 0 || ::semctl(id, 0, IPC_STAT, argument) != 0)
        return failure();
    return isOwn(state.sem_perm) ? Outcome::Done : Outcome::Foreign;
}

Outcome findSegment(key_t key, int &id, shmid_ds &state)
{
    id = ::shmget(key, 0, 0);
    if (id < 0 || ::shmctl(id, IPC_STAT, &state) != 0)
        return failure();
    return isOwn(state.shm_perm) ? Outcome::Done : Outcome::Foreign;
}

class Lock
{
public:
    explicit Lock(int semaphore) : m_semaphore(semaphore) {}
    ~Lock()
    {
        if (!m_held)
            return;
        sembuf up = {0, 1, SEM_UNDO};
        ::semop(m_semaphore, &up, 1);
    }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

    Outcome take(int patienceMs)
    {
        sembuf down = {0, -1, SEM_UNDO};
        const timespec patience = {patienceMs / 1000, patienceMs % 1000 * 1000000L};
        int done = 0;
        do {
            done = ::semtimedop(m_semaphore, &down, 1, &patience);
        } while (done != 0 && errno == EINTR);
        m_held = done == 0;
        if (m_held)
            return Outcome::Done;
        return errno == EAGAIN ? Outcome::Locked : failure();
    }

private:
    const int m_semaphore;
    bool m_held = false;
};

Mark readMark(int id, qint64 size)
{
    Mark mark = {};
    void *data =
        size >= qint64(sizeof mark) ? ::shmat(id, nullptr, SHM_RDONLY) : reinterpret_cast<void *>(-1);
    if (data == reinterpret_cast<void *>(-1))
        return mark;
    std::memcpy(&mark, static_cast<const char *>(data) + size - qint64(sizeof mark), sizeof mark);
    ::shmdt(data);
    return mark;
}

bool isMarked(const Mark &mark)
{
    return std::memcmp(mark.magic, magic, sizeof magic) == 0;
}

void removeMarkedSemaphore(const Mark &mark)
{
    semid_ds state = {};
    SemaphoreArgument argument = {};
    argument.state = &state;
    if (::semctl(mark.semaphore, 0, IPC_STAT, argument) == 0 && isOwn(state.sem_perm) &&
        state.sem_perm.__key == mark.semaphoreKey)
        ::semctl(mark.semaphore, 0, IPC_RMID);
}

} // namespace

SharedBlock::SharedBlock(const QString &key) : m_key(key) {}

SharedBlock::~SharedBlock()
{
    constexpr int lastWordMs = 1000;
    if (!m_data)
        return;
    // Under the lock, so that no reader is in the segment when it is looked at.
    Lock lock(m_semaphore);
    const bool alone = lock.take(lastWordMs) != Outcome::Locked;
    release();
    shmid_ds state = {};
    if (!alone || ::shmctl(m_segment, IPC_STAT, &state) != 0 || state.shm_nattch > 0)
        return;
    ::shmctl(m_segment, IPC_RMID, nullptr);
    ::semctl(m_semaphore, 0, IPC_RMID);
    key_t present = -1;
    for (const char *prefix : {segmentPrefix, semaphorePrefix})
        if (const QByteArray file = keyFile(prefix, m_key); systemKey(file, present) == Outcome::Done)
            ::unlink(file.constData());
}

Outcome SharedBlock::publish(const QByteArray &block)
{
    if (block.size() > std::numeric_limits<int>::max() / 2 - int(smallestSegment))
        return Outcome::Failed;
    constexpr int attempts = 20;
    Outcome outcome = Outcome::Missing;
    for (int attempt = 0; attempt < attempts && outcome == Outcome::Missing; ++attempt)
        outcome = tryToPublish(block);
    return outcome == Outcome::Missing ? Outcome::Failed : outcome;
}

/// Missing: something was replaced on the way, and the next attempt may succeed.
Outcome SharedBlock::tryToPublish(const QByteArray &block)
{
    if (const Outcome found = findLock(); found != Outcome::Done)
        return found;
    Lock lock(m_semaphore);
    if (const Outcome held = lock.take(patienceMs); held != Outcome::Done)
        // Somebody was killed before he set it free, or it is another program's that has the key by accident:
        // readers find the new one.
        return held == Outcome::Locked && changeKeyFile(keyFile(semaphorePrefix, m_key)) ? Outcome::Missing
                                                                                         : held;
    if (const Outcome room = makeRoom(block.size()); room != Outcome::Done)
        return room;
    std::memcpy(m_data, block.constData(), static_cast<std::size_t>(block.size()));
    return Outcome::Done;
}

/// Finds or makes the semaphore.
Outcome SharedBlock::findLock()
{
    const QByteArray file = keyFile(semaphorePrefix, m_key);
    if (const Outcome made = makeKeyFile(file); made != Outcome::Done)
        return made;
    key_t key = -1;
    if (const Outcome found = systemKey(file, key); found != Outcome::Done)
        return found;
    int id = ::semget(key, 1, IPC_CREAT | IPC_EXCL | ownerOnly);
    if (id >= 0) {
        SemaphoreArgument free = {};
        free.value = 1;
        ::semctl(id, 0, SETVAL, free);
    } else if (const Outcome found = findSemaphore(key, id); found != Outcome::Done) {
        return found == Outcome::Foreign && changeKeyFile(file) ? Outcome::Missing : found;
    }
    // The key file of the one before was swept away: nobody finds it any more.
    if (m_semaphore >= 0 && m_semaphore != id)
        ::semctl(m_semaphore, 0, IPC_RMID);
    m_semaphore = id;
    return Outcome::Done;
}

/// Finds or makes a segment that is large enough. Missing when that is to be tried once more.
Outcome SharedBlock::makeRoom(int size)
{
    const QByteArray file = keyFile(segmentPrefix, m_key);
    if (const Outcome made = makeKeyFile(file); made != Outcome::Done)
        return made;
    key_t key = -1;
    if (const Outcome found = systemKey(file, key); found != Outcome::Done)
        return found;
    int id = -1;
    shmid_ds state = {};
    Outcome found = findSegment(key, id, state);
    if (found == Outcome::Done && id == m_segment && m_data && m_size - qint64(sizeof(Mark)) >= size)
        return Outcome::Done;
    if (found == Outcome::Done)
        found = adopt(id, size);
    if (found == Outcome::Foreign && changeKeyFile(file))
        return Outcome::Missing;
    if (found != Outcome::Missing)
        return found;
    const qint64 wanted = std::max(smallestSegment, 2LL * size);
    id = ::shmget(key, static_cast<std::size_t>(wanted), IPC_CREAT | IPC_EXCL | ownerOnly);
    if (id < 0)
        return errno == EEXIST ? Outcome::Missing : Outcome::Failed;
    attach(id);
    if (!m_data)
        return Outcome::Failed;
    Mark mark = {};
    std::copy(std::begin(magic), std::end(magic), mark.magic);
    const QByteArray name = nameOf(m_key);
    std::copy(name.begin(), name.end(), mark.name);
    mark.semaphore = m_semaphore;
    systemKey(keyFile(semaphorePrefix, m_key), mark.semaphoreKey);
    std::memcpy(m_data + m_size - qint64(sizeof mark), &mark, sizeof mark);
    return Outcome::Done;
}

/// Takes over the segment of a killed or second publisher. Missing when there is none any more, Foreign when
/// it is somebody else's that has the key by accident.
Outcome SharedBlock::adopt(int id, int size)
{
    shmid_ds state = {};
    if (::shmctl(id, IPC_STAT, &state) != 0)
        return Outcome::Missing;
    const Mark mark = readMark(id, qint64(state.shm_segsz));
    const bool same = isMarked(mark) && nameOf(m_key) == QByteArray::fromRawData(mark.name, sizeof mark.name);
    if (!same && !(isMarked(mark) && state.shm_nattch == 0))
        return Outcome::Foreign;
    if (same && qint64(state.shm_segsz) - qint64(sizeof mark) >= size) {
        attach(id);
        return m_data ? Outcome::Done : Outcome::Failed;
    }
    // Readers keep what they have, its key is free from now on.
    ::shmctl(id, IPC_RMID, nullptr);
    return Outcome::Missing;
}

void SharedBlock::attach(int id)
{
    // The one before is found no more: it was too small, or its key file was swept away.
    if (m_data && m_segment != id)
        ::shmctl(m_segment, IPC_RMID, nullptr);
    release();
    m_segment = id;
    shmid_ds state = {};
    void *data = ::shmat(id, nullptr, 0);
    if (data == reinterpret_cast<void *>(-1) || ::shmctl(id, IPC_STAT, &state) != 0)
        return;
    m_data = static_cast<char *>(data);
    m_size = qint64(state.shm_segsz);
}

void SharedBlock::release()
{
    if (m_data)
        ::shmdt(m_data);
    m_data = nullptr;
    m_size = 0;
}

Outcome SharedBlock::read(const QString &key, QByteArray &block)
{
    block.clear();
    key_t semaphoreKey = -1;
    key_t segmentKey = -1;
    int semaphore = -1;
    if (const Outcome found = systemKey(keyFile(semaphorePrefix, key), semaphoreKey); found != Outcome::Done)
        return found;
    if (const Outcome found = findSemaphore(semaphoreKey, semaphore); found != Outcome::Done)
        return found;
    Lock lock(semaphore);
    if (const Outcome held = lock.take(patienceMs); held != Outcome::Done)
        return held;
    if (const Outcome found = systemKey(keyFile(segmentPrefix, key), segmentKey); found != Outcome::Done)
        return found;
    int segment = -1;
    shmid_ds state = {};
    if (const Outcome found = findSegment(segmentKey, segment, state); found != Outcome::Done)
        return found;
    if (state.shm_segsz > std::size_t(std::numeric_limits<int>::max()))
        return Outcome::Failed;
    void *data = ::shmat(segment, nullptr, SHM_RDONLY);
    if (data == reinterpret_cast<void *>(-1))
        return failure();
    block = QByteArray(static_cast<const char *>(data), static_cast<int>(state.shm_segsz));
    ::shmdt(data);
    return Outcome::Done;
}

QString SharedBlock::text(Outcome outcome, const QString &key)
{
    const auto tr = [](const char *sentence) { return QCoreApplication::translate("SharedBlock", sentence); };
    switch (outcome) {
    case Outcome::Done:
        return {};
    case Outcome::Missing:
        return tr("The vocabulary is not there.");
    case Outcome::Foreign:
        return tr("The vocabulary was not exchanged: another user of this computer holds its place. It is "
                  "marked by the file %1.")
            .arg(QFile::decodeName(keyFile(segmentPrefix, key)));
    case Outcome::Locked:
        return tr("The vocabulary is held by another program, which does not let go of it.");
    case Outcome::Failed:
        break;
    }
    return tr("The shared memory of this computer could not be used for the vocabulary.");
}

int SharedBlock::removeAbandoned()
{
    shm_info info = {};
    const int highest = ::shmctl(0, SHM_INFO, reinterpret_cast<shmid_ds *>(&info));
    int removed = 0;
    for (int i = 0; i <= highest; ++i) {
        shmid_ds state = {};
        const int id = ::shmctl(i, SHM_STAT, &state);
        if (id < 0 || !isOwn(state.shm_perm) || state.shm_nattch > 0)
            continue;
        const Mark mark = readMark(id, qint64(state.shm_segsz));
        if (!isMarked(mark) || ::shmctl(id, IPC_RMID, nullptr) != 0)
            continue;
        removeMarkedSemaphore(mark);
        ++removed;
    }
    return removed;
}
