#pragma once

#include "clause/clausetree.h"
#include "store/result.h"

namespace kelva {

/// Bounds of a clause. They keep the work for a hostile text, and for the database behind it, small.
namespace clauselimits {

constexpr int characters = 1000000;
constexpr int predicates = 5000;
constexpr int nesting = 20; ///< of parentheses

} // namespace clauselimits

/// The tree of a clause; the dialect is described in docs/where-clause.md. Field names are not looked up
/// here.
Result<ClauseNode> parseClause(const QString &clause);

/// A refusal in the one form that all of them have.
Error clauseError(int position, const QString &reason);

} // namespace kelva
