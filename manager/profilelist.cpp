#include "manager/profilelist.h"

#include <QFileInfo>

#include <algorithm>

namespace kelva {

ProfileList::ProfileList(ProfileStore &store, QObject *parent) : QObject(parent), m_store(store)
{
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &ProfileList::follow);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &ProfileList::follow);
    // So that it can be watched; whoever adds the first profile hears when that fails.
    const Result<void> prepared = m_store.prepareDirectory();
    Q_UNUSED(prepared)
    follow();
}

const Profile *ProfileList::find(qint64 id) const
{
    const auto found = std::find_if(m_profiles.begin(), m_profiles.end(),
                                    [id](const Profile &profile) { return profile.id == id; });
    return found == m_profiles.end() ? nullptr : &*found;
}

void ProfileList::follow()
{
    watch();
    const Result<QList<Profile>> loaded = m_store.load();
    const QString fault = loaded ? QString() : loaded.error().text;
    if (fault == m_fault && (!loaded || loaded.value() == m_profiles))
        return;
    m_fault = fault;
    if (loaded)
        m_profiles = loaded.value();
    emit changed();
}

void ProfileList::watch()
{
    // A replaced file is a new one to watch; its directory shows that it was replaced.
    const QFileInfo file(m_store.file());
    for (const QString &path : {file.absolutePath(), file.absoluteFilePath()})
        if (QFileInfo::exists(path) && !m_watcher.files().contains(path) &&
            !m_watcher.directories().contains(path))
            m_watcher.addPath(path);
}

} // namespace kelva
