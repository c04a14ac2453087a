#pragma once

#include "clause/clausesql.h"
#include "clause/clausetree.h"

#include <optional>

namespace kelva {

/// Writes a tree as SQL for SQLite. NOT is moved inwards to the predicates, so of a predicate, plain or
/// negated, it matters only for which records it is true; that a comparison with NULL is neither true nor
/// false comes out by itself.
class ClauseWriter
{
public:
    ClauseWriter(const ClauseFields &fields, const QDate &today);

    Result<SqlCondition> write(const ClauseNode &root);

private:
    enum class Type { Null, Untyped, Text, Number, Date, Timestamp, Boolean };

    /// An operand with its field looked up and its macros replaced.
    struct Side
    {
        ClauseOperand operand;
        const ClauseField *field = nullptr;
        Type type = Type::Null;
    };

    std::optional<SqlPart> writeNode(const ClauseNode &node, bool negated);
    std::optional<SqlPart> writeJoin(const ClauseNode &node, bool negated);
    bool collect(const ClauseNode &node, bool negated, bool conjunction, std::vector<SqlPart> *parts);
    std::optional<SqlPart> writeCompare(const ClauseNode &node, bool negated);
    std::optional<SqlPart> writeComparison(const Side &left, const Side &right, Comparator comparator);
    std::optional<SqlPart> writeWholeNumber(const Side &field, const Side &number, Comparator comparator);
    std::optional<SqlPart> writeLike(const ClauseNode &node, bool negated);
    std::optional<SqlPart> writeIsNull(const ClauseNode &node, bool negated);
    std::optional<SqlPart> writeIn(const ClauseNode &node, bool negated);
    std::optional<SqlPart> writeList(const Side &left, const std::vector<Side> &list, bool negated);
    std::optional<SqlPart> writeWordMatch(const ClauseNode &node, bool negated);
    SqlPart writePattern(const Side &left, const QString &pattern, bool ignoreCase, bool negated) const;

    std::optional<Side> resolve(const ClauseOperand &operand);
    std::optional<Type> commonType(const Side &left, const Side &right);
    /// The operand as a value of that type; only for literals, and never NULL.
    std::optional<QVariant> literal(const Side &side, Type type);
    static QString column(const Side &side, Type type);
    static QString nameOf(const Side &side);
    std::nullopt_t refuse(int position, const QString &reason);

    QHash<QString, ClauseField> m_fields;
    QString m_rowIdColumn;
    QDate m_today;
    Error m_error;
};

} // namespace kelva
