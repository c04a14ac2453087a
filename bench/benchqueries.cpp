// Queries of the service against raw SQL for the same records, and of a restricted user against one who sees
// everything. Usage: benchqueries ARCHIVE-FILE, an archive made by "kelvaadmin sample" that may be changed.

#include "bench/measure.h"
#include "bench/restricteduser.h"

#include "contract/recordformat.h"
#include "service/documentlist.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace {

/// Gives every document a text of some 60 words, unless an earlier run did: one word that it shares with one
/// in a thousand documents, one in a hundred and one in ten, the rest of a vocabulary of 20,000.
void addFileTexts()
{
    QSqlQuery texts(QSqlDatabase::database("raw"));
    const bool done =
        texts.exec("SELECT count(*) FROM file_text WHERE text LIKE 'benchword%'") && texts.next() &&
        (texts.value(0).toInt() > 0 ||
         (texts.exec("BEGIN") && texts.exec("DELETE FROM file_text") &&
          texts.exec(
              "INSERT INTO file_text(document, state, text) WITH RECURSIVE "
              "n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 59) "
              "SELECT d.id, 4, 'benchword' || (d.id % 1000) || CASE WHEN d.id % 100 = 0 THEN ' percent' "
              "ELSE '' END || CASE WHEN d.id % 10 = 0 THEN ' tenth' ELSE '' END || (SELECT "
              "group_concat(' w' || ((d.id * 7919 + i * 104729) % 20000), '') FROM n) FROM document d") &&
          texts.exec("COMMIT")));
    if (!done)
        giveUp(texts.lastError().text());
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
    addFileTexts();
    for (const QString word : {"benchword7", "percent", "tenth", "bench*"}) {
        // What the user sees of it, with nothing asked but the word.
        const QString sql = columns +
                            "WHERE c.trashed = 0 AND c.document IN (SELECT rowid FROM words_text WHERE "
                            "words_text MATCH '" +
                            word + "') ORDER BY c.id DESC LIMIT 1000";
        const QString token = QString("OPT:FULLTEXT") + recordformat::fieldSeparator + word;
        compare({"restricted user: file text, " + word,
                 product(*restricted, {"1=1", token, "OPT:LIMIT;1000"}), [&] { rawRows(sql); }, 3.0});
    }
    for (const Case &entry : cases)
        compare({"restricted user: " + entry.what, product(*restricted, entry.filters),
                 product(*everything, entry.filters), 1.2});
    return 0;
}
