#include "store/database.h"

#include "store/schema.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <functional>

namespace kelva {
namespace {

const QString objectNames =
    QStringLiteral("SELECT type || ' ' || name FROM sqlite_schema WHERE name NOT LIKE 'sqlite_%'");

/// What the database says about its pages, in words for people, each thing once.
QString inWords(const QString &finding)
{
    static const QRegularExpression index(QStringLiteral("index (\\w+)$"));
    const QRegularExpressionMatch match = index.match(finding);
    if (match.hasMatch())
        return QStringLiteral("The index %1 does not match its table.").arg(match.captured(1));
    return QStringLiteral("Parts of the archive file are damaged.");
}

/// Every archive has what a new one has, and a column for each of its attributes.
QStringList missingObjects(Database &database)
{
    const QTemporaryDir directory;
    const auto fresh =
        Database::open(directory.filePath(QStringLiteral("fresh.kelva")), Database::Mode::Create);
    if (!fresh)
        return {fresh.error().text};
    const QStringList present = database.texts(objectNames);
    QStringList faults;
    for (const QString &object : fresh.value()->texts(objectNames))
        if (!present.contains(object))
            faults << QStringLiteral("The archive lacks the %1.").arg(object);
    const QStringList columns =
        database.texts(QStringLiteral("SELECT name FROM pragma_table_info('classification')"));
    for (const qint64 id : database.numbers(QStringLiteral("SELECT id FROM attribute")))
        if (!columns.contains(schema::attributeColumn(id)))
            faults << QStringLiteral("The archive lacks the column of the attribute %1.").arg(id);
    return faults;
}

} // namespace

bool Database::isUsedByOthers()
{
    if (m_readOnly)
        return false;
    // Only the last one connected can leave the write-ahead log.
    const bool alone =
        value(QStringLiteral("PRAGMA journal_mode = DELETE")).toString() == QLatin1String("delete");
    value(QStringLiteral("PRAGMA journal_mode = WAL"));
    return !alone;
}

QStringList Database::integrityFaults()
{
    QStringList faults;
    // A step that cannot be taken to its end has met a fault, whatever it found before.
    const auto step = [&](const std::function<void()> &look) {
        m_error.reset();
        look();
        if (m_error)
            faults << m_error->text;
        m_error.reset();
    };
    step([&] {
        for (const QString &finding : texts(QStringLiteral("PRAGMA integrity_check(50)")))
            if (finding != QLatin1String("ok"))
                faults << inWords(finding);
    });
    step([&] {
        for (Query row = query(QStringLiteral("PRAGMA foreign_key_check")); row.next();)
            faults << QStringLiteral("A row of %1 refers to a row of %2 that does not exist.")
                          .arg(row.text(0), row.text(2));
    });
    step([&] { faults << missingObjects(*this); });
    if (!m_readOnly)
        step([&] {
            const QStringList indexes =
                texts(QStringLiteral("SELECT name FROM sqlite_schema WHERE type = 'table'"
                                     " AND sql LIKE 'CREATE VIRTUAL TABLE%fts5%'"));
            for (const QString &index : indexes)
                if (!run(QStringLiteral("INSERT INTO %1(%1, rank) VALUES('integrity-check', 1)").arg(index)))
                    faults << QStringLiteral("The full-text index %1 does not match the texts.").arg(index);
        });
    faults.removeDuplicates();
    return faults;
}

void Database::analyze()
{
    run(QStringLiteral("PRAGMA analysis_limit = 1000"));
    run(QStringLiteral("ANALYZE"));
}

} // namespace kelva
