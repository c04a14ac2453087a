#pragma once

#include "store/result.h"

#include <QDate>
#include <QHash>

namespace kelva {

class Database;
class Query;

/// How long documents of a type must be kept.
struct RetentionSpan
{
    int years = 0;
    int months = 0;
    int days = 0;

    bool isNone() const { return years == 0 && months == 0 && days == 0; }
    QDate end(const QDate &from) const { return from.addYears(years).addMonths(months).addDays(days); }
    /// For at least one day to start from: a month is shorter than 30 days in February alone.
    bool isEverShorterThan(const RetentionSpan &other) const;
    /// "years;months;days"
    QString text() const { return QStringLiteral("%1;%2;%3").arg(years).arg(months).arg(days); }
    /// What is left out counts as none; BadInput for anything but three whole numbers.
    static Result<RetentionSpan> parse(const QString &text);
    /// From three columns of a row, which begin at this one.
    static RetentionSpan of(const Query &row, int column);
};

/// How long records must be kept, by their document type, counted from their document date.
class Retention
{
public:
    static Retention load(Database &database);

    bool hasSpan(qint64 type) const { return m_byType.contains(type); }
    /// The first day on which the record may be deleted; invalid without a period or a date.
    QDate end(qint64 type, const QString &documentDate) const;
    /// The record may not be deleted yet. documentDate is "yyyy-MM-dd" or empty.
    bool isInForce(qint64 type, const QString &documentDate, const QDate &today) const;

private:
    QHash<qint64, RetentionSpan> m_byType;
};

/// The last document date, one day ahead for other time zones, that a period may be counted from: a date of
/// the far future would keep a document for ever.
inline QDate latestRetentionStart(const QDate &today)
{
    return today.addDays(1);
}

} // namespace kelva
