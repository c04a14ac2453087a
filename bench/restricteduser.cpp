#include "bench/restricteduser.h"

#include "service/folders.h"
#include "service/records.h"
#include "service/users.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTextStream>

namespace {

constexpr int roleCount = 50;
constexpr int folderCount = 1000;

} // namespace

void giveUp(const QString &text)
{
    QTextStream(stderr) << text << '\n';
    std::exit(1);
}

std::unique_ptr<kelva::Session> openArchive(const QString &path, const QString &user)
{
    auto session =
        user.isEmpty() ? kelva::Session::openAsOwner(path, "admin") : kelva::Session::openAsUser(path, user);
    if (!session)
        giveUp(session.error().text);
    return std::move(session.value());
}

void addRestrictedUser(const QString &path)
{
    const auto session = openArchive(path, QString());
    kelva::Users users(*session);
    kelva::NewUser user;
    user.login = "restricted";
    user.password = "kelva";
    if (!users.create(user))
        return; // there from an earlier run
    QStringList roles;
    for (int i = 0; i < roleCount; ++i)
        roles << QString("team%1").arg(i);
    kelva::Records folders;
    for (int i = 1; i <= folderCount; ++i)
        folders.add({QString("1.4.1.%1").arg(i), QString("Part %1").arg(i), "0", "", "1.4.1", "1", "I", ""});
    kelva::Folders tree(*session);
    if (!users.createRoles(roles) || !users.setRolesOf(user.login, roles + QStringList{"kelvaCLASSIFY"}) ||
        !tree.save(folders))
        giveUp("The restricted user could not be added.");
    for (int i = 1; i <= folderCount; i += 2)
        if (!tree.setRoles(QString("1.4.1.%1").arg(i), {roles.at(i % roleCount)}))
            giveUp("The folder rights could not be set.");
    // Documents of the drawings folder move into the new ones.
    QSqlQuery move(QSqlDatabase::database("raw"));
    if (!move.exec("UPDATE classification SET folder = '1.4.1.' || (1 + id % 1000) WHERE folder = '1.4.1'"))
        giveUp(move.lastError().text());
}
