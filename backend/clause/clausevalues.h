#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace kelva {

/// The number that a text stands for: qlonglong where it is a whole number and fits, else double. Blanks
/// around it, a sign and an exponent are allowed. Nothing when it is no number or too large for a double.
std::optional<QVariant> numberValue(const QString &text);

/// Where a number stands among the whole numbers of the database.
struct WholeNumber
{
    qlonglong floor = 0; ///< the number itself when exact
    bool exact = false;
    int outside = 0; ///< negative or positive when it is below or above all of them
};
WholeNumber wholeNumber(const QVariant &number);

/// A number as written in a clause in the form that a number column has as text: "007.50" is "7.5".
QString plainNumber(const QString &number);

/// "2014-8-1" as "2014-08-01"; a text that is no full date as it is.
QString dateValue(const QString &text);

/// The same for a timestamp: a date is its midnight, a blank between date and time becomes "T", missing
/// seconds are added.
QString timestampValue(const QString &text);

std::optional<bool> booleanValue(const QString &text);

/// The least text in the order of the database that is greater than all texts with this prefix. Empty when
/// there is none.
QString endOfPrefix(const QString &prefix);

/// Below, at or above zero as the database would order two bound values of one type.
int compareValues(const QVariant &left, const QVariant &right);

} // namespace kelva
