#include "fakes/fakearchiveclient.h"

#include "contract/recordformat.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QTemporaryFile>

namespace {

bool knowsArchive(const QString &key)
{
    for (const QString &entry : qAsConst(FakeArchive::instance().subArchives))
        if (entry.section(recordformat::fieldSeparator, 1, 1) == key)
            return true;
    return false;
}

} // namespace

bool FakeArchiveClient::getSubArchives(QStringList &archives)
{
    const bool done = m_archive.begin("getSubArchives");
    archives = done ? m_archive.subArchives : QStringList();
    return done;
}

bool FakeArchiveClient::unsupported()
{
    return refuse("This is not available yet.");
}

bool FakeArchiveClient::refuse(const QString &text)
{
    m_archive.lastError = text;
    return false;
}

bool FakeArchiveClient::transfer(qint64 bytes)
{
    m_cancelled = false;
    emit totalFileSize(QString::number(bytes));
    qint64 done = 0;
    do {
        done = qMin<qint64>(bytes, done + m_archive.pieceSize);
        emit currentReadSize(QString::number(done));
        QCoreApplication::processEvents();
        if (m_archive.duringTransfer)
            m_archive.duringTransfer();
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
    if (!m_archive.begin("uploadDocument", name + (newDocument ? " new" : " version")))
        return false;
    if (!archiveKey.trimmed().isEmpty() && !knowsArchive(archiveKey))
        return refuse("There is no such archive.");
    if (!file.open(QIODevice::ReadOnly))
        return refuse("The file cannot be read.");
    if (!transfer(file.size()))
        return false;
    emit saveDocEnd();
    QList<int> known = m_archive.contents.keys();
    while (!known.isEmpty() && (newDocument || m_archive.contents[known.last()].fileName != name))
        known.removeLast();
    const QByteArray bytes = file.readAll();
    m_lastDocument = known.isEmpty() ? m_archive.addContent(name, bytes) : known.last();
    m_archive.contents[int(m_lastDocument)].bytes = bytes;
    return true;
}

bool FakeArchiveClient::downloadDocument(int docId, QString &path, int mode)
{
    path.clear();
    if (m_transferring)
        return refuse("A transfer is running.");
    const QScopedValueRollback<bool> transferring(m_transferring, true);
    if (!m_archive.begin("downloadDocument", QString("%1 %2").arg(docId).arg(mode)))
        return false;
    if (!m_archive.contents.contains(docId))
        return refuse("The document does not exist.");
    const FakeContent content = m_archive.contents.value(docId);
    if (!transfer(content.bytes.size()))
        return false;
    const QString suffix = QFileInfo(content.fileName).suffix();
    QTemporaryFile file(QDir::tempPath() + "/fake-XXXXXX" + (suffix.isEmpty() ? QString() : '.' + suffix));
    file.setAutoRemove(m_archive.losesDownloads);
    if (!file.open() || file.write(content.bytes) != content.bytes.size())
        return refuse("The file cannot be written.");
    path = file.fileName();
    if (mode == 0)
        m_archive.openedDocuments << QString::number(docId);
    return true;
}

bool FakeArchiveClient::countSubArchiveDocuments(int &count)
{
    count = m_archive.contents.size();
    return m_archive.begin("countSubArchiveDocuments");
}

bool FakeArchiveClient::selectArchive(QString archiveKey)
{
    if (!m_archive.begin("selectArchive", archiveKey))
        return false;
    return knowsArchive(archiveKey) || refuse("There is no such archive.");
}

QStringList FakeArchiveClient::searchDocuments(QString query)
{
    if (!m_archive.begin("searchDocuments", query))
        return {};
    QStringList hits;
    for (const FakeDocument &document : qAsConst(m_archive.documents)) {
        const QString id = document.fields.at(0).section('#', 0, 0);
        if (document.fields.at(2).contains(query.trimmed(), Qt::CaseInsensitive))
            hits << id + recordformat::fieldSeparator + id;
    }
    return hits;
}

bool FakeArchiveClient::login(QString user, QString password)
{
    return m_archive.begin("login") && user == m_archive.login && password == m_archive.password;
}

QStringList FakeArchiveClient::getDocumentInfo(QStringList docIds)
{
    QStringList infos;
    if (!m_archive.begin("getDocumentInfo", docIds.join(',')))
        return infos;
    const QChar l = recordformat::listSeparator;
    for (auto content = m_archive.contents.cbegin(); content != m_archive.contents.cend(); ++content) {
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
    if (!m_archive.begin("getDocumentActions", docIds.join(',')))
        return false;
    const QChar f = recordformat::fieldSeparator;
    for (const QString &id : qAsConst(m_archive.openedDocuments))
        if (docIds.contains(id))
            actions << id + f + "1" + f + "0" + f + "2024-03-06T10:20:30" + f + user;
    return true;
}
