#pragma once

#include <QString>

/// Translated texts that search, filters and cell editors recognise each other by. They must be the same
/// everywhere, so they are taken from here only.
namespace searchtext {

/// Data of the search combo's entry for the extended search.
constexpr char extendedSearchKey[] = "ExtendedSearch";

QString extendedSearch();
/// Title and field key alike of the pseudo field for words of files.
QString fullText();
/// Stands for a value that no list knows.
QString notAssigned();
/// The fixed operator of a full-text row.
QString searchFor();
/// Begins the operator of a further value, with its blank.
QString orPrefix();

/// Takes the prefix of a further value off an operator; false when there is none. Stored searches come from
/// users of other languages.
bool takeOrPrefix(QString *op);

} // namespace searchtext
