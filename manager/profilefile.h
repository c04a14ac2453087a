#pragma once

#include "manager/profile.h"

#include <QByteArray>
#include <QList>

namespace kelva {

/// What the profile file holds.
struct ProfileFile
{
    /// Ids have four digits from the start. In the name of a data block the id follows the port without
    /// anything between, so that profile 12 at port 1 and profile 2 at port 11 would share one.
    static constexpr qint64 firstId = 1001;

    QList<Profile> profiles;
    qint64 nextId = firstId;
};

/// JSON: "format", "nextId" and "profiles", each an object with a key per field. NotAnArchive with a
/// sentence that says what is damaged; WrongVersion for a format that this build does not know.
Result<ProfileFile> parseProfileFile(const QByteArray &bytes);
QByteArray formatProfileFile(const ProfileFile &content);

} // namespace kelva
