#include "service/archive.h"
#include "service/attributes.h"
#include "service/bulkload.h"
#include "service/documentlist.h"
#include "service/folders.h"
#include "service/records.h"
#include "service/session.h"
#include "service/users.h"
#include "service/workbench.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTextStream>

#include <algorithm>
#include <functional>
#include <memory>

using namespace kelva;

namespace {

constexpr int folderRoots = 9;
constexpr int foldersPerRoot = 111;
constexpr int roleCount = 50;
constexpr int rounds = 15;

template<typename Outcome>
auto &need(Outcome &&outcome)
{
    if (!outcome)
        qFatal("%s", qPrintable(outcome.error().text));
    static_assert(std::is_lvalue_reference_v<Outcome>, "keep the result");
    return outcome;
}

QString roleName(int role)
{
    return QStringLiteral("role%1").arg(role);
}

QStringList makeFolders(Session &session)
{
    QStringList oids;
    Records folders;
    const auto add = [&](const QString &oid) {
        oids << oid;
        folders.add({oid, QStringLiteral("Folder ") + oid, QStringLiteral("0"), QString(), QString(),
                     QStringLiteral("1"), QStringLiteral("I"), QString()});
    };
    for (int root = 1; root <= folderRoots; ++root) {
        add(QString::number(root));
        for (int i = 0; i < foldersPerRoot; ++i)
            add(i < 10 ? QStringLiteral("%1.%2").arg(root).arg(i + 1)
                       : QStringLiteral("%1.%2.%3").arg(root).arg(i % 10 + 1).arg(i / 10));
    }
    const auto saved = Folders(session).save(folders);
    need(saved);
    return oids;
}

/// Every role opens a twentieth of the folders; "clerk" holds all of them and "narrow" one.
void makePeople(Session &session, const QStringList &folders)
{
    Users users(session);
    QStringList roles;
    for (int i = 0; i < roleCount; ++i)
        roles << roleName(i);
    const auto made = users.createRoles(roles);
    need(made);
    for (int i = 0; i < folders.size(); ++i) {
        const auto set =
            Folders(session).setRoles(folders.at(i), {roleName(i % roleCount), roleName(i * 7 % roleCount)});
        need(set);
    }
    for (const auto &[login, own] : {std::pair(QStringLiteral("clerk"), roles),
                                     std::pair(QStringLiteral("narrow"), QStringList(roles.mid(0, 1)))}) {
        const auto user = users.create({login, QStringLiteral("secret"), login, QString()});
        need(user);
        const auto given = users.setRolesOf(login, QStringList(own) << QStringLiteral("kelvaCLASSIFY"));
        need(given);
    }
}

void generate(const QString &path, int documents)
{
    NewArchive archive;
    archive.path = path;
    archive.administrator = QStringLiteral("admin");
    archive.password = QStringLiteral("secret");
    const auto created = archive::create(archive);
    need(created);
    auto owner = Session::openAsOwner(path, QStringLiteral("admin"));
    Session &session = *need(owner).value();
    const QStringList folders = makeFolders(session);
    makePeople(session, folders);
    QStringList attributes;
    const QStringList kinds{"String", "ComboBox", "CheckBox", "Date", "Numeric"};
    for (int i = 0; i < 9; ++i)
        attributes << joinFields({QString::number(-1 - i), QStringLiteral("Attribute %1").arg(i),
                                  kinds.at(i % 5), QStringLiteral("false"), QStringLiteral("false")});
    const auto saved = Attributes(session).save(attributes);
    need(saved);
    QRandomGenerator random(20200101);
    const auto word = [&] {
        return QStringLiteral("word%1").arg(
            static_cast<int>(random.generateDouble() * random.generateDouble() * 30000));
    };
    BulkLoad load(session);
    for (int i = 0; i < documents; ++i) {
        BulkDocument document;
        document.fileName = QStringLiteral("file%1.pdf").arg(i);
        document.creator = i % 5 == 0 ? QStringLiteral("clerk") : QStringLiteral("admin");
        document.created = QStringLiteral("2020-02-03T04:05:06");
        document.description = QStringList{word(), word(), word(), word(), QString::number(i)}.join(' ');
        if (i % std::max(1, documents / 1000) == 0)
            document.description += QStringLiteral(" needle haystack");
        document.status = 1 + random.bounded(3);
        document.folder = folders.at(random.bounded(folders.size()));
        document.type = 0;
        document.date = QDate(2010, 1, 1).addDays(random.bounded(3650)).toString(Qt::ISODate);
        document.trashed = random.bounded(20) == 0;
        document.attributes = {{1, word()},
                               {2, QStringLiteral("choice%1").arg(random.bounded(10))},
                               {3, random.bounded(2) ? "2" : "0"},
                               {5, QString::number(random.bounded(100000) / 100.0)}};
        const auto added = load.add(document);
        need(added);
    }
    const auto finished = load.finish();
    need(finished);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double milliseconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

struct Measured
{
    const char *what;
    QStringList filters;
    const char *floor; ///< the same question put to the database directly
};

/// All columns of every row, as text: what any client of the database has to do.
int readAll(Database &database, const QString &sql)
{
    int rows = 0;
    for (Query row = database.query(sql); row.next(); ++rows)
        for (int column = 0; column < 20; ++column)
            (void)row.text(column);
    return rows;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    if (argc < 2) {
        out << "usage: benchqueries FILE [DOCUMENTS]\n"
               "Makes the archive FILE with a million records unless it is there, and compares lists with "
               "raw queries.\n";
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    if (!QFileInfo::exists(path)) {
        const int documents = argc > 2 ? QByteArray(argv[2]).toInt() : 1000000;
        const double taken = milliseconds([&] { generate(path, documents); });
        out << "generated " << documents << " records in " << taken / 1000 << " s, "
            << QFileInfo(path).size() / 1048576 << " MiB\n";
    }
    auto owner = Session::openAsOwner(path, QStringLiteral("admin"));
    auto clerk = Session::openAsUser(path, QStringLiteral("clerk"));
    auto narrow = Session::openAsUser(path, QStringLiteral("narrow"));
    need(owner);
    need(clerk);
    need(narrow);
    const QString columns = QStringLiteral(
        "SELECT c.document, c.id, c.mandant, c.bemerkung, c.status, c.version, c.folder, c.docart,"
        " c.changeid, c.cdate, c.ctimestamp, c.defdate, c.attr1, c.attr2, c.attr3, c.attr4,"
        " c.attr5, c.attr6, c.attr7, c.attr8 FROM classification c WHERE c.trashed = 0 AND ");
    const QString limit = QStringLiteral("OPT:LIMIT;1000");
    const Measured list[] = {
        {"everything", {"1=1", limit}, "1 ORDER BY c.id DESC LIMIT 1000"},
        {"main folder (a ninth)",
         {"(folder = '3' OR folder like '3.%')", "1=1", limit},
         "(c.folder = '3' OR c.folder >= '3.' AND c.folder < '3/') LIMIT 1000"},
        {"folder (a hundredth)",
         {"(folder = '3.1' OR folder like '3.1.%')", "1=1", limit},
         "(c.folder = '3.1' OR c.folder >= '3.1.' AND c.folder < '3.1/') LIMIT 1000"},
        {"single folder (a thousandth)",
         {"(folder = '3.1.1' OR folder like '3.1.1.%')", "1=1", limit},
         "(c.folder = '3.1.1' OR c.folder >= '3.1.1.' AND c.folder < '3.1.1/') LIMIT 1000"},
        {"status", {"(status = 2)", "1=1", limit}, "c.status = 2 ORDER BY c.id DESC LIMIT 1000"},
        {"type", {"docart = 0", limit}, "c.docart = 0 ORDER BY c.id DESC LIMIT 1000"},
        {"one day",
         {"1=1", "cdate >= '2015-03-01' AND cdate <= '2015-03-01'", limit},
         "c.cdate = '2015-03-01' LIMIT 1000"},
        {"one year",
         {"1=1", "cdate >= '2015-01-01' AND cdate <= '2015-12-31'", limit},
         "c.cdate >= '2015-01-01' AND c.cdate <= '2015-12-31' LIMIT 1000"},
        {"word, 1000 hits",
         {"to_tsvector(bemerkung) @@ to_tsquery('needle')", limit},
         "c.id IN (SELECT rowid FROM words_bemerkung WHERE words_bemerkung MATCH 'needle') LIMIT 1000"},
        {"common word",
         {"to_tsvector(bemerkung) @@ to_tsquery('word1')", limit},
         "c.id IN (SELECT rowid FROM words_bemerkung WHERE words_bemerkung MATCH 'word1') LIMIT 1000"},
        {"contained text, 1000 hits",
         {"bemerkung ilike '%ayst%'", limit},
         "c.id IN (SELECT rowid FROM trigrams_bemerkung WHERE trigrams_bemerkung MATCH '\"ayst\"') LIMIT "
         "1000"},
        {"word in a folder",
         {"(folder = '3' OR folder like '3.%')", "to_tsvector(bemerkung) @@ to_tsquery('needle')", limit},
         "c.id IN (SELECT rowid FROM words_bemerkung WHERE words_bemerkung MATCH 'needle') AND (c.folder = "
         "'3' OR c.folder >= '3.' AND c.folder < '3/') LIMIT 1000"},
        {"choice attribute", {"attr2 = 'choice3'", limit}, "c.attr2 = 'choice3' LIMIT 1000"},
        {"number attribute", {"attr5 = 12.5", limit}, "c.attr5 = 12.5 LIMIT 1000"},
        {"trash", {"1=1", "OPT:TRASH", limit}, "1 LIMIT 1000"},
        {"mine", {"1=1", "OPT:MINE", limit}, "c.creator = 'admin' LIMIT 1000"},
    };
    out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7\n")
               .arg("", -30)
               .arg("rows", 6)
               .arg("raw", 8)
               .arg("admin", 8)
               .arg("clerk", 8)
               .arg("narrow", 8)
               .arg("admin/raw", 10);
    for (const Measured &entry : list) {
        std::vector<double> raw, all, many, few;
        qint64 rows = 0;
        for (int round = 0; round < rounds; ++round) {
            raw.push_back(milliseconds(
                [&] { readAll(owner.value()->database(), columns + QLatin1String(entry.floor)); }));
            all.push_back(milliseconds([&] {
                const auto found = listDocuments(*owner.value(), entry.filters);
                rows = need(found).value().size() - 1;
            }));
            many.push_back(milliseconds([&] {
                const auto found = listDocuments(*clerk.value(), entry.filters);
                need(found);
            }));
            few.push_back(milliseconds([&] {
                const auto found = listDocuments(*narrow.value(), entry.filters);
                need(found);
            }));
        }
        out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7\n")
                   .arg(QLatin1String(entry.what), -30)
                   .arg(rows, 6)
                   .arg(median(raw), 8, 'f', 2)
                   .arg(median(all), 8, 'f', 2)
                   .arg(median(many), 8, 'f', 2)
                   .arg(median(few), 8, 'f', 2)
                   .arg(median(all) / median(raw), 10, 'f', 2);
        out.flush();
    }
    for (const auto &[name, session] :
         {std::pair("admin", owner.value().get()), std::pair("clerk", clerk.value().get())})
        out << "vocabulary block for " << name << ": " << milliseconds([session = session] {
            const auto block = workbenchBlock(*session);
            need(block);
        }) << " ms\n";
    return 0;
}
