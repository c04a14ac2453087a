#include "indexer/extractor.h"

#include "extract/answer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QVector>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelva {
namespace {

constexpr int lookIntervalMs = 100;

struct FileDescriptor
{
    explicit FileDescriptor(int opened) : number(opened) {}
    ~FileDescriptor()
    {
        if (number >= 0)
            ::close(number);
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    const int number;
};

/// One line without control characters: nothing but words counts in the full-text index.
QString wordsOf(const QByteArray &output, int longest)
{
    QString text = QString::fromUtf8(output).left(longest);
    for (QChar &c : text)
        if (c.category() == QChar::Other_Control)
            c = QLatin1Char(' ');
    return text.simplified();
}

qint64 nowMs()
{
    return QDeadlineTimer::current(Qt::PreciseTimer).deadline();
}

/// The arguments or the environment of a program, for a call of the system.
class TextArray
{
public:
    explicit TextArray(const QStringList &texts)
    {
        for (const QString &text : texts)
            m_bytes << text.toLocal8Bit();
        for (QByteArray &bytes : m_bytes)
            m_pointers.append(bytes.data());
        m_pointers.append(nullptr);
    }
    char *const *data() const { return m_pointers.constData(); }

private:
    QVector<QByteArray> m_bytes;
    QVector<char *> m_pointers;
};

/// Starts a program with the socket as its standard input and no other way out. -1 when it cannot be started.
pid_t spawn(const QString &program, const QStringList &arguments, int socket)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    const TextArray argumentTexts(QStringList(program) + arguments);
    const TextArray environmentTexts(environment.toStringList());
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    const int failed = ::posix_spawn(&child, QFile::encodeName(program).constData(), &actions, nullptr,
                                     argumentTexts.data(), environmentTexts.data());
    ::posix_spawn_file_actions_destroy(&actions);
    return failed == 0 ? child : -1;
}

} // namespace

QString Extractor::installedProgram()
{
    const QString name = QStringLiteral("/kelvatextract");
    Dl_info here = {};
    static const char anchor = 0;
    if (::dladdr(&anchor, &here) != 0 && here.dli_fname) {
        const QString path = QFileInfo(QFile::decodeName(here.dli_fname)).absolutePath() + name;
        if (QFileInfo(path).isExecutable())
            return path;
    }
    return QCoreApplication::applicationDirPath() + name;
}

Extractor::Extractor(QString program, ExtractorLimits limits)
    : m_program(std::move(program)),
      m_limits(limits)
{
}

Extractor::~Extractor()
{
    end();
}

Extractor::Extractor(const Extractor &other) : Extractor(other.m_program, other.m_limits) {}

Extractor &Extractor::operator=(const Extractor &other)
{
    end();
    m_program = other.m_program;
    m_limits = other.m_limits;
    return *this;
}

bool Extractor::isInstalled() const
{
    const QFileInfo program(m_program);
    return program.isFile() && program.isExecutable();
}

bool Extractor::start()
{
    constexpr int second = 1000;
    constexpr int startTimeoutMs = 30000;
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    m_child = spawn(m_program,
                    {QStringLiteral("--serve"), QStringLiteral("--seconds"),
                     QString::number(m_limits.timeoutMs / second + 1), QStringLiteral("--memory"),
                     QString::number(m_limits.memoryMiB), QStringLiteral("--unpacked"),
                     QString::number(m_limits.unpackedBytes), QStringLiteral("--characters"),
                     QString::number(m_limits.characters)},
                    ends[1]);
    ::close(ends[1]);
    m_socket = ends[0];
    m_files = 0;
    AnswerHead head = {};
    const bool isReady = m_child > 0 &&
                         receiveBytes(reinterpret_cast<char *>(&head), sizeof head, nowMs() + startTimeoutMs,
                                      nullptr) == Answer::Text &&
                         head.state == AnswerHead::Ready;
    if (!isReady)
        end();
    return isReady;
}

void Extractor::end()
{
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
    if (m_child > 0) {
        ::kill(m_child, SIGKILL);
        while (::waitpid(m_child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    m_child = -1;
}

bool Extractor::send(int file, FileKind kind) const
{
    Question question = static_cast<Question>(kind);
    iovec bytes{&question, sizeof question};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof file)] = {};
    msghdr message = {};
    message.msg_iov = &bytes;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr *head = CMSG_FIRSTHDR(&message);
    head->cmsg_level = SOL_SOCKET;
    head->cmsg_type = SCM_RIGHTS;
    head->cmsg_len = CMSG_LEN(sizeof file);
    std::memcpy(CMSG_DATA(head), &file, sizeof file);
    return ::sendmsg(m_socket, &message, MSG_NOSIGNAL) == ssize_t(sizeof question);
}

Extractor::Answer Extractor::receiveBytes(char *bytes, qint64 size, qint64 deadline,
                                          const std::function<bool()> &cancelled) const
{
    while (size > 0) {
        pollfd waiting{m_socket, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, lookIntervalMs);
        if (cancelled && cancelled())
            return Answer::Cancelled;
        if (nowMs() > deadline)
            return Answer::TooSlow;
        if (ready <= 0)
            continue;
        const ssize_t got = ::recv(m_socket, bytes, static_cast<std::size_t>(size), MSG_DONTWAIT);
        if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR))
            return Answer::Gone;
        bytes += std::max<ssize_t>(0, got);
        size -= std::max<ssize_t>(0, got);
    }
    return Answer::Text;
}

Extractor::Answer Extractor::receive(const std::function<bool()> &cancelled, QByteArray *text) const
{
    constexpr qint64 longestCharacter = 4;
    const qint64 deadline = nowMs() + m_limits.timeoutMs;
    AnswerHead head = {};
    const Answer first = receiveBytes(reinterpret_cast<char *>(&head), sizeof head, deadline, cancelled);
    if (first != Answer::Text)
        return first;
    // A reader that was taken over may say anything.
    if (head.state == AnswerHead::NoText && head.size == 0)
        return Answer::NoText;
    if (head.state != AnswerHead::Text || qint64(head.size) > m_limits.characters * longestCharacter)
        return Answer::Gone;
    text->resize(static_cast<int>(head.size));
    return receiveBytes(text->data(), text->size(), deadline, cancelled);
}

Extractor::Outcome Extractor::extract(const QString &path, FileKind kind,
                                      const std::function<bool()> &cancelled, QString *text)
{
    // Whatever a file has done to its reader ends here.
    constexpr int filesOfOneChild = 500;
    text->clear();
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
    if (file.number < 0)
        return Outcome::Failed;
    for (;;) {
        if (m_files >= filesOfOneChild)
            end();
        if (m_child < 0 && !start())
            return Outcome::NoProgram;
        const bool isFresh = m_files++ == 0;
        ::lseek(file.number, 0, SEEK_SET);
        QByteArray bytes;
        const Answer answer = send(file.number, kind) ? receive(cancelled, &bytes) : Answer::Gone;
        if (answer == Answer::Text) {
            *text = wordsOf(bytes, m_limits.characters);
            return Outcome::Done;
        }
        if (answer == Answer::NoText)
            return Outcome::Failed;
        end();
        if (answer == Answer::Cancelled)
            return Outcome::Cancelled;
        // It may have been the file before that harmed it.
        if (answer == Answer::TooSlow || isFresh)
            return Outcome::Failed;
    }
}

} // namespace kelva
