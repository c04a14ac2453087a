#pragma once

#include <QString>

#include <vector>

namespace kelva {

/// One side of a predicate: a field or a literal, perhaps made text by "::varchar".
struct ClauseOperand
{
    enum class Kind {
        Field,
        Text, ///< quoted; date macros are still in it
        Number,
        Boolean,
        Null,
    };

    Kind kind = Kind::Null;
    QString text; ///< key, quoted text, the number as written, or "true" and "false"
    bool asText = false;
    int position = 0; ///< in the clause, from 1
};

enum class Comparator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

/// A where clause, or a part of one. "not like", "not in" and "is not null" are negated predicates; NOT in
/// front of something is a node of its own.
struct ClauseNode
{
    enum class Kind {
        And,       ///< of two or more children
        Or,        ///< of two or more children
        Not,       ///< of one child
        Compare,   ///< left comparator right
        Like,      ///< left like pattern right
        IsNull,    ///< left
        In,        ///< left in list, which is never empty
        WordMatch, ///< field left holds the words of text right
    };

    Kind kind = Kind::Compare;
    int position = 0; ///< in the clause, from 1
    std::vector<ClauseNode> children;
    Comparator comparator = Comparator::Equal;
    bool negated = false;
    bool ignoreCase = false; ///< of Like
    ClauseOperand left;
    ClauseOperand right;
    std::vector<ClauseOperand> list;
};

} // namespace kelva
