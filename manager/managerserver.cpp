#include "manager/managerserver.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLocalSocket>

#include <sys/socket.h>
#include <unistd.h>

namespace kelva {
namespace {

constexpr int askTimeoutMs = 3000;

Error runsAlready()
{
    return {ErrorCode::InUse,
            QCoreApplication::translate("ManagerServer", "The Connection Manager is running already.")};
}

} // namespace

ManagerServer::ManagerServer(RequestHandler handler, QObject *parent)
    : QObject(parent),
      m_handler(std::move(handler))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &ManagerServer::accept);
}

ManagerServer::~ManagerServer()
{
    close();
}

Result<void> ManagerServer::listen()
{
    // The lock decides between two that start at once, the connection finds one that lost its lock file.
    const Result<bool> mine = m_lock.take(socketName());
    if (!mine)
        return mine.error();
    if (!mine.value() || isAnswering()) {
        m_lock.release();
        return runsAlready();
    }
    QLocalServer::removeServer(socketName());
    if (m_server.listen(socketName()))
        return {};
    m_lock.release();
    return Error{ErrorCode::Storage, tr("The local socket cannot be opened: %1").arg(m_server.errorString())};
}

void ManagerServer::close()
{
    m_server.close();
    for (const QPointer<ManagerConnection> &connection : qAsConst(m_connections))
        if (connection)
            connection->abort();
    m_connections.clear();
    m_lock.release();
}

bool ManagerServer::isAnswering()
{
    QLocalSocket socket;
    socket.connectToServer(socketName());
    return socket.waitForConnected(askTimeoutMs);
}

QByteArray ManagerServer::ask(const QByteArray &request)
{
    QLocalSocket socket;
    socket.connectToServer(socketName());
    if (!socket.waitForConnected(askTimeoutMs))
        return {};
    socket.write(request + "\r\n");
    while (!socket.canReadLine())
        if (!socket.waitForReadyRead(askTimeoutMs))
            return {};
    return socket.readLine().trimmed();
}

void ManagerServer::accept()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        if (!isOwnUser(*socket)) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        makeRoom();
        m_connections << new ManagerConnection(socket, m_handler, this);
    }
}

bool ManagerServer::isOwnUser(const QLocalSocket &socket) const
{
    ucred peer = {};
    socklen_t size = sizeof(peer);
    const int descriptor = static_cast<int>(socket.socketDescriptor());
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

void ManagerServer::makeRoom()
{
    m_connections.removeAll(nullptr);
    if (m_connections.size() < mostConnections)
        return;
    // The oldest that wants nothing just now goes first; if all are busy, the oldest of them.
    int victim = 0;
    for (int i = 0; i < m_connections.size(); ++i)
        if (m_connections.at(i)->isIdle()) {
            victim = i;
            break;
        }
    m_connections.takeAt(victim)->abort();
}

} // namespace kelva
