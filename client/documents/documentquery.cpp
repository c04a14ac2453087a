#include "documents/documentquery.h"

#include "documents/documentcolumns.h"
#include "server/folderoid.h"

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
