// Queries of the service against raw SQL for the same records, and of a restricted user against one who sees
// everything. Usage: benchqueries ARCHIVE-FILE, an archive made by "kelvaadmin sample" that may be changed.

#include "bench/measure.h"

#include "service/documentlist.h"
#include "service/folders.h"
#include "service/records.h"
#include "service/session.h"
#include "service/users.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTextStream>

#include <memory>

namespace {

constexpr int roleCount = 50;
constexpr int folderCount = 1000;

[[noreturn]] void giveUp(const QString &text)
{
    QTextStream(stderr) << text << '\n';
    std::exit(1);
}

std::unique_ptr<kelva::Session> open(const QString &path, const QString &user)
{
    auto session =
        user.isEmpty() ? kelva::Session::openAsOwner(path, "admin") : kelva::Session::openAsUser(path, user);
    if (!session)
        giveUp(session.error().text);
    return std::move(session.value());
}

/// A user with 50 roles, among 1,000 folders of which every second one wants one of these roles.
void addRestrictedUser(const QString &path)
{
    const auto session = open(path, QString());
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

int rawRows(const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database("raw"));
    query.setForwardOnly(true);
    if (!query.exec(sql))
        giveUp(query.lastError().text());
    int rows = 0;
    QString row;
    while (query.next()) {
        row.clear();
        for (int column = 0; column < 16; ++column)
            row += query.value(column).toString() + QChar(0xFEFF);
        ++rows;
    }
    return rows;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc != 2)
        giveUp("usage: benchqueries ARCHIVE-FILE");
    const QString path = QString::fromLocal8Bit(argv[1]);
    QSqlDatabase raw = QSqlDatabase::addDatabase("QSQLITE", "raw");
    raw.setDatabaseName(path);
    if (!raw.open())
        giveUp(raw.lastError().text());
    addRestrictedUser(path);

    const auto everything = open(path, "admin");
    const auto restricted = open(path, "restricted");
    const auto product = [](kelva::Session &session, const QStringList &filters) {
        return [&session, filters] {
            const auto rows = kelva::listDocuments(session, filters);
            if (!rows || rows.value().size() < 2)
                giveUp("No rows for " + filters.join(" | "));
        };
    };
    const QString columns =
        "SELECT c.document, c.bemerkung, c.status, c.version, c.folder, c.docart, c.changeid, "
        "c.cdate, c.ctimestamp, c.defdate, c.attr1, c.attr2, c.attr3, c.attr4, c.attr5, c.id FROM "
        "classification c ";
    struct Case
    {
        QString what;
        QStringList filters;
        QString sql;
    };
    const QList<Case> cases{
        {"all, limit 1000", {"1=1", "OPT:LIMIT;1000"}, "WHERE c.trashed = 0 ORDER BY c.id DESC LIMIT 1000"},
        {"folder with everything below, limit 1000",
         {"(folder = '1.1' OR folder like '1.1.%')", "1=1", "OPT:LIMIT;1000"},
         "WHERE c.trashed = 0 AND (c.folder = '1.1' OR (c.folder >= '1.1.' AND c.folder < '1.1/')) ORDER BY "
         "c.id DESC "
         "LIMIT 1000"},
        {"one small folder, limit 1000",
         {"(folder = '1.4.1.7' OR folder like '1.4.1.7.%')", "1=1", "OPT:LIMIT;1000"},
         "WHERE c.trashed = 0 AND (c.folder = '1.4.1.7' OR (c.folder >= '1.4.1.7.' AND c.folder < "
         "'1.4.1.7/')) ORDER "
         "BY c.id DESC LIMIT 1000"},
        {"status, limit 1000",
         {"(status = 5)", "1=1", "OPT:LIMIT;1000"},
         "WHERE c.trashed = 0 AND c.status = 5 ORDER BY c.id DESC LIMIT 1000"},
        {"span of dates, limit 1000",
         {"1=1", "cdate >= '2024-03-01' AND cdate <= '2024-03-05'", "OPT:LIMIT;1000"},
         "WHERE c.trashed = 0 AND c.cdate >= '2024-03-01' AND c.cdate <= '2024-03-05' ORDER BY c.id DESC "
         "LIMIT 1000"},
        {"word of the description, 1 in 1000",
         {"to_tsvector(bemerkung) @@ to_tsquery('appendix')", "OPT:LIMIT;1000"},
         "WHERE c.trashed = 0 AND c.id IN (SELECT rowid FROM words_bemerkung WHERE words_bemerkung MATCH "
         "'appendix') "
         "ORDER BY c.id DESC LIMIT 1000"},
        {"text within the description, 1 in 1000",
         {"bemerkung ilike '%ppendi%'", "OPT:LIMIT;1000"},
         "WHERE c.trashed = 0 AND c.id IN (SELECT rowid FROM trigrams_bemerkung WHERE trigrams_bemerkung "
         "MATCH "
         "'ppendi') ORDER BY c.id DESC LIMIT 1000"},
    };
    for (const Case &entry : cases)
        compare(
            {entry.what, product(*everything, entry.filters), [&] { rawRows(columns + entry.sql); }, 3.0});
    for (const Case &entry : cases)
        compare({"restricted user: " + entry.what, product(*restricted, entry.filters),
                 product(*everything, entry.filters), 1.2});
    return 0;
}
