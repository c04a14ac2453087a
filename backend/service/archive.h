#pragma once

#include "store/result.h"

#include <QString>
#include <QStringList>

namespace kelva {

/// What a new archive starts with, besides the three system states, the type "0" and the rights.
struct NewArchive
{
    QString path;
    QString administrator;
    QString password;
    QString subArchive = QStringLiteral("Archive");
};

namespace archive {

/// Directory of this user's archives: $KELVA_HOME, or "kelva" in the user's data directory.
QString home();
/// File of an archive of this machine. Only "localhost", in any case, is a host that can be reached: BadInput
/// otherwise.
Result<QString> fileFor(const QString &host, int port);

/// Makes the file with its first administrator, who holds every right.
Result<void> create(const NewArchive &archive);
/// Faults found by reading everything; empty for a sound archive.
Result<QStringList> check(const QString &path);
/// Copies an archive while it is in use. The target must not exist.
Result<void> backup(const QString &path, const QString &target);
/// Puts a checked copy of a backup in place. An archive that stands there is kept under ".before-restore",
/// with a number when that name is taken.
Result<void> restore(const QString &backup, const QString &path);
/// Sub-archives without a login, for the profile window: name and key, joined by the field separator.
Result<QStringList> subArchives(const QString &path);

} // namespace archive
} // namespace kelva
