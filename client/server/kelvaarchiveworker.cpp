#include "server/kelvaarchiveworker.h"

#include "contract/kelvaarchiveclientinterface.h"
#include "widgets/plainbox.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QPluginLoader>

KelvaArchiveWorker::KelvaArchiveWorker(QObject *parent) : QObject(parent)
{
    connect(&uploadProgress, SIGNAL(cancelClicked()), this, SLOT(cancelStreaming()));
}

KelvaArchiveWorker::~KelvaArchiveWorker()
{
    doDisconnect();
    for (const QString &file : qAsConst(temporaryFiles))
        QFile::remove(file);
    qDebug("Destroy KelvaArchiveWorker");
    delete client;
    qDebug("KelvaArchiveWorker destroyed.");
}

void KelvaArchiveWorker::setConnectionSettings(QString newHost, int newPort, QString newUser,
                                               QString newPassword)
{
    host = std::move(newHost);
    port = newPort;
    user = std::move(newUser);
    password = std::move(newPassword);
}

bool KelvaArchiveWorker::loadClient()
{
    const QString path =
        QCoreApplication::applicationDirPath() + QDir::separator() + "libkelvaarchiveclient.so";
    QPluginLoader loader(path);
    if (!loader.load()) {
        lastError = tr("Failed to load the plugin: %1 Error: %2").arg(path, loader.errorString());
        return false;
    }
    qDebug() << "### Plugin " << path;
    QObject *instance = loader.instance();
    auto *factory = instance ? static_cast<kelvaArchiveClientInterface *>(
                                   instance->qt_metacast(KELVA_ARCHIVE_CLIENT_INTERFACE_IID))
                             : nullptr;
    if (!factory) {
        lastError = tr("Failed to load the archive client: ");
        return false;
    }
    client = factory->createClient(QCoreApplication::applicationDirPath());
    if (!client) {
        lastError = tr("Failed to load the archive client.");
        return false;
    }
    connect(client, SIGNAL(totalFileSize(QString)), &uploadProgress, SLOT(setProgressMax(QString)));
    connect(client, SIGNAL(currentReadSize(QString)), &uploadProgress, SLOT(setProgressValue(QString)));
    connect(client, SIGNAL(saveDocEnd()), &uploadProgress, SLOT(copyFinished()));
    return true;
}

bool KelvaArchiveWorker::fail()
{
    lastError = client->lastError();
    return false;
}

bool KelvaArchiveWorker::doConnect(bool keepOnArchiveFailure)
{
    if (!client && !loadClient())
        return false;
    if (!client->connectToArchive(host, port))
        return fail();
    if (!client->login(user, password)) {
        fail();
        client->disconnectFromArchive();
        return false;
    }
    if (currentArchive.isEmpty() || client->selectArchive(currentArchive))
        return true;
    fail();
    if (!keepOnArchiveFailure)
        client->disconnectFromArchive();
    return false;
}

bool KelvaArchiveWorker::doDisconnect()
{
    return client && client->disconnectFromArchive();
}

void KelvaArchiveWorker::selectArchive(const QString &archive)
{
    currentArchive = archive;
    doDisconnect();
    doConnect(true);
}

void KelvaArchiveWorker::getArchiveNames(QStringList &names)
{
    names.clear();
    if (client && !client->getSubArchives(names))
        fail();
}

QStringList KelvaArchiveWorker::searchDocs(const QString &query)
{
    if (!client)
        return {};
    // No hit and a failure look alike but for the text, which may be that of an earlier call.
    const QString before = client->lastError();
    const QStringList hits = client->searchDocuments(query);
    lastError = hits.isEmpty() && client->lastError() != before ? client->lastError() : QString();
    return hits;
}

bool KelvaArchiveWorker::getDocumentInfo(const QStringList &ids, QStringList &infos)
{
    infos.clear();
    if (!client)
        return false;
    infos = client->getDocumentInfo(ids);
    return true;
}

bool KelvaArchiveWorker::getDocumentActions(const QStringList &ids, QStringList &actions, int action,
                                            const QString &login)
{
    actions.clear();
    if (client && client->getDocumentActions(ids, actions, action, login))
        return true;
    if (client)
        qDebug() << client->lastError();
    return false;
}

bool KelvaArchiveWorker::deleteDocument(const QString &id, const QStringList &comment)
{
    if (client && client->deleteDocument(id, comment))
        return true;
    plainbox::critical(nullptr, tr("Error"), client ? client->lastError() : lastError);
    return false;
}

bool KelvaArchiveWorker::moveDocToArchive(qint64 id, int target)
{
    return client && (client->moveDocToArchive(id, target) || fail());
}

bool KelvaArchiveWorker::writeDocumentInfo(qint64 id, int value)
{
    return client && (client->writeDocumentInfo(static_cast<int>(id), value) || fail());
}

void KelvaArchiveWorker::cancelStreaming()
{
    canceled = true;
    if (client)
        client->cancelStreaming();
}
