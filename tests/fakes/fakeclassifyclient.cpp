#include "fakes/fakeclassifyclient.h"

#include "fakes/fakearchive.h"
#include "server/recordformat.h"

#include <QRegularExpression>

namespace {

FakeArchive &archive()
{
    return FakeArchive::instance();
}

/// The few clauses that tests of the client's own logic use. False with known unset for any other.
bool matches(const QString &clause, const FakeDocument &document, bool &known)
{
    known = true;
    if (clause == "1=1")
        return true;
    static const QRegularExpression folder("^\\(folder = '([^']*)' OR folder like '[^']*'\\)$");
    static const QRegularExpression status("^\\(status = (-?\\d+)\\)$");
    static const QRegularExpression docid("^docid = (\\d+)$");
    static const QRegularExpression records("^docs_id in \\(([0-9,]+)\\)$");
    auto match = records.match(clause);
    if (match.hasMatch())
        return match.captured(1).split(',').contains(document.fields.at(0).section('#', 1, 1));
    match = folder.match(clause);
    if (match.hasMatch())
        return document.fields.at(5) == match.captured(1) ||
               document.fields.at(5).startsWith(match.captured(1) + '.');
    match = status.match(clause);
    if (match.hasMatch())
        return document.fields.at(3) == match.captured(1);
    match = docid.match(clause);
    if (match.hasMatch())
        return document.fields.at(0).section('#', 0, 0) == match.captured(1);
    known = false;
    return false;
}

} // namespace

bool FakeClassifyClient::unsupported()
{
    archive().begin("unsupported");
    archive().lastError = "This is not available yet.";
    return false;
}

ClassifyInterface *FakeClassifyClient::createClient(QString)
{
    archive().begin("createClient");
    return new FakeClassifyClient;
}

bool FakeClassifyClient::connectClient(QString host, int port, QString user, QString password)
{
    if (!archive().begin("connectClient", user))
        return false;
    if (user != archive().login || password != archive().password) {
        archive().lastError = "Wrong user name or password.";
        return false;
    }
    m_host = host;
    m_port = port;
    m_login = user;
    return true;
}

void FakeClassifyClient::disconnectClient()
{
    archive().begin("disconnectClient");
}

QString FakeClassifyClient::getConnectionMode()
{
    return archive().connectionMode;
}

QString FakeClassifyClient::lastMessage()
{
    return archive().lastError;
}

QString FakeClassifyClient::lastError()
{
    return archive().lastError;
}

QString FakeClassifyClient::getLoginName()
{
    return m_login;
}

QStringList FakeClassifyClient::getUserRights()
{
    return archive().rights;
}

QString FakeClassifyClient::getServerHost()
{
    return m_host;
}

int FakeClassifyClient::getServerPort()
{
    return m_port;
}

QString FakeClassifyClient::getServerVersion()
{
    return "Fake 1";
}

void FakeClassifyClient::getArchiveList(QStringList &archives)
{
    archives = archive().begin("getArchiveList") ? archive().subArchives : QStringList();
}

QString FakeClassifyClient::getArchiveName()
{
    return "Main archive";
}

void FakeClassifyClient::setCurrentArchive(QString archiveKey)
{
    archive().begin("setCurrentArchive", archiveKey);
    m_subArchive = archiveKey;
}

qint64 FakeClassifyClient::getProfileId()
{
    return m_profileId;
}

void FakeClassifyClient::setProfileId(qint64 id)
{
    m_profileId = id;
}

void FakeClassifyClient::reloadServerData()
{
    archive().begin("reloadServerData");
}

void FakeClassifyClient::refreshSession()
{
    archive().begin("refreshSession");
}

bool FakeClassifyClient::changeOwnPassword(QString oldPassword, QString newPassword)
{
    if (!archive().begin("changeOwnPassword"))
        return false;
    if (oldPassword != archive().password) {
        archive().lastError = "The old password is wrong.";
        return false;
    }
    archive().password = newPassword;
    return true;
}

bool FakeClassifyClient::changeExpiredPassword(QString, QString oldPassword, QString newPassword, QString,
                                               int)
{
    return changeOwnPassword(oldPassword, newPassword);
}

QStringList FakeClassifyClient::getDocuments(QStringList filters)
{
    archive().queries << filters;
    if (!archive().begin("getDocuments", filters.join(" | ")))
        return {};
    bool trash = false;
    int limit = -1;
    QStringList clauses;
    for (const QString &filter : filters) {
        if (filter == "OPT:TRASH")
            trash = true;
        else if (filter.startsWith("OPT:LIMIT;"))
            limit = filter.mid(10).toInt();
        else if (!filter.startsWith("OPT:"))
            clauses << filter;
    }
    const QChar f = recordformat::fieldSeparator;
    QStringList rows{archive().headerTitles.join(f) + f + "Rights"};
    for (const FakeDocument &document : qAsConst(archive().documents)) {
        bool wanted = document.trashed == trash;
        for (const QString &clause : qAsConst(clauses)) {
            bool known = false;
            wanted = matches(clause, document, known) && wanted;
            if (!known) {
                archive().lastError = "Unknown clause: " + clause;
                return {};
            }
        }
        if (wanted && (limit < 0 || rows.size() - 1 < limit))
            rows << document.fields.join(f) + f + document.rights;
    }
    return rows;
}

QStringList FakeClassifyClient::getDocument(QString docId, QString)
{
    if (!archive().begin("getDocument", docId) || !archive().documents.contains(docId.toInt()))
        return {};
    const FakeDocument document = archive().documents.value(docId.toInt());
    return document.fields + QStringList(document.rights);
}

bool FakeClassifyClient::saveDocument(QString docId, QStringList fields)
{
    if (!archive().begin("saveDocument", docId) || !archive().documents.contains(docId.toInt()))
        return false;
    FakeDocument &document = archive().documents[docId.toInt()];
    if (fields.value(3) != document.fields.at(4)) {
        archive().lastError = "The entry has been changed by another user in the meantime.";
        return false;
    }
    for (int i = 0; i < fields.size() && i + 1 < document.fields.size(); ++i)
        document.fields[i + 1] = fields.at(i);
    document.fields[4] = QString("1_%1").arg(archive().nextToken++);
    return true;
}

qint64 FakeClassifyClient::countDocuments(QString where, bool)
{
    if (!archive().begin("countDocuments", where))
        return -1;
    qint64 count = 0;
    for (const FakeDocument &document : qAsConst(archive().documents)) {
        bool known = false;
        count += matches(where, document, known) ? 1 : 0;
        if (!known)
            return -1;
    }
    return count;
}

bool FakeClassifyClient::moveToTrash(QStringList docIds)
{
    if (!archive().begin("moveToTrash", docIds.join(',')))
        return false;
    for (const QString &id : docIds)
        archive().documents[id.toInt()].trashed = true;
    return true;
}

bool FakeClassifyClient::restoreFromTrash(QStringList docIds)
{
    if (!archive().begin("restoreFromTrash", docIds.join(',')))
        return false;
    for (const QString &id : docIds)
        archive().documents[id.toInt()].trashed = false;
    return true;
}

QStringList FakeClassifyClient::getRoles()
{
    return {"kelvaADMIN", "kelvaCLASSIFY", "kelvaUSER", "r_anna"};
}

bool FakeClassifyClient::saveSearch(QString name, QString definition, QStringList roles)
{
    if (!archive().begin("saveSearch", name))
        return false;
    const int id = archive().searches.isEmpty() ? 1 : archive().searches.lastKey() + 1;
    archive().searches.insert(id, QStringList{name, definition} + roles);
    return true;
}

bool FakeClassifyClient::updateSearch(int id, QString name, QString definition, QStringList roles)
{
    if (!archive().begin("updateSearch", QString::number(id)) || !archive().searches.contains(id))
        return false;
    archive().searches.insert(id, QStringList{name, definition} + roles);
    return true;
}

bool FakeClassifyClient::deleteSearch(QString id)
{
    return archive().begin("deleteSearch", id) && archive().searches.remove(id.toInt()) > 0;
}

QStringList FakeClassifyClient::getSearches(QString user)
{
    QStringList records;
    if (!archive().begin("getSearches", user))
        return records;
    for (auto search = archive().searches.cbegin(); search != archive().searches.cend(); ++search) {
        const QStringList roles = search.value().mid(2);
        bool open = archive().rights.contains("kelvaADMIN") || roles.contains("kelvaUSER");
        for (const QString &right : qAsConst(archive().rights))
            open = open || roles.contains(right);
        if (open)
            records << QStringList{QString::number(search.key()), search.value().at(0), search.value().at(1),
                                   roles.join(recordformat::listSeparator)}
                           .join(recordformat::fieldSeparator);
    }
    return records;
}

QStringList FakeClassifyClient::getDescriptionCompletions()
{
    return {"Invoice", "Letter"};
}

bool FakeClassifyClient::getStatusList(QStringList &rows, QList<QByteArray> &pictures)
{
    rows.clear();
    pictures.clear();
    if (!archive().begin("getStatusList"))
        return false;
    rows = archive().statusRows;
    for (int i = 0; i < rows.size(); ++i)
        pictures << QByteArray();
    return true;
}

bool FakeClassifyClient::getSetting(QString section, QString key, QByteArray &value, QString &owner)
{
    if (!archive().begin("getSetting", key))
        return false;
    owner.clear();
    if (!archive().settings.contains(section + '/' + key)) {
        archive().lastError = "No data found.";
        return false;
    }
    value = archive().settings.value(section + '/' + key);
    return true;
}

bool FakeClassifyClient::saveSetting(QString section, QString key, QByteArray value, QString, bool update)
{
    if (!archive().begin("saveSetting", key))
        return false;
    if (!update && archive().settings.contains(section + '/' + key)) {
        archive().lastError = "The setting exists already.";
        return false;
    }
    archive().settings.insert(section + '/' + key, value);
    return true;
}

QStringList FakeClassifyClient::getMinMaxDates()
{
    return archive().minMaxDates;
}
