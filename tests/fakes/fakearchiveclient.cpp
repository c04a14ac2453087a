#include "fakes/fakearchiveclient.h"

#include "fakes/fakearchive.h"
#include "server/recordformat.h"

namespace {

FakeArchive &archive()
{
    return FakeArchive::instance();
}

} // namespace

bool FakeArchiveClient::unsupported()
{
    archive().lastError = "This is not available yet.";
    return false;
}

kelvaArchiveClientInterface *FakeArchiveClient::createClient(QString)
{
    return new FakeArchiveClient;
}

bool FakeArchiveClient::connectToArchive(QString, int)
{
    return archive().begin("connectToArchive");
}

bool FakeArchiveClient::disconnectFromArchive()
{
    return archive().begin("disconnectFromArchive");
}

QString FakeArchiveClient::lastError()
{
    return archive().lastError;
}

bool FakeArchiveClient::getSubArchives(QStringList &archives)
{
    archives = archive().subArchives;
    return archive().begin("getSubArchives");
}

bool FakeArchiveClient::selectArchive(QString archiveKey)
{
    if (!archive().begin("selectArchive", archiveKey))
        return false;
    for (const QString &entry : qAsConst(archive().subArchives))
        if (entry.section(recordformat::fieldSeparator, 1, 1) == archiveKey)
            return true;
    archive().lastError = "There is no such archive.";
    return false;
}

QStringList FakeArchiveClient::searchDocuments(QString query)
{
    if (!archive().begin("searchDocuments", query))
        return {};
    QStringList hits;
    for (const FakeDocument &document : qAsConst(archive().documents)) {
        const QString id = document.fields.at(0).section('#', 0, 0);
        if (document.fields.at(2).contains(query, Qt::CaseInsensitive))
            hits << id + recordformat::fieldSeparator + id;
    }
    return hits;
}

bool FakeArchiveClient::login(QString user, QString password)
{
    return archive().begin("login") && user == archive().login && password == archive().password;
}

QStringList FakeArchiveClient::getDocumentInfo(QStringList docIds)
{
    QStringList infos;
    if (!archive().begin("getDocumentInfo", docIds.join(',')))
        return infos;
    const QChar l = recordformat::listSeparator;
    for (const FakeDocument &document : qAsConst(archive().documents)) {
        const QString id = document.fields.at(0).section('#', 0, 0);
        if (docIds.contains(id))
            infos << id + l + document.fileName + l + l + document.fileName.section('.', -1);
    }
    return infos;
}

bool FakeArchiveClient::getDocumentActions(QStringList docIds, QStringList &actions, int, QString user)
{
    actions.clear();
    if (!archive().begin("getDocumentActions", docIds.join(',')))
        return false;
    const QChar f = recordformat::fieldSeparator;
    for (const QString &id : qAsConst(archive().openedDocuments))
        if (docIds.contains(id))
            actions << id + f + "1" + f + "0" + f + "2024-03-06T10:20:30" + f + user;
    return true;
}
