#include "classifyclient.h"

#include "service/attributes.h"
#include "service/filetexts.h"
#include "service/folders.h"
#include "service/records.h"
#include "service/searches.h"
#include "service/users.h"
#include "service/vocabulary.h"

using kelva::Records;
using kelva::Result;
using kelva::Session;

namespace {

/// Assigns both lists, empty on failure.
bool assign(kelva::Connection &connection, const std::function<Result<Records>(Session &)> &operation,
            QStringList &rows, QList<QByteArray> &pictures)
{
    bool done = false;
    const Records records = connection.fetch(
        [&](Session &session) {
            const Result<Records> result = operation(session);
            done = result.ok();
            return result;
        },
        Records());
    rows = records.rows;
    pictures = records.pictures;
    return done;
}

bool assign(kelva::Connection &connection, const std::function<Result<QStringList>(Session &)> &operation,
            QStringList &rows)
{
    bool done = false;
    rows = connection.fetch(
        [&](Session &session) {
            const Result<QStringList> result = operation(session);
            done = result.ok();
            return result;
        },
        QStringList());
    return done;
}

} // namespace

bool ClassifyClient::createUser(QStringList record)
{
    const QStringList fields = kelva::splitFields(record.value(0));
    return m_connection.perform([&](Session &session) {
        return kelva::Users(session).create(
            {fields.value(0), fields.value(1), fields.value(2), fields.value(3)});
    });
}

bool ClassifyClient::getUsers(QStringList &users)
{
    return assign(
        m_connection, [](Session &session) { return kelva::Users(session).list(); }, users);
}

bool ClassifyClient::deleteUser(QStringList ids)
{
    return m_connection.perform([&](Session &session) { return kelva::Users(session).remove(ids); });
}

bool ClassifyClient::setUserPassword(QString user, QString password)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Users(session).setPassword(user, password); });
}

bool ClassifyClient::updateUser(QStringList record)
{
    const QStringList fields = kelva::splitFields(record.value(0));
    return m_connection.perform([&](Session &session) {
        return kelva::Users(session).update(fields.value(0).toLongLong(), {fields.value(1), fields.value(2),
                                                                           fields.value(3), fields.value(4)});
    });
}

QStringList ClassifyClient::getRoles()
{
    return m_connection.fetch([](Session &session) { return kelva::Users(session).roles(); }, QStringList());
}

bool ClassifyClient::createRole(QStringList names)
{
    return m_connection.perform([&](Session &session) { return kelva::Users(session).createRoles(names); });
}

bool ClassifyClient::deleteRole(QStringList names)
{
    return m_connection.perform([&](Session &session) { return kelva::Users(session).removeRoles(names); });
}

QStringList ClassifyClient::getUserRoles(QString user)
{
    return m_connection.fetch([&](Session &session) { return kelva::Users(session).rolesOf(user); },
                              QStringList());
}

bool ClassifyClient::setUserRoles(QString user, QStringList roles)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Users(session).setRolesOf(user, roles); });
}

QStringList ClassifyClient::getRoleUsers(QString role)
{
    return m_connection.fetch([&](Session &session) { return kelva::Users(session).usersOf(role); },
                              QStringList());
}

void ClassifyClient::setRoleUsers(QString role, QStringList logins)
{
    m_connection.perform([&](Session &session) { return kelva::Users(session).setUsersOf(role, logins); });
}

bool ClassifyClient::getFolders(QStringList &rows, QList<QByteArray> &pictures, bool all)
{
    return assign(
        m_connection,
        [all](Session &session) {
            return kelva::Folders(session).list(all ? kelva::Folders::Scope::All
                                                    : kelva::Folders::Scope::InUse);
        },
        rows, pictures);
}

bool ClassifyClient::saveFolders(QStringList rows, QList<QByteArray> pictures)
{
    return m_connection.perform([&](Session &session) {
        return kelva::Folders(session).save({rows, pictures});
    });
}

bool ClassifyClient::createFolder(QString parentOid, QString name, QString key, QString keywords)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Folders(session).create(parentOid, name, key, keywords); });
}

bool ClassifyClient::getNextOid(QString &oid)
{
    oid = m_connection.fetch([](Session &session) { return kelva::Folders(session).nextOid(); }, QString());
    return !oid.isEmpty();
}

bool ClassifyClient::saveFolderMandant(QString oid, QStringList rows, QList<QByteArray> pictures)
{
    return m_connection.perform([&](Session &session) {
        return kelva::Folders(session).saveStructure(oid, {rows, pictures});
    });
}

bool ClassifyClient::getFolderMandant(QString oid, QStringList &rows, QList<QByteArray> &pictures)
{
    return assign(
        m_connection, [oid](Session &session) { return kelva::Folders(session).structure(oid); }, rows,
        pictures);
}

QStringList ClassifyClient::getFolderRights(QString oid)
{
    return m_connection.fetch([&](Session &session) { return kelva::Folders(session).roles(oid); },
                              QStringList());
}

bool ClassifyClient::saveFolderRights(QString oid, QStringList roles)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Folders(session).setRoles(oid, roles); });
}

bool ClassifyClient::getStatusList(QStringList &rows, QList<QByteArray> &pictures)
{
    return assign(
        m_connection, [](Session &session) { return kelva::Vocabulary(session).status(); }, rows, pictures);
}

bool ClassifyClient::saveStatusList(QStringList rows, QList<QByteArray> pictures)
{
    return m_connection.perform([&](Session &session) {
        return kelva::Vocabulary(session).saveStatus({rows, pictures});
    });
}

bool ClassifyClient::getDocTypeSettings(QStringList &rows, QList<QByteArray> &pictures)
{
    return assign(
        m_connection, [](Session &session) { return kelva::Vocabulary(session).types(); }, rows, pictures);
}

bool ClassifyClient::saveDocTypes(QStringList rows, QList<QByteArray> pictures)
{
    return m_connection.perform([&](Session &session) {
        return kelva::Vocabulary(session).saveTypes({rows, pictures});
    });
}

QStringList ClassifyClient::getClassifySettings(bool)
{
    return m_connection.fetch([](Session &session) { return kelva::Vocabulary(session).classifyFields(); },
                              QStringList());
}

QStringList ClassifyClient::getAttributes()
{
    return m_connection.fetch([](Session &session) { return kelva::Attributes(session).list(); },
                              QStringList());
}

bool ClassifyClient::saveAttributes(QStringList rows)
{
    return m_connection.perform([&](Session &session) {
        auto saved = kelva::Attributes(session).save(rows);
        if (saved)
            m_newAttributes = saved.value();
        return saved;
    });
}

QStringList ClassifyClient::getAttributeValues(int id)
{
    return m_connection.fetch(
        [&](Session &session) { return kelva::Attributes(session).values(m_newAttributes.value(id, id)); },
        QStringList());
}

bool ClassifyClient::saveAttributeValues(int id, QStringList nameAndValues)
{
    return m_connection.perform([&](Session &session) {
        return kelva::Attributes(session).saveValues(m_newAttributes.value(id, id), nameAndValues);
    });
}

bool ClassifyClient::saveSearch(QString name, QString definition, QStringList roles)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Searches(session).save(name, definition, roles); });
}

bool ClassifyClient::updateSearch(int id, QString name, QString definition, QStringList roles)
{
    return m_connection.perform(
        [&](Session &session) { return kelva::Searches(session).update(id, name, definition, roles); });
}

bool ClassifyClient::deleteSearch(QString id)
{
    return m_connection.perform([&](Session &session) { return kelva::Searches(session).remove(id); });
}

QStringList ClassifyClient::getSearches(QString user)
{
    return m_connection.fetch([&](Session &session) { return kelva::Searches(session).list(user); },
                              QStringList());
}

bool ClassifyClient::getIndexerInfo(QStringList &rows)
{
    bool done = false;
    rows = m_connection.fetch(
        [&](Session &session) {
            const Result<QStringList> counts = kelva::FileTexts(session).counts();
            done = counts.ok();
            return counts;
        },
        QStringList());
    return done;
}

bool ClassifyClient::recreateIndex()
{
    const bool done =
        m_connection.perform([](Session &session) { return kelva::FileTexts(session).recreate(); });
    if (done)
        m_indexer.wake();
    return done;
}

bool ClassifyClient::sslCommand(QString, QString)
{
    return m_connection.refuseUnavailable();
}

bool ClassifyClient::ldapCommand(QString, QStringList, QList<QByteArray>, QStringList &textsOut,
                                 QList<QByteArray> &dataOut)
{
    textsOut.clear();
    dataOut.clear();
    return m_connection.refuseUnavailable();
}

bool ClassifyClient::serverCommand(QString, QStringList, QList<QByteArray>, QStringList &textsOut,
                                   QList<QByteArray> &dataOut)
{
    textsOut.clear();
    dataOut.clear();
    return m_connection.refuseUnavailable();
}
