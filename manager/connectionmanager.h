#pragma once

#include "manager/blockpublisher.h"
#include "manager/managerserver.h"
#include "manager/profilelist.h"

#include <QMap>
#include <QObject>

namespace kelva {

/// The running Connection Manager: keeps the data blocks of the profiles and answers the socket.
class ConnectionManager final : public QObject
{
    Q_OBJECT

public:
    explicit ConnectionManager(ProfileList &profiles, QObject *parent = nullptr);

    /// InUse when another one runs.
    Result<void> start();
    /// Closes the socket and waits for blocks in the making; false when one takes longer.
    bool stop(int timeoutMs);

    BlockPublisher &blocks() { return m_blocks; }
    /// Programs that logged in with this profile, or with any when none is named, and run still.
    int countUsers(qint64 profileId = -1) const;

signals:
    /// Somebody started the Connection Manager a second time.
    void windowWanted();

private:
    void forgetEnded();
    void handle(const Request &request, const Answer &answer);
    Result<void> changePassword(const Request &request);
    void answerList(const Answer &answer);
    void answerRenewed(qint64 profileId, const Answer &answer);

    ProfileList &m_profiles;
    QMap<qint64, qint64> m_profileOfProgram; ///< by process id
    BlockPublisher m_blocks;
    ManagerServer m_server;
};

} // namespace kelva
