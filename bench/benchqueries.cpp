// Queries of the service against raw SQL for the same records, and of a restricted user against one who sees
// everything. Usage: benchqueries ARCHIVE-FILE, an archive made by "kelvaadmin sample" that may be changed.

#include "bench/measure.h"
#include "bench/restricteduser.h"

#include "server/recordformat.h"
#include "service/documentlist.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace {

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

    const auto everything = openArchive(path, "admin");
    const auto restricted = openArchive(path, "restricted");
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
