#pragma once

#include <QByteArray>
#include <QList>
#include <QLocalServer>
#include <QStringList>

/// A Connection Manager in the test's own process: answers with scripted bytes and records the requests.
class FakeManager : public QObject
{
    Q_OBJECT

public:
    FakeManager();

    /// One profile record as it goes over the wire.
    static QByteArray profileRecord(qint64 id, const QString &name, const QString &archiveEntry,
                                    qint64 archiveIndex = 0);
    /// The whole answer to GETPROFILES.
    static QByteArray profileList(const QList<QByteArray> &records);

    QByteArray listAnswer;
    /// Close the connection after the list, as a manager that crashes would.
    bool closeAfterAnswer = false;
    QStringList requests;

private slots:
    void accept();

private:
    QLocalServer m_server;
};
