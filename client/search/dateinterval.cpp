#include "search/dateinterval.h"

#include <QRegularExpression>
#include <QStringList>

std::optional<DateInterval> DateInterval::parse(const QString &text)
{
    static const QRegularExpression form("\\A([+-]);([0-9]{1,4});([0-9]{1,4});([0-9]{1,4});([01])\\z");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    DateInterval interval;
    interval.isBack = match.captured(1) == "-";
    interval.days = match.captured(2).toInt();
    interval.months = match.captured(3).toInt();
    interval.years = match.captured(4).toInt();
    interval.isActive = match.captured(5) == "1";
    return interval;
}

QString DateInterval::text() const
{
    return QString("%1;%2;%3;%4;%5")
        .arg(isBack ? "-" : "+")
        .arg(days)
        .arg(months)
        .arg(years)
        .arg(isActive ? "1" : "0");
}

QDate DateInterval::date(const QDate &today) const
{
    const int sign = isBack ? -1 : 1;
    return today.addDays(sign * days).addMonths(sign * months).addYears(sign * years);
}
