#include "fakes/fakeclassifyclient.h"

#include "contract/recordformat.h"

#include <QRegularExpression>

namespace {

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
    m_archive.begin("unsupported");
    m_archive.lastError = "This is not available yet.";
    return false;
}

bool FakeClassifyClient::connectClient(QString host, int port, QString user, QString password)
{
    if (!m_archive.begin("connectClient", user))
        return false;
    if (user != m_archive.login || password != m_archive.password) {
        m_archive.lastError = "Wrong user name or password.";
        return false;
    }
    m_readRecords.clear();
    m_host = host;
    m_port = port;
    m_login = user;
    return true;
}

void FakeClassifyClient::getArchiveList(QStringList &archives)
{
    archives = m_archive.begin("getArchiveList") ? m_archive.subArchives : QStringList();
}

bool FakeClassifyClient::changeOwnPassword(QString oldPassword, QString newPassword)
{
    if (!m_archive.begin("changeOwnPassword"))
        return false;
    if (oldPassword != m_archive.password) {
        m_archive.lastError = "The old password is wrong.";
        return false;
    }
    m_archive.password = newPassword;
    return true;
}

bool FakeClassifyClient::changeExpiredPassword(QString, QString oldPassword, QString newPassword, QString,
                                               int)
{
    return changeOwnPassword(oldPassword, newPassword);
}

QStringList FakeClassifyClient::getDocuments(QStringList filters)
{
    m_archive.queries << filters;
    if (!m_archive.begin("getDocuments", filters.join(" | ")))
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
    QStringList rows{m_archive.headerTitles.join(f) + f + "Rights"};
    for (auto entry = m_archive.documents.cbegin(); entry != m_archive.documents.cend(); ++entry) {
        const FakeDocument &document = entry.value();
        bool wanted = document.trashed == trash;
        for (const QString &clause : qAsConst(clauses)) {
            bool known = false;
            wanted = matches(clause, document, known) && wanted;
            if (!known) {
                m_archive.lastError = "Unknown clause: " + clause;
                return {};
            }
        }
        if (wanted && (limit < 0 || rows.size() - 1 < limit)) {
            rows << document.fields.join(f) + f + document.rights;
            m_readRecords.insert(entry.key());
        }
    }
    return rows;
}

QStringList FakeClassifyClient::getDocument(QString docId, QString)
{
    if (!m_archive.begin("getDocument", docId) || !m_archive.documents.contains(docId.toInt()))
        return {};
    const FakeDocument document = m_archive.documents.value(docId.toInt());
    m_readRecords.insert(docId.toInt());
    return document.fields + QStringList(document.rights);
}

bool FakeClassifyClient::saveDocument(QString docId, QStringList fields)
{
    if (!m_archive.begin("saveDocument", docId) || !m_archive.documents.contains(docId.toInt()))
        return false;
    FakeDocument &document = m_archive.documents[docId.toInt()];
    if (!m_readRecords.contains(docId.toInt()) || fields.size() != document.fields.size()) {
        m_archive.lastError = "The entry does not have the fields that it was read with.";
        return false;
    }
    if (fields.value(3) != document.fields.at(4)) {
        m_archive.lastError = "The entry has been changed by another user in the meantime.";
        return false;
    }
    for (int i = 0; i + 1 < document.fields.size(); ++i)
        document.fields[i + 1] = fields.at(i);
    document.fields[4] = QString("1_%1").arg(m_archive.nextToken++);
    return true;
}

bool FakeClassifyClient::saveSearch(QString name, QString definition, QStringList roles)
{
    if (!m_archive.begin("saveSearch", name))
        return false;
    const int id = m_archive.searches.isEmpty() ? 1 : m_archive.searches.lastKey() + 1;
    m_archive.searches.insert(id, QStringList{name, definition} + roles);
    return true;
}

bool FakeClassifyClient::updateSearch(int id, QString name, QString definition, QStringList roles)
{
    if (!m_archive.begin("updateSearch", QString::number(id)) || !m_archive.searches.contains(id))
        return false;
    m_archive.searches.insert(id, QStringList{name, definition} + roles);
    return true;
}

bool FakeClassifyClient::deleteSearch(QString id)
{
    return m_archive.begin("deleteSearch", id) && m_archive.searches.remove(id.toInt()) > 0;
}

QStringList FakeClassifyClient::getSearches(QString user)
{
    QStringList records;
    if (!m_archive.begin("getSearches", user))
        return records;
    for (auto search = m_archive.searches.cbegin(); search != m_archive.searches.cend(); ++search) {
        const QStringList roles = search.value().mid(2);
        bool open = m_archive.rights.contains("kelvaADMIN") || roles.contains("kelvaUSER");
        for (const QString &right : qAsConst(m_archive.rights))
            open = open || roles.contains(right);
        if (open)
            records << QStringList{QString::number(search.key()), search.value().at(0), search.value().at(1),
                                   roles.join(recordformat::listSeparator)}
                           .join(recordformat::fieldSeparator);
    }
    return records;
}

bool FakeClassifyClient::getStatusList(QStringList &rows, QList<QByteArray> &pictures)
{
    rows.clear();
    pictures.clear();
    if (!m_archive.begin("getStatusList"))
        return false;
    rows = m_archive.statusRows;
    for (int i = 0; i < rows.size(); ++i)
        pictures << QByteArray();
    return true;
}

bool FakeClassifyClient::getSetting(QString section, QString key, QByteArray &value, QString &owner)
{
    if (!m_archive.begin("getSetting", key))
        return false;
    owner.clear();
    if (!m_archive.settings.contains(section + '/' + key)) {
        m_archive.lastError = "No data found.";
        return false;
    }
    value = m_archive.settings.value(section + '/' + key);
    return true;
}
