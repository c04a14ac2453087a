#include "documents/documentquery.h"

#include "contract/folderoid.h"
#include "documents/documentcolumns.h"

#include <QCoreApplication>

namespace {

const QString noSearch = QStringLiteral("1=1");

QString translated(const char *text)
{
    return QCoreApplication::translate("DocumentQuery", text);
}

} // namespace

void DocumentQuery::clearSearch()
{
    searchWhere = noSearch;
    selectionOption.clear();
    fullTextOption.clear();
    searchFault.clear();
}

QStringList documentFilters(const DocumentQuery &query)
{
    QStringList filters;
    const auto addUnlessEmpty = [&filters](const QString &filter) {
        if (!filter.isEmpty())
            filters << filter;
    };
    addUnlessEmpty(query.selectionOption);
    addUnlessEmpty(query.fullTextOption);
    filters << query.fragments << query.searchWhere << query.extraFragments;
    addUnlessEmpty(query.dateFilter);
    addUnlessEmpty(query.mineOption);
    if (query.trash)
        filters << QStringLiteral("OPT:TRASH");
    if (query.openStatus)
        filters << QStringLiteral("OPT:DEFDATE;2");
    filters << QStringLiteral("OPT:LIMIT;%1").arg(query.limit);
    return filters;
}

QStringList selectionFragments(const QString &folderOid, const QString &status)
{
    QStringList fragments;
    const QString folder = folderoid::subtreeClause(folderOid);
    if (!folder.isEmpty())
        fragments << folder;
    if (!status.isEmpty() && status != QLatin1String(documentstatus::all))
        fragments << QStringLiteral("(status = %1)").arg(status);
    return fragments;
}

QString emptyListText(const DocumentQuery &query, const QString &failure)
{
    if (!failure.isEmpty())
        return translated("The documents could not be listed.") + '\n' + failure;
    if (!query.searchFault.isEmpty())
        return translated("The search failed.") + '\n' + query.searchFault;
    QStringList lines;
    if (query.searchWhere != noSearch || !query.selectionOption.isEmpty() || !query.fullTextOption.isEmpty())
        lines << translated("A search or a filter is active.");
    for (const QString &fragment : query.fragments)
        lines << (fragment.startsWith("(status") ? translated("Only one status is shown.")
                                                 : translated("Only one folder is shown."));
    if (!query.dateFilter.isEmpty())
        lines << translated("Only a span of dates is shown.");
    if (!query.mineOption.isEmpty())
        lines << translated("The personal view is on.");
    if (lines.isEmpty())
        return query.trash ? translated("The trash is empty.") : translated("There are no documents yet.");
    lines.prepend(query.trash ? translated("No documents were found in the trash.")
                              : translated("No documents were found."));
    return lines.join('\n');
}
