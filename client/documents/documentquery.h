#pragma once

#include <QString>
#include <QStringList>

/// The pieces of the query that fills the document list, as the main window keeps them between refreshes.
struct DocumentQuery
{
    QString selectionOption; ///< empty, or "OPT:SELECTION;" and archive ids
    QString fullTextOption;  ///< empty, or "OPT:FULLTEXT" and the words
    QString searchFault;     ///< why a full-text search has found nothing, when it failed
    QStringList fragments;   ///< folder and status clauses
    QString searchWhere = QStringLiteral("1=1");
    QStringList extraFragments; ///< stays empty; its place in the order is part of the contract
    QString dateFilter;         ///< empty, or the clause of the timeline
    QString mineOption;         ///< empty, or "OPT:MINE"
    bool trash = false;
    bool openStatus = false; ///< the status list stands on the open documents
    int limit = 0;

    /// Nothing is searched for any more; folder, status and dates stay.
    void clearSearch();
};

/// The filter list of one refresh. The order is part of the contract with the service.
QStringList documentFilters(const DocumentQuery &query);

/// Clauses for the selected folder and status; "-1" restricts nothing, and so does an empty text.
QStringList selectionFragments(const QString &folderOid, const QString &status);

/// What an empty list says to the user: the failure of the service when there is one, otherwise everything
/// that restricts the list, a line each.
QString emptyListText(const DocumentQuery &query, const QString &failure);
