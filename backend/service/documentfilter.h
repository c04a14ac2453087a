#pragma once

#include "clause/clause.h"
#include "store/result.h"
#include "store/textmatch.h"

#include <QStringList>
#include <QVector>

namespace kelva {

class Database;
class DocumentColumns;
class Session;

/// A filter list, taken apart.
struct DocumentFilter
{
    QStringList clauses;
    bool hasSelection = false;
    QVector<qint64> selection; ///< archive ids
    QString fullText;
    bool mine = false;
    bool trash = false;
    bool resubmissionDue = false;
    bool ignoreRights = false;
    qint64 limit = -1; ///< negative for none

    static Result<DocumentFilter> parse(const QStringList &filters);
};

/// The condition on the table of records, alias "c", that holds exactly for what the filter asks for and the
/// session may see. Both parts must hold; they are kept apart because either may be what a query is best
/// driven by.
struct DocumentCondition
{
    SqlCondition wanted;
    bool asksForEverything = false; ///< wanted is no more than one side of the trash
    bool inTrash = false;
    bool needsRights = false; ///< the session does not see every folder
};

Result<DocumentCondition> conditionFor(Session &session, const DocumentFilter &filter,
                                       const DocumentColumns &columns);

/// What a user typed, as terms for the full-text tables: all words, "*" at the end of one for any ending, and
/// quoted phrases. Empty when there is nothing to look for; BadInput for too many words.
Result<TextTerms> fullTextTerms(const QString &text);

/// How long a list or a count may take, in milliseconds: what a condition that has to look into every record
/// needs, and some more. Who writes a condition of many such parts must not block the program for minutes.
qint64 longestSearchMs(Database &database);

} // namespace kelva
