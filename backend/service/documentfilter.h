#pragma once

#include "clause/clause.h"
#include "store/result.h"

#include <QStringList>
#include <QVector>

namespace kelva {

class Session;
class DocumentColumns;

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
/// session may see.
Result<SqlCondition> conditionFor(Session &session, const DocumentFilter &filter,
                                  const DocumentColumns &columns);

/// What a user typed, as an expression for the full-text tables: all words, "*" at the end of one for any
/// ending, and quoted phrases. Empty when there is nothing to look for.
QString fullTextExpression(const QString &text);

/// A list of numbers as one bound value, for "IN (SELECT value FROM json_each(?))".
QString jsonList(const QVector<qint64> &numbers);

} // namespace kelva
