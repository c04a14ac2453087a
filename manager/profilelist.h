#pragma once

#include "manager/profilestore.h"

#include <QFileSystemWatcher>
#include <QObject>

namespace kelva {

/// The profiles as the file has them, whoever changed it.
class ProfileList final : public QObject
{
    Q_OBJECT

public:
    /// Reads the file and follows it from then on.
    explicit ProfileList(ProfileStore &store, QObject *parent = nullptr);

    ProfileStore &store() { return m_store; }
    const QList<Profile> &profiles() const { return m_profiles; }
    /// nullptr when there is none with this id.
    const Profile *find(qint64 id) const;
    /// What is wrong with the file; profiles() is then what it held before.
    const QString &fault() const { return m_fault; }
    /// Reads the file now: the notice of a change may be still on its way.
    void follow();

signals:
    void changed();

private:
    void watch();

    ProfileStore &m_store;
    QList<Profile> m_profiles;
    QString m_fault;
    QFileSystemWatcher m_watcher;
};

} // namespace kelva
