#include "store/textindex.h"

#include "store/schema.h"

namespace kelva {
namespace {

QString quoted(QString text)
{
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

QString expressionOf(const TextTerms &terms)
{
    QStringList parts;
    for (const TextTerm &term : terms)
        parts << quoted(term.words.join(QLatin1Char(' '))) +
                     (term.prefix ? QLatin1String(" *") : QLatin1String());
    return parts.join(QStringLiteral(" AND "));
}

SqlCondition rowsMatching(const QString &table, const QString &expression)
{
    return {QStringLiteral("SELECT rowid FROM %1 WHERE %1 MATCH ?").arg(table), {expression}, true};
}

SqlCondition isAmong(const QString &idColumn, SqlCondition rows)
{
    rows.sql = QStringLiteral("%1 IN (%2)").arg(idColumn, rows.sql);
    return rows;
}

} // namespace

SqlCondition textindex::rowsWithWords(const QString &table, const TextTerms &terms)
{
    return rowsMatching(table, expressionOf(terms));
}

SqlCondition textindex::words(const QString &idColumn, const QString &table, const TextTerms &terms)
{
    return isAmong(idColumn, rowsWithWords(table, terms));
}

SqlCondition textindex::contains(const QString &idColumn, const QString &table, const QString &run)
{
    return isAmong(idColumn, rowsMatching(table, quoted(run)));
}

SqlCondition textindex::fileWords(const QString &idColumn, const TextTerms &terms)
{
    return words(idColumn, schema::wordTable(QStringLiteral("text")), terms);
}

} // namespace kelva
