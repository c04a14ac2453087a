#include "clause/clausesql.h"

#include <algorithm>

namespace kelva {

namespace {

constexpr int shortList = 8;            ///< values; more are bound as one
constexpr size_t longestChain = 50;     ///< the database refuses expressions deeper than 1000
constexpr size_t mostAlternatives = 10; ///< that the database may look up one by one

/// "a = 1 OR a = 2" becomes "a IN (1, 2)", and "a <> 1 AND a <> 2" becomes "a NOT IN (1, 2)".
std::vector<SqlPart> withMergedMembers(std::vector<SqlPart> parts, bool conjunction)
{
    std::vector<SqlPart> merged;
    QHash<QString, size_t> places;
    for (SqlPart &part : parts) {
        if (!part.memberOf.isEmpty() && part.excluded == conjunction) {
            const auto place = places.constFind(part.memberOf);
            if (place != places.constEnd()) {
                merged[*place].members += part.members;
                continue;
            }
            places.insert(part.memberOf, merged.size());
        }
        merged.push_back(std::move(part));
    }
    for (const size_t place : qAsConst(places)) {
        const SqlPart part = std::move(merged[place]);
        merged[place] = memberPart(part.memberOf, part.members, part.excluded);
    }
    return merged;
}

SqlPart chain(const std::vector<SqlPart> &parts, bool conjunction)
{
    SqlPart whole;
    for (const SqlPart &part : parts) {
        if (!whole.condition.sql.isEmpty())
            whole.condition.sql += conjunction ? QLatin1String(" AND ") : QLatin1String(" OR ");
        whole.condition.sql += QLatin1Char('(') + part.condition.sql + QLatin1Char(')');
        whole.condition.values += part.condition.values;
        whole.condition.usesTextIndex = whole.condition.usesTextIndex || part.condition.usesTextIndex;
    }
    whole.stack = std::max(parts[0].stack + 1, parts[1].stack + 3);
    return whole;
}

/// Chains of chains where there are many. What nests deepest comes first, where an opening parenthesis costs
/// the database's parser least; its stack holds a hundred entries.
SqlPart chains(std::vector<SqlPart> parts, bool conjunction)
{
    std::stable_sort(parts.begin(), parts.end(),
                     [](const SqlPart &a, const SqlPart &b) { return a.stack > b.stack; });
    if (parts.size() <= longestChain)
        return parts.size() == 1 ? parts.front() : chain(parts, conjunction);
    std::vector<SqlPart> groups;
    for (size_t from = 0; from < parts.size(); from += longestChain) {
        const auto end = parts.begin() + std::min(from + longestChain, parts.size());
        groups.push_back(chains({parts.begin() + from, end}, conjunction));
    }
    return chains(std::move(groups), conjunction);
}

} // namespace

SqlPart constantPart(bool value)
{
    SqlPart part = sqlPart(value ? sql::always : sql::never);
    part.constant = value;
    return part;
}

SqlPart sqlPart(const QString &sql, const QVariantList &values)
{
    SqlPart part;
    part.condition = {sql, values};
    return part;
}

SqlPart memberPart(const QString &column, const QVariantList &values, bool excluded)
{
    const bool fractions = std::any_of(
        values.begin(), values.end(), [](const QVariant &value) { return value.type() == QVariant::Double; });
    SqlPart part;
    if (values.size() == 1)
        part = sqlPart(column + (excluded ? QLatin1String(" <> ?") : QLatin1String(" = ?")), values);
    else if (values.size() <= shortList || fractions)
        part = sqlPart(column + (excluded ? QLatin1String(" NOT IN (") : QLatin1String(" IN (")) +
                           QStringLiteral("?, ").repeated(values.size() - 1) + QLatin1String("?)"),
                       values);
    else
        part.condition = sql::inList(column, values, excluded);
    part.memberOf = column;
    part.members = values;
    part.excluded = excluded;
    return part;
}

SqlPart joinParts(std::vector<SqlPart> parts, bool conjunction)
{
    parts = withMergedMembers(std::move(parts), conjunction);
    const bool opaque = !conjunction && parts.size() > mostAlternatives;
    SqlPart whole = chains(std::move(parts), conjunction);
    // For each alternative that it looks up by itself, the database repeats all other conditions.
    if (opaque) {
        whole.condition.sql = sql::opaque(QLatin1Char('(') + whole.condition.sql + QLatin1Char(')'));
        whole.stack += 2;
    }
    return whole;
}

} // namespace kelva
