#pragma once

#include <QString>
#include <QStringList>

/// The pieces of the query that fills the document list, as the main window keeps them between refreshes.
struct DocumentQuery
{
    QString selectionOption; ///< empty, or "OPT:SELECTION;" and archive ids
    QString fullTextOption;  ///< empty, or "OPT:FULLTEXT" and the words
    QStringList fragments;   ///< folder and status clauses
    QString searchWhere = QStringLiteral("1=1");
    QStringList extraFragments;
    QString dateFilter; ///< empty, or the clause of the timeline
    QString mineOption; ///< empty, or "OPT:MINE"
    bool trash = false;
    bool openStatus = false; ///< the status list stands on the open documents
    int limit = 0;
};

/// The filter list of one refresh. The order is part of the contract with the service.
QStringList documentFilters(const DocumentQuery &query);

/// Clauses for the selected folder and status; "-1" restricts nothing, and so does an empty text.
QStringList selectionFragments(const QString &folderOid, const QString &status);
