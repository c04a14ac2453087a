#pragma once

#include "manager/connectionmanager.h"
#include "manager/profile.h"
#include "manager/profilestore.h"
#include "service/testarchive.h"

/// No profile file yet.
class ProfileFixture
{
public:
    ProfileFixture();

    /// Of archive 1, as "admin" or another user with the password "secret".
    kelva::Profile profile(const QString &name, const QString &user = QStringLiteral("admin")) const;
    /// Stores it and returns what was stored.
    kelva::Profile added(const kelva::Profile &profile);
    void writeFile(const QByteArray &bytes) const;
    QByteArray readFile() const;

    kelva::ProfileStore store;
};

/// And archive 1 of this machine.
class ManagerSurroundings : public ProfileFixture
{
public:
    ManagerSurroundings();

    TestArchive archive;
};

/// A Connection Manager that runs in this process and knows the profiles of the store.
struct StartedManager
{
    explicit StartedManager(kelva::ProfileStore &store) : profiles(store), manager(profiles)
    {
        if (!manager.start().ok())
            qFatal("the Connection Manager does not start");
    }

    kelva::ProfileList profiles;
    kelva::ConnectionManager manager;
};
