#include "support/fakemanager.h"

#include "server/kelvalogindata.h"

#include <QDataStream>
#include <QLocalSocket>

FakeManager::FakeManager()
{
    QLocalServer::removeServer(kelvaLoginData::socketName());
    connect(&m_server, &QLocalServer::newConnection, this, &FakeManager::accept);
    m_server.listen(kelvaLoginData::socketName());
}

QByteArray FakeManager::profileRecord(qint64 id, const QString &name, const QString &archiveEntry,
                                      qint64 archiveIndex)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(10);
    stream << id << name << QString("localhost") << QString("4711") << QString("anna") << QString("secret")
           << true << QStringList(archiveEntry) << archiveIndex << QString("First line")
           << QString("Second line") << QStringList{"a", "b"} << QStringList{"c"};
    return bytes;
}

QByteArray FakeManager::profileList(const QList<QByteArray> &records)
{
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(10);
    stream << QString("Kelva");
    for (const QByteArray &record : records)
        content += record;
    QByteArray answer;
    QDataStream head(&answer, QIODevice::WriteOnly);
    head << qint64(content.size());
    return answer + content;
}

void FakeManager::accept()
{
    QLocalSocket *socket = m_server.nextPendingConnection();
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
        while (socket->canReadLine()) {
            const QString request = QString::fromUtf8(socket->readLine()).trimmed();
            requests << request;
            socket->write(request == "GETPROFILES" ? listAnswer : QByteArray("OK\r\n"));
            socket->flush();
            if (closeAfterAnswer)
                socket->close();
        }
    });
}
