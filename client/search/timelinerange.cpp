#include "search/timelinerange.h"

#include "search/dateinterval.h"

#include <utility>

namespace {

constexpr int marginYears = 5;
const QString dateFormat = QStringLiteral("yyyy-MM-dd");

} // namespace

TimelineRange TimelineRange::around(const QStringList &dates, const QDate &today)
{
    QDate oldest = QDate::fromString(dates.value(0), dateFormat);
    QDate newest = QDate::fromString(dates.value(1), dateFormat);
    if (!oldest.isValid() || !newest.isValid())
        oldest = newest = today;
    if (newest < oldest)
        std::swap(oldest, newest);
    // Four digits to a year, and a day less for the field that begins before the range does.
    const QDate earliest(1, 1, 2);
    const QDate latest(9999, 12, 31);
    const auto bounded = [&](const QDate &date, const QDate &margin) {
        return qBound(earliest, margin.isValid() ? margin : date, latest);
    };
    return {bounded(oldest, oldest.addYears(-marginYears)), bounded(newest, newest.addYears(marginYears))};
}

Span TimelineRange::span(const QDate &from, const QDate &to) const
{
    return {int(first.daysTo(from)), days() - int(to.daysTo(last))};
}

QDate restoredDate(const QString &date, const QString &interval, const QDate &today)
{
    const auto dynamic = DateInterval::parse(interval);
    if (dynamic && dynamic->isActive)
        return dynamic->date(today);
    return QDate::fromString(date, dateFormat);
}
