#include "service/retention.h"

#include "store/database.h"

namespace kelva {

bool RetentionSpan::isEverShorterThan(const RetentionSpan &other) const
{
    // The calendar repeats itself after 400 years.
    const QDate first(2000, 1, 1);
    for (QDate from = first; from < first.addYears(400); from = from.addDays(1))
        if (end(from) < other.end(from))
            return true;
    return false;
}

Result<RetentionSpan> RetentionSpan::parse(const QString &text)
{
    constexpr int most = 10000;
    RetentionSpan span;
    const QStringList parts = text.split(QLatin1Char(';'));
    int *const targets[] = {&span.years, &span.months, &span.days};
    for (int i = 0; i < parts.size(); ++i) {
        if (parts.at(i).trimmed().isEmpty())
            continue;
        bool isNumber = false;
        const int number = parts.at(i).toInt(&isNumber);
        if (!isNumber || number < 0 || number > most || i > 2)
            return Error{ErrorCode::BadInput,
                         QStringLiteral("\"%1\" is not a retention period.").arg(text.left(40))};
        *targets[i] = number;
    }
    return span;
}

RetentionSpan RetentionSpan::of(const Query &row, int column)
{
    const auto number = [&](int place) { return static_cast<int>(row.number(column + place)); };
    return {number(0), number(1), number(2)};
}

Retention Retention::load(Database &database)
{
    Retention retention;
    for (Query row = database.query(QStringLiteral("SELECT id, years, months, days FROM document_type"
                                                   " WHERE years > 0 OR months > 0 OR days > 0"));
         row.next();)
        retention.m_byType.insert(row.number(0), RetentionSpan::of(row, 1));
    return retention;
}

QDate Retention::end(qint64 type, const QString &documentDate) const
{
    const auto span = m_byType.constFind(type);
    const QDate date = QDate::fromString(documentDate, Qt::ISODate);
    return span == m_byType.cend() || !date.isValid() ? QDate() : span->end(date);
}

bool Retention::isInForce(qint64 type, const QString &documentDate, const QDate &today) const
{
    const QDate lastDay = end(type, documentDate);
    return lastDay.isValid() && lastDay > today;
}

} // namespace kelva
