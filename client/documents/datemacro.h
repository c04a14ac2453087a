#pragma once

#include <QDate>
#include <QString>

/// A date in a stored search that moves along with the calendar: so many days from today, months from this
/// one or years from this one. The words belong to the stored text and stay untranslated.
struct DateMacro
{
    enum class Kind { None, Day, Month, Year };

    Kind kind = Kind::None;
    int offset = 0;

    /// Reads "[HEUTE+7]"; anything else gives no kind, an unreadable number the offset 0. A date behind it,
    /// as text() writes one, does not matter.
    static DateMacro parse(const QString &text);
    /// Name of a kind in lists, empty for none; kindOf() is the reverse.
    static QString nameOf(Kind kind);
    static Kind kindOf(const QString &name);

    /// The date it stands for; invalid without a kind.
    QDate date(const QDate &today) const;
    /// "[HEUTE+7]:2014-08-18"; empty without a kind.
    QString text(const QDate &today) const;
};
