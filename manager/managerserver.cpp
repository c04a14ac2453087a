#include "manager/managerserver.h"

#include "contract/localpeer.h"

#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>

namespace kelva {
namespace {

constexpr int askTimeoutMs = 3000;
constexpr int lookIntervalMs = 2000;

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
    m_lookAfterSocket.setInterval(lookIntervalMs);
    connect(&m_lookAfterSocket, &QTimer::timeout, this, &ManagerServer::listenAgain);
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
    if (m_server.listen(socketName())) {
        m_lookAfterSocket.start();
        return {};
    }
    m_lock.release();
    return Error{ErrorCode::Storage, tr("The local socket cannot be opened: %1").arg(m_server.errorString())};
}

void ManagerServer::close()
{
    m_lookAfterSocket.stop();
    m_server.close();
    for (const QPointer<ManagerConnection> &connection : qAsConst(m_connections))
        if (connection)
            connection->abort();
    m_connections.clear();
    m_lock.release();
}

void ManagerServer::listenAgain()
{
    if (QFile::exists(m_server.fullServerName()))
        return;
    // Who sweeps a temporary directory takes the lock file as well, and another may have begun since.
    const Result<bool> mine = m_lock.take(socketName());
    if (!mine || !mine.value())
        return;
    m_server.close();
    if (!m_server.listen(socketName()))
        qWarning().noquote()
            << QStringLiteral("kelvamanager: the local socket was removed: %1").arg(m_server.errorString());
}

bool ManagerServer::isAnswering()
{
    QLocalSocket socket;
    socket.connectToServer(socketName());
    return socket.waitForConnected(askTimeoutMs) && isPeerOfUser(socket);
}

QByteArray ManagerServer::ask(const QByteArray &request)
{
    constexpr int longestAnswer = 4096;
    QElapsedTimer since;
    since.start();
    QLocalSocket socket;
    socket.setReadBufferSize(longestAnswer);
    socket.connectToServer(socketName());
    if (!socket.waitForConnected(askTimeoutMs) || !isPeerOfUser(socket))
        return {};
    socket.write(request + "\r\n");
    while (!socket.canReadLine()) {
        const int left = askTimeoutMs - static_cast<int>(since.elapsed());
        if (left <= 0 || socket.bytesAvailable() >= longestAnswer || !socket.waitForReadyRead(left))
            return {};
    }
    return socket.readLine(longestAnswer).trimmed();
}

void ManagerServer::accept()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        if (!isPeerOfUser(*socket)) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        makeRoom();
        m_connections << new ManagerConnection(socket, m_handler, this);
    }
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
