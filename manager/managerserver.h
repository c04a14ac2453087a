#pragma once

#include "manager/instancelock.h"
#include "manager/managerconnection.h"

#include <QList>
#include <QLocalServer>
#include <QObject>
#include <QPointer>
#include <QTimer>

namespace kelva {

/// The local socket of the Connection Manager. Talks to programs of its own user only.
class ManagerServer final : public QObject
{
    Q_OBJECT

public:
    static constexpr int mostConnections = 64;

    explicit ManagerServer(RequestHandler handler, QObject *parent = nullptr);
    ~ManagerServer() override;

    /// InUse when another Connection Manager of this user runs.
    Result<void> listen();
    /// Ends every connection and removes the socket.
    void close();
    /// A Connection Manager of this user takes connections.
    static bool isAnswering();
    /// Sends one request to the Connection Manager that runs and returns its line, without line end; empty
    /// when none answers with one line in time.
    static QByteArray ask(const QByteArray &request);

private:
    void accept();
    void listenAgain();
    void makeRoom();

    RequestHandler m_handler;
    InstanceLock m_lock;
    QLocalServer m_server;
    QTimer m_lookAfterSocket; ///< temporary directories are swept
    QList<QPointer<ManagerConnection>> m_connections;
};

} // namespace kelva
