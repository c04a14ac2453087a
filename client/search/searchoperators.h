#pragma once

#include "documents/fieldkind.h"

#include <QString>
#include <QStringList>

/// The comparisons of the extended search. Which of them a field offers depends on what edits its values.
namespace searchoperators {

enum class List { All, Choice, Text, Flag, Folder };

/// Rows of operator and display text, joined by recordformat::fieldSeparator. The matching operators are
/// "ilike" online and "like" offline.
QStringList rows(List list, bool offline);
/// Operator of a display text; searchtext::notAssigned() when there is none.
QString operatorOf(const QString &displayText, bool offline);

/// What a field of this kind offers; Plain for one that nothing edits.
List listFor(FieldKind kind);
/// Whether several values can be chosen for the field.
bool allowsSeveralValues(FieldKind kind);

} // namespace searchoperators
