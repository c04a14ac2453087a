#include "fakes/fakearchiveclient.h"

#include "fakes/fakearchive.h"
#include "server/recordformat.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QTemporaryFile>

namespace {

FakeArchive &archive()
{
    return FakeArchive::instance();
}

bool knowsArchive(const QString &key)
{
    for (const QString &entry : qAsConst(archive().subArchives))
        if (entry.section(recordformat::fieldSeparator, 1, 1) == key)
            return true;
    return false;
}

} // namespace

bool FakeArchiveClient::unsupported()
{
    return refuse("This is not available yet.");
}

bool FakeArchiveClient::refuse(const QString &text)
{
    archive().lastError = text;
    return false;
}

bool FakeArchiveClient::transfer(qint64 bytes)
{
    m_cancelled = false;
    emit totalFileSize(QString::number(bytes));
    qint64 done = 0;
    do {
        done = qMin<qint64>(bytes, done + archive().pieceSize);
        emit currentReadSize(QString::number(done));
        QCoreApplication::processEvents();
        if (archive().duringTransfer)
            archive().duringTransfer();
    } while (done < bytes && !m_cancelled);
    return !m_cancelled || refuse("The transfer was cancelled.");
}

bool FakeArchiveClient::uploadDocument(QString archiveKey, QString localFile, bool newDocument)
{
    if (m_transferring)
        return refuse("A transfer is running.");
    const QScopedValueRollback<bool> transferring(m_transferring, true);
    QFile file(localFile);
    const QString name = QFileInfo(localFile).fileName();
    if (!archive().begin("uploadDocument", name + (newDocument ? " new" : " version")))
        return false;
    if (!archiveKey.trimmed().isEmpty() && !knowsArchive(archiveKey))
        return refuse("There is no such archive.");
    if (!file.open(QIODevice::ReadOnly))
        return refuse("The file cannot be read.");
    if (!transfer(file.size()))
        return false;
    emit saveDocEnd();
    QList<int> known = archive().contents.keys();
    while (!known.isEmpty() && (newDocument || archive().contents[known.last()].fileName != name))
        known.removeLast();
    const QByteArray bytes = file.readAll();
    m_lastDocument = known.isEmpty() ? archive().addContent(name, bytes) : known.last();
    archive().contents[int(m_lastDocument)].bytes = bytes;
    return true;
}

bool FakeArchiveClient::downloadDocument(int docId, QString &path, int mode)
{
    path.clear();
    if (m_transferring)
        return refuse("A transfer is running.");
    const QScopedValueRollback<bool> transferring(m_transferring, true);
    if (!archive().begin("downloadDocument", QString("%1 %2").arg(docId).arg(mode)))
        return false;
    if (!archive().contents.contains(docId))
        return refuse("The document does not exist.");
    const FakeContent content = archive().contents.value(docId);
    if (!transfer(content.bytes.size()))
        return false;
    const QString suffix = QFileInfo(content.fileName).suffix();
    QTemporaryFile file(QDir::tempPath() + "/fake-XXXXXX" + (suffix.isEmpty() ? QString() : '.' + suffix));
    file.setAutoRemove(archive().losesDownloads);
    if (!file.open() || file.write(content.bytes) != content.bytes.size())
        return refuse("The file cannot be written.");
    path = file.fileName();
    if (mode == 0)
        archive().openedDocuments << QString::number(docId);
    return true;
}

bool FakeArchiveClient::countSubArchiveDocuments(int &count)
{
    count = archive().contents.size();
    return archive().begin("countSubArchiveDocuments");
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
    return knowsArchive(archiveKey) || refuse("There is no such archive.");
}

QStringList FakeArchiveClient::searchDocuments(QString query)
{
    if (!archive().begin("searchDocuments", query))
        return {};
    QStringList hits;
    for (const FakeDocument &document : qAsConst(archive().documents)) {
        const QString id = document.fields.at(0).section('#', 0, 0);
        if (document.fields.at(2).contains(query.trimmed(), Qt::CaseInsensitive))
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
    for (auto content = archive().contents.cbegin(); content != archive().contents.cend(); ++content) {
        const QString id = QString::number(content.key());
        const QString name = content->fileName;
        if (docIds.contains(id))
            infos << id + l + name + l + l + name.section('.', -1);
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
