#pragma once

#include "search/searchclause.h"

#include <QVector>

/// Rows of the extended search with the clause that they become and what it finds among the documents that
/// fillArchive() of the test against an archive makes.
struct ClauseCase
{
    const char *name;
    QList<SearchRow> rows;
    QString clause;
    QString found; ///< numbers of the documents, "1 2 5"; "refused" when the service says no
    QString fullText;
    bool offline = false;
    QChar decimalPoint = ',';
};

const QVector<ClauseCase> &clauseCases();
