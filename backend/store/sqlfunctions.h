#pragma once

struct sqlite3;

namespace kelva {

/// Makes the functions known that translated clauses call. Once for each connection, right after it is
/// opened.
///
/// - kelva_like(pattern, text), kelva_ilike(pattern, text): the second whatever the case
/// - kelva_words(query, text): all words of a WordQuery occur in the text
/// - kelva_number_text(number): the number as numberText() writes it
///
/// All of them give NULL when an argument is NULL, keep no state between calls and throw nothing.
void registerSqlFunctions(sqlite3 *database);

} // namespace kelva
