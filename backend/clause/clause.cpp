#include "clause/clause.h"

#include "clause/clauseparser.h"
#include "clause/clausewriter.h"

namespace kelva {

Result<SqlCondition> translateClause(const QString &clause, const ClauseFields &fields, const QDate &today)
{
    const Result<ClauseNode> root = parseClause(clause);
    if (!root)
        return root.error();
    return ClauseWriter(fields, today).write(root.value());
}

} // namespace kelva
