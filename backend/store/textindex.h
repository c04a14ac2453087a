#pragma once

#include "store/sql.h"
#include "store/textmatch.h"

namespace kelva::textindex {

/// Ids of the rows whose text in a full-text table of words holds all of the terms, as a SELECT.
SqlCondition rowsWithWords(const QString &table, const TextTerms &terms);

/// Conditions on the column of a row's id: its text holds all of the terms, or a run of three or more
/// characters in any case.
SqlCondition words(const QString &idColumn, const QString &table, const TextTerms &terms);
SqlCondition contains(const QString &idColumn, const QString &table, const QString &run);

/// The same for the column of a document's id and the text of its file.
SqlCondition fileWords(const QString &idColumn, const TextTerms &terms);

} // namespace kelva::textindex
