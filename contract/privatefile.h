#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

/// Makes the file, empty and open to this user alone, unless it is there; closes one that is there to others.
/// Best effort: whoever writes it afterwards hears of what is wrong.
inline void makePrivateFile(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    const int made =
        ::open(QFile::encodeName(path).constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (made >= 0)
        ::close(made);
    else
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
}
