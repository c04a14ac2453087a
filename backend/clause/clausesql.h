#pragma once

#include "clause/clause.h"

#include <optional>
#include <vector>

namespace kelva {

/// A condition with what is needed to join it to others.
struct SqlPart
{
    SqlCondition condition;
    std::optional<bool> constant; ///< true for every record, or for none
    int stack = 0;                ///< how much the database's parser must keep in mind for it
    QString memberOf;             ///< the column, when all of the condition is that it has one of the members
    QVariantList members;
    bool excluded = false; ///< it has none of the members
};

SqlPart constantPart(bool value);
SqlPart sqlPart(const QString &sql, const QVariantList &values = {});

/// A column has one of the values, or is not NULL and has none of them. The values are of one type.
SqlPart memberPart(const QString &column, const QVariantList &values, bool excluded);

/// Joined by AND or by OR, in the form that is cheapest for the database.
SqlPart joinParts(std::vector<SqlPart> parts, bool conjunction);

} // namespace kelva
