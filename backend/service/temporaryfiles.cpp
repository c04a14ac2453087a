#include "service/temporaryfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelva {
namespace {

/// The temp directory is everybody's: a directory of our name there may have been made by somebody else.
bool isOurs(const QString &directory)
{
    struct stat info = {};
    return ::lstat(QFile::encodeName(directory).constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::getuid() && (info.st_mode & 0077) == 0;
}

bool isRunning(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH;
}

/// Marks a file that is still being written; it would be executable, which no copy of a document is.
constexpr mode_t unfinished = S_IXUSR;

/// Removes what is not whole, and the directory if nothing else is left. A whole file may be open in a
/// viewer.
void removeUnfinished(const QString &directory)
{
    const QFileInfoList files =
        QDir(directory).entryInfoList(QDir::Files | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo &file : files)
        if (file.isSymLink() || file.permission(QFile::ExeOwner))
            QFile::remove(file.filePath());
    ::rmdir(QFile::encodeName(directory).constData());
}

void removeLeftovers(const QString &parent)
{
    const QStringList names = QDir(parent).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        bool isPid = false;
        const qint64 pid = name.toLongLong(&isPid);
        if (isPid && pid > 0 && !isRunning(pid))
            removeUnfinished(parent + QLatin1Char('/') + name);
    }
}

/// Empty when none can be made.
QString makeProcessDirectory()
{
    const QString parent = QStringLiteral("%1/kelva-files-%2").arg(QDir::tempPath()).arg(::getuid(), 0, 16);
    ::mkdir(QFile::encodeName(parent).constData(), 0700);
    if (isOurs(parent)) {
        removeLeftovers(parent);
        const QString path = QStringLiteral("%1/%2").arg(parent).arg(::getpid());
        ::mkdir(QFile::encodeName(path).constData(), 0700);
        if (isOurs(path))
            return path;
    }
    QTemporaryDir fresh(QDir::tempPath() + QStringLiteral("/kelva-files-XXXXXX"));
    fresh.setAutoRemove(false);
    return fresh.isValid() ? fresh.path() : QString();
}

/// The copies of this process, in a directory named after it within the user's. What is not whole goes when
/// it ends; what a killed process has left of that goes when the next one begins.
class ProcessDirectory
{
public:
    ProcessDirectory() = default;
    ~ProcessDirectory()
    {
        if (!m_path.isEmpty())
            removeUnfinished(m_path);
    }
    Q_DISABLE_COPY(ProcessDirectory)

    /// Made anew when it was swept out of the temporary directory.
    QString path()
    {
        const QMutexLocker lock(&m_mutex);
        if (m_path.isEmpty() || !isOurs(m_path))
            m_path = makeProcessDirectory();
        return m_path;
    }

private:
    QMutex m_mutex;
    QString m_path;
};

QString privateDirectory()
{
    static ProcessDirectory directory;
    return directory.path();
}

QString plainPart(QString text)
{
    constexpr int longest = 100;
    for (QChar &c : text)
        if (!c.isLetterOrNumber() && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    // In bytes: a name may hold 255 of them, and a letter up to four.
    while (text.toUtf8().size() > longest)
        text.chop(1);
    return text;
}

} // namespace

void clearTemporaryFiles()
{
    privateDirectory();
}

Result<QString> makeTemporaryFile(const QString &documentName)
{
    const QString directory = privateDirectory();
    if (directory.isEmpty())
        return Error{ErrorCode::Storage, QStringLiteral("No temporary directory can be made.")};
    const QFileInfo name(documentName);
    const QString ending = name.suffix().isEmpty() ? QString() : QLatin1Char('.') + plainPart(name.suffix());
    QString base = plainPart(name.completeBaseName());
    // Programs take what begins with a dash for an option.
    if (base.isEmpty() || base.startsWith(QLatin1Char('-')))
        base.replace(0, 1, QLatin1Char('_'));
    // Not a QTemporaryFile: it makes a file without a name first, which takes the disk twice as long.
    QByteArray path =
        QFile::encodeName(directory + QLatin1Char('/') + base + QStringLiteral("-XXXXXX") + ending);
    const int file = ::mkostemps(path.data(), QFile::encodeName(ending).size(), O_CLOEXEC);
    if (file < 0)
        return Error{ErrorCode::Storage, QStringLiteral("No temporary file can be made: %1")
                                             .arg(QString::fromLocal8Bit(std::strerror(errno)))};
    ::fchmod(file, 0600 | unfinished);
    ::close(file);
    return QFile::decodeName(path);
}

void finishTemporaryFile(const QString &path)
{
    ::chmod(QFile::encodeName(path).constData(), 0600);
}

} // namespace kelva
