#pragma once

#include <QString>
#include <QStringList>

class QAbstractItemDelegate;

/// The comparisons of the extended search. Which of them a field offers depends on what edits its values.
namespace searchoperators {

enum class List { All, Choice, Text, Flag, Folder };

/// Rows of operator and display text, joined by recordformat::fieldSeparator. The matching operators are
/// "ilike" online and "like" offline.
QStringList rows(List list, bool offline);
/// Operator of a display text; searchtext::notAssigned() when there is none.
QString operatorOf(const QString &displayText, bool offline);

/// What a field with this value delegate offers; null for a field without one.
List listFor(const QAbstractItemDelegate *delegate);
/// Whether several values can be chosen for the field.
bool allowsSeveralValues(const QAbstractItemDelegate *delegate);

} // namespace searchoperators
