// Made-up clauses as a restricted user: how long the slowest takes, and whether a row comes that the user may
// not see. Usage: benchclauses ARCHIVE-FILE [COUNT [SEED]], an archive made by "kelvaadmin sample" that may
// be changed.

#include "bench/restricteduser.h"
#include "clause/clausegenerator.h"

#include "contract/recordformat.h"
#include "service/attributes.h"
#include "service/documentlist.h"
#include "service/records.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSet>
#include <QSqlDatabase>
#include <QTextStream>

#include <algorithm>

namespace {

struct Run
{
    double ms;
    QString clause;
    QString answer;
};

/// The generator names attributes up to 9.
void addAttributes(const QString &path)
{
    const auto session = openArchive(path, QString());
    kelva::Attributes attributes(*session);
    const auto present = attributes.list();
    if (!present)
        giveUp(present.error().text);
    const QStringList kinds{"String", "String",   "String", "String", "String",
                            "String", "CheckBox", "String", "Numeric"};
    for (int i = present.value().size(); i < kinds.size(); ++i)
        if (!attributes.save(
                {kelva::joinFields({"-1", QString("Extra %1").arg(i + 1), kinds.at(i), "false", "false"})}))
            giveUp("An attribute could not be added.");
}

QString idOf(const QString &row)
{
    return row.section(recordformat::fieldSeparator, 0, 0).section('#', 1);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc < 2)
        giveUp("usage: benchclauses ARCHIVE-FILE [COUNT [SEED]]");
    const QString path = QString::fromLocal8Bit(argv[1]);
    const int count = argc > 2 ? QString(argv[2]).toInt() : 2000;
    const quint32 seed = argc > 3 ? QString(argv[3]).toUInt() : 4711;
    QSqlDatabase raw = QSqlDatabase::addDatabase("QSQLITE", "raw");
    raw.setDatabaseName(path);
    if (!raw.open())
        giveUp("The archive could not be opened.");
    addRestrictedUser(path);
    addAttributes(path);
    const auto session = openArchive(path, "restricted");
    QSet<QString> visible;
    for (const QStringList &side : {QStringList{"1=1"}, QStringList{"1=1", "OPT:TRASH"}}) {
        const auto rows = kelva::listDocuments(*session, side);
        if (!rows)
            giveUp(rows.error().text);
        for (const QString &row : rows.value())
            visible.insert(idOf(row));
    }

    ClauseGenerator generator(seed);
    QList<Run> runs;
    int refused = 0;
    for (int i = 0; i < count; ++i) {
        const QString clause = i % 5 < 2 ? generator.damaged(generator.text(generator.tree(2)))
                                         : generator.text(generator.tree(i % 4));
        QElapsedTimer timer;
        timer.start();
        const auto rows = kelva::listDocuments(*session, {clause, "OPT:LIMIT;1000"});
        runs << Run{timer.nsecsElapsed() / 1e6, clause,
                    rows ? QString("%1 rows").arg(rows.value().size() - 1) : rows.error().text};
        refused += rows ? 0 : 1;
        for (int row = 1; rows && row < rows.value().size(); ++row)
            if (!visible.contains(idOf(rows.value().at(row))))
                giveUp("A row beyond the user's rights: " + clause);
    }
    std::sort(runs.begin(), runs.end(), [](const Run &a, const Run &b) { return a.ms > b.ms; });
    QTextStream out(stdout);
    out << count << " clauses, " << refused << " refused, " << visible.size() << " documents visible, median "
        << runs.at(count / 2).ms << " ms, one in a thousand above " << runs.at(count / 1000).ms << " ms\n";
    // Every part looks into every record.
    QStringList parts;
    for (int i = 0; i < 200; ++i)
        parts << QString("to_tsvector(ctimestamp) @@ to_tsquery('w%1')").arg(i);
    QElapsedTimer timer;
    timer.start();
    const auto rows = kelva::listDocuments(*session, {parts.join(" OR "), "OPT:LIMIT;1000"});
    out << "200 word searches without index: " << timer.elapsed() << " ms, "
        << (rows ? QString("%1 rows").arg(rows.value().size() - 1) : rows.error().text) << '\n';
    for (const Run &run : runs.mid(0, 5))
        out << run.ms << " ms, " << run.answer << ": " << run.clause.simplified().left(300) << '\n';
    return 0;
}
