#include "service/temporaryfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>

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

QString privateDirectory()
{
    const QString directory =
        QStringLiteral("%1/kelva-files-%2").arg(QDir::tempPath()).arg(::getuid(), 0, 16);
    ::mkdir(QFile::encodeName(directory).constData(), 0700);
    if (isOurs(directory))
        return directory;
    QTemporaryDir fresh(QDir::tempPath() + QStringLiteral("/kelva-files-XXXXXX"));
    fresh.setAutoRemove(false);
    return fresh.isValid() ? fresh.path() : QString();
}

QString plainPart(QString text)
{
    constexpr int longest = 60;
    for (QChar &c : text)
        if (!c.isLetterOrNumber() && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    text.truncate(longest);
    return text;
}

} // namespace

Result<QString> makeTemporaryFile(const QString &documentName)
{
    const QString directory = privateDirectory();
    if (directory.isEmpty())
        return Error{ErrorCode::Storage, QStringLiteral("No temporary directory can be made.")};
    const QFileInfo name(documentName);
    QString pattern =
        directory + QLatin1Char('/') + plainPart(name.completeBaseName()) + QStringLiteral("-XXXXXX");
    if (!name.suffix().isEmpty())
        pattern += QLatin1Char('.') + plainPart(name.suffix());
    QTemporaryFile file(pattern);
    file.setAutoRemove(false);
    if (!file.open())
        return Error{ErrorCode::Storage,
                     QStringLiteral("No temporary file can be made: %1").arg(file.errorString())};
    return file.fileName();
}

} // namespace kelva
