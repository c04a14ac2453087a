#pragma once

#include "manager/profile.h"

namespace kelva {

/// What a login with a profile finds.
struct ProfileFindings
{
    QString archiveName;
    int archives = 0;
    int folders = 0;   ///< that the user may see
    int documents = 0; ///< in the profile's archive, whoever may see them
};

/// The archives at the profile's host and port: records of name and key. Never an empty list.
Result<QStringList> loadArchives(const Profile &profile);
/// Numbers of the archives of this machine, smallest first: the ports of "localhost".
QStringList localArchives();
/// Place of the archive with this key; -1 when it is not there.
int archiveIndexOf(const QStringList &archives, const QString &key);
/// Logs in with the profile as a client would. May take seconds; for any thread.
Result<ProfileFindings> checkProfile(const Profile &profile);

} // namespace kelva
