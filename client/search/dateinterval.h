#pragma once

#include <QDate>
#include <QString>

#include <optional>

/// A distance from today, for a date that moves along with the calendar. Stored as
/// "sign;days;months;years;active", such as "-;0;1;0;1"; sign is "+" or "-", active "1" or "0".
struct DateInterval
{
    static constexpr int maximum = 9999; ///< of each of the three values

    bool isBack = false;
    int days = 0;
    int months = 0;
    int years = 0;
    bool isActive = false;

    /// Nothing when the text is not exactly of this form or a value is out of 0 to maximum.
    static std::optional<DateInterval> parse(const QString &text);
    QString text() const;
    /// Days, then months, then years from today.
    QDate date(const QDate &today) const;
};
