#pragma once

#include "manager/managerprotocol.h"

#include <QObject>
#include <QQueue>
#include <QTimer>

#include <functional>

class QLocalSocket;

namespace kelva {

/// Gives the answer of a request; may be called later, and when the client is long gone.
using Answer = std::function<void(const QByteArray &)>;
using RequestHandler = std::function<void(const Request &, const Answer &)>;

/// One client: its requests are answered one after the other, the next when the last answer was taken.
/// Deletes itself with its connection.
class ManagerConnection final : public QObject
{
    Q_OBJECT

public:
    /// A request that is begun must be whole, and an answer taken, within this time.
    static constexpr int patienceMs = 30000;

    /// Owns the socket.
    ManagerConnection(QLocalSocket *socket, RequestHandler handler, QObject *parent);

    /// No request is being read or answered.
    bool isIdle() const;
    void abort();
    /// For tests; the time of patienceMs.
    void setPatience(int milliseconds);

private:
    void read();
    void answerNext();
    void giveAnswer(const QByteArray &answer);
    void watch();
    void refuse(const QString &why);

    QLocalSocket *m_socket;
    RequestHandler m_handler;
    RequestParser m_parser;
    QQueue<Request> m_requests;
    bool m_answering = false;
    bool m_greeted = false; ///< has sent a whole request
    QTimer m_patience;
};

} // namespace kelva
