#include "service/operation.h"

#include "service/rights.h"

#include <QHash>

namespace kelva {
namespace {

Result<void> requireAny(const Access &access, const QString &right, const QString &other)
{
    return access.has(other) ? Result<void>() : access.require(right);
}

QHash<QByteArray, Permission> permissionsByName()
{
    QHash<QByteArray, Permission> permissions;
    for (const Operation &operation : operations())
        permissions.insert(operation.name, operation.permission);
    return permissions;
}

} // namespace

const QVector<Operation> &operations()
{
    static const QVector<Operation> all{
        {"Attributes::list", Permission::Anybody},
        {"Attributes::save", Permission::Administer},
        {"Attributes::saveValues", Permission::Administer},
        {"Attributes::values", Permission::Anybody},
        {"BulkLoad::add", Permission::Administer},
        {"BulkLoad::addEvent", Permission::Administer},
        {"BulkLoad::finish", Permission::Administer},
        {"Content::actions", Permission::Anybody},
        {"Content::exportVersions", Permission::Administer},
        {"Content::fetch", Permission::Anybody},
        {"Content::info", Permission::Anybody},
        {"Content::record", Permission::Writer},
        {"Content::remove", Permission::Administer},
        {"Content::search", Permission::Anybody},
        {"Content::size", Permission::Anybody},
        {"Content::store", Permission::Classify},
        {"Documents::classify", Permission::Classify},
        {"Documents::close", Permission::Administer},
        {"Documents::count", Permission::Anybody},
        {"Documents::countInFolder", Permission::Anybody},
        {"Documents::get", Permission::Anybody},
        {"Documents::history", Permission::ReadHistory},
        {"Documents::moveToSubArchive", Permission::Classify},
        {"Documents::save", Permission::Writer},
        {"Documents::setTrashed", Permission::Writer},
        {"FileTexts::counts", Permission::Anybody},
        {"FileTexts::recreate", Permission::Administer},
        {"Folders::create", Permission::CreateFolders},
        {"Folders::list", Permission::Anybody},
        {"Folders::list, all", Permission::Administer},
        {"Folders::nextOid", Permission::Anybody},
        {"Folders::roles", Permission::Administer},
        {"Folders::save", Permission::Administer},
        {"Folders::saveStructure", Permission::Administer},
        {"Folders::setRoles", Permission::Administer},
        {"Folders::structure", Permission::Anybody},
        {"Searches::list", Permission::Anybody},
        {"Searches::remove", Permission::Writer},
        {"Searches::save", Permission::Writer},
        {"Searches::update", Permission::Writer},
        {"Settings::get", Permission::Anybody},
        {"Settings::get, secret", Permission::Administer},
        {"Settings::save", Permission::Administer},
        {"SubArchives::countDocuments", Permission::Anybody},
        {"SubArchives::create", Permission::Administer},
        {"SubArchives::find", Permission::Anybody},
        {"SubArchives::list", Permission::Anybody},
        {"SubArchives::name", Permission::Anybody},
        {"SubArchives::remove", Permission::Administer},
        {"SubArchives::rename", Permission::Administer},
        {"Users::changeOwnPassword", Permission::OldPassword},
        {"Users::create", Permission::Administer},
        {"Users::createRoles", Permission::Administer},
        {"Users::list", Permission::Administer},
        {"Users::remove", Permission::Administer},
        {"Users::removeRoles", Permission::Administer},
        {"Users::roles", Permission::Anybody},
        {"Users::rolesOf", Permission::Administer},
        {"Users::rolesOf, own", Permission::Anybody},
        {"Users::setPassword", Permission::Administer},
        {"Users::setPasswordExpired", Permission::Administer},
        {"Users::setRolesOf", Permission::Administer},
        {"Users::setUsersOf", Permission::Administer},
        {"Users::update", Permission::Administer},
        {"Users::usersOf", Permission::Administer},
        {"Vocabulary::classifyFields", Permission::Anybody},
        {"Vocabulary::dateBounds", Permission::Anybody},
        {"Vocabulary::descriptions", Permission::Anybody},
        {"Vocabulary::saveStatus", Permission::Administer},
        {"Vocabulary::saveTypes", Permission::Administer},
        {"Vocabulary::status", Permission::Anybody},
        {"Vocabulary::types", Permission::Anybody},
        {"listDocuments", Permission::Anybody},
        {"workbenchBlock", Permission::Anybody},
    };
    return all;
}

Result<void> permit(Session &session, const char *operation)
{
    static const QHash<QByteArray, Permission> permissions = permissionsByName();
    const auto permission = permissions.constFind(QByteArray::fromRawData(operation, qstrlen(operation)));
    if (permission == permissions.cend())
        return Error{ErrorCode::Refused, QStringLiteral("Nobody may do this.")};
    if (*permission == Permission::OldPassword)
        return session.requireWritable();
    if (const Result<void> account = session.requireAccount(); !account)
        return account;
    switch (*permission) {
    case Permission::Anybody:
    case Permission::OldPassword:
        return {};
    case Permission::Writer:
        return session.requireWritable();
    case Permission::Classify:
        return session.access().require(rights::classify);
    case Permission::ReadHistory:
        return session.isOffline() ? Result<void>() : session.access().require(rights::history);
    case Permission::CreateFolders:
        return requireAny(session.access(), rights::createFolder, rights::admin);
    case Permission::Administer:
        return session.access().require(rights::admin);
    }
    return {};
}

} // namespace kelva
