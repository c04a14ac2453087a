#pragma once

#include <QChar>
#include <QList>
#include <QString>

/// A row of the extended search, as it stands in the table of criteria.
struct SearchRow
{
    enum class Value { Other, CheckBox, Number };

    /// Key of a field that is not known.
    static constexpr char unknownField[] = "Unknown";

    QString fieldText;
    QString field; ///< key of fieldText
    QString op;    ///< display text; a further value of the row above begins with searchtext::orPrefix()
    QString valueText;
    QString storedValue; ///< goes before the text when there is one
    Value kind = Value::Other;
};

/// What an extended search sends to the service.
struct ExtendedSearch
{
    QString clause;   ///< " 1 = 1 " when the rows select nothing
    QString fullText; ///< the words of the full-text rows, each followed by a blank
};

/// Values go in as they are; the service takes the clause apart safely.
ExtendedSearch extendedSearch(const QList<SearchRow> &rows, bool offline, QChar decimalPoint);

/// Words that must all occur, as "+alpha +beta "; a text that is a query already stays as it is.
QString checkFullText(const QString &text);
