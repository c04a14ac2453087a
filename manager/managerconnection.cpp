#include "manager/managerconnection.h"

#include <QDebug>
#include <QLocalSocket>
#include <QPointer>

namespace kelva {
namespace {

constexpr int mostRequestsWaiting = 16;
constexpr qint64 readBufferSize = 64 * 1024;

} // namespace

ManagerConnection::ManagerConnection(QLocalSocket *socket, RequestHandler handler, QObject *parent)
    : QObject(parent),
      m_socket(socket),
      m_handler(std::move(handler))
{
    socket->setParent(this);
    socket->setReadBufferSize(readBufferSize);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceMs);
    connect(&m_patience, &QTimer::timeout, this, [this] { refuse(QStringLiteral("too slow")); });
    connect(socket, &QLocalSocket::readyRead, this, &ManagerConnection::read);
    connect(socket, &QLocalSocket::bytesWritten, this, &ManagerConnection::answerNext);
    connect(socket, &QLocalSocket::disconnected, this, &QObject::deleteLater);
    watch();
    // It may have sent, and even left, before anybody was listening to its signals.
    QMetaObject::invokeMethod(this, &ManagerConnection::read, Qt::QueuedConnection);
    if (socket->state() == QLocalSocket::UnconnectedState)
        deleteLater();
}

bool ManagerConnection::isIdle() const
{
    return !m_answering && m_requests.isEmpty() && !m_parser.isInsideRequest() &&
           m_socket->bytesToWrite() == 0;
}

void ManagerConnection::abort()
{
    m_socket->abort();
    deleteLater();
}

void ManagerConnection::setPatience(int milliseconds)
{
    m_patience.setInterval(milliseconds);
}

void ManagerConnection::read()
{
    const QByteArray bytes = m_socket->readAll();
    if (!bytes.isEmpty()) {
        const QVector<Request> requests = m_parser.feed(bytes);
        if (!m_parser.error().isEmpty()) {
            refuse(m_parser.error());
            return;
        }
        for (const Request &request : requests)
            m_requests.enqueue(request);
        m_greeted = m_greeted || !requests.isEmpty();
        if (m_requests.size() > mostRequestsWaiting) {
            refuse(QStringLiteral("too many requests at once"));
            return;
        }
    }
    answerNext();
}

void ManagerConnection::answerNext()
{
    if (!m_answering && !m_requests.isEmpty() && m_socket->bytesToWrite() == 0) {
        m_answering = true;
        const QPointer<ManagerConnection> self(this);
        m_handler(m_requests.dequeue(), [self](const QByteArray &answer) {
            if (self)
                self->giveAnswer(answer);
        });
    }
    watch();
}

void ManagerConnection::giveAnswer(const QByteArray &answer)
{
    m_answering = false;
    if (m_socket->state() == QLocalSocket::ConnectedState) {
        m_socket->write(answer);
        m_socket->flush();
    }
    answerNext();
}

void ManagerConnection::watch()
{
    // A client that was answered may take all the time it likes: its user is choosing a profile.
    const bool waitsForClient =
        !m_greeted || m_parser.isInsideRequest() || (!m_answering && m_socket->bytesToWrite() > 0);
    if (!waitsForClient)
        m_patience.stop();
    else if (!m_patience.isActive())
        m_patience.start();
}

void ManagerConnection::refuse(const QString &why)
{
    qWarning().noquote() << QStringLiteral("kelvamanager: a client was cut off: %1").arg(why);
    m_requests.clear();
    abort();
}

} // namespace kelva
