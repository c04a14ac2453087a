#pragma once

#include "manager/profile.h"

#include <QList>

#include <functional>

namespace kelva {

/// The profiles of this user in one file. Every change reads the file anew under a lock and replaces it as a
/// whole, so that several programs may work on it; a file that cannot be read is never replaced.
class ProfileStore
{
public:
    explicit ProfileStore(const QString &file = defaultFile());

    /// "kelva/profiles.json" in the user's configuration directory.
    static QString defaultFile();
    const QString &file() const { return m_file; }

    /// Makes the file's directory, closed to others.
    Result<void> prepareDirectory() const;
    /// In the order in which they were added. No file: no profiles. NotAnArchive when the file is damaged,
    /// WrongVersion when a newer program wrote it.
    Result<QList<Profile>> load() const;
    /// Stores a profile under a new id and returns it. InUse when the name is taken.
    Result<Profile> add(const Profile &profile);
    /// Conflict when the stored profile is no longer the one that was edited.
    Result<void> replace(const Profile &before, const Profile &after);
    /// NotFound when there is none with this id.
    Result<void> remove(qint64 id);
    /// Renames the file, so that a new one can be begun, and returns its new path.
    Result<QString> setAside();

private:
    struct Content;
    Result<Content> read() const;
    Result<void> change(const std::function<Result<void>(Content &)> &edit);
    Result<void> write(const Content &content);

    QString m_file;
};

} // namespace kelva
