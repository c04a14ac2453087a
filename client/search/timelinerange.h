#pragma once

#include "search/spanmovement.h"

#include <QDate>
#include <QStringList>

/// The days that the time line offers: five years more on both sides than there are documents, so that a span
/// may reach into the future. The slider counts days from the first; its upper end stands for the last.
struct TimelineRange
{
    QDate first;
    QDate last;

    /// dates: oldest and newest document, "yyyy-MM-dd"; today stands for both unless both are valid.
    static TimelineRange around(const QStringList &dates, const QDate &today);

    int days() const { return int(first.daysTo(last)); }
    /// Last day of the from field; the to field reaches one further.
    QDate lastFrom() const { return last.addDays(-1); }
    QDate from(int lower) const { return first.addDays(lower); }
    QDate to(int upper) const { return lastFrom().addDays(upper - days() + 1); }
    Span span(const QDate &from, const QDate &to) const;
};

/// Date of a field at the next start: what a dynamic interval gives today, or else the stored date; invalid
/// when there is neither.
QDate restoredDate(const QString &date, const QString &interval, const QDate &today);
