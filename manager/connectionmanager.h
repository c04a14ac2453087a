#pragma once

#include "manager/blockpublisher.h"
#include "manager/managerserver.h"
#include "manager/profilestore.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>

namespace kelva {

/// The running Connection Manager: follows the profile file, keeps the data blocks, answers the socket.
class ConnectionManager final : public QObject
{
    Q_OBJECT

public:
    explicit ConnectionManager(ProfileStore &store, QObject *parent = nullptr);

    /// Reads the profiles and begins to answer. A damaged profile file does not prevent it: see fault().
    Result<void> start();
    /// Closes the socket and waits for blocks in the making; false when one takes longer.
    bool stop(int timeoutMs);

    /// Reads the profile file when it has changed.
    void followFile();
    const QList<Profile> &profiles() const { return m_profiles; }
    /// What is wrong with the profile file; profiles() is then what it held before.
    const QString &fault() const { return m_fault; }
    BlockPublisher &blocks() { return m_blocks; }
    /// Programs that logged in with this profile and run still.
    int usersOf(qint64 profileId) const;

signals:
    void profilesChanged();
    /// Somebody started the Connection Manager a second time.
    void windowWanted();

private:
    void handle(const Request &request, const Answer &answer);
    void answerList(const Answer &answer);
    void answerRenewed(qint64 profileId, int timeoutMs, const Answer &answer);
    void watchFile();

    ProfileStore &m_store;
    QList<Profile> m_profiles;
    QString m_fault;
    QHash<qint64, qint64> m_profileOfProgram;
    QFileSystemWatcher m_watcher;
    BlockPublisher m_blocks;
    ManagerServer m_server;
};

} // namespace kelva
