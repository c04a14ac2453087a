#include "service/retention.h"

#include "store/database.h"

namespace kelva {

Retention Retention::load(Database &database)
{
    Retention retention;
    for (Query row = database.query(QStringLiteral("SELECT id, years, months, days FROM document_type"
                                                   " WHERE years > 0 OR months > 0 OR days > 0"));
         row.next();)
        retention.m_byType.insert(row.number(0),
                                  {static_cast<int>(row.number(1)), static_cast<int>(row.number(2)),
                                   static_cast<int>(row.number(3))});
    return retention;
}

bool Retention::isInForce(qint64 type, const QString &documentDate, const QDate &today) const
{
    const auto span = m_byType.constFind(type);
    if (span == m_byType.cend())
        return false;
    const QDate date = QDate::fromString(documentDate, Qt::ISODate);
    return date.isValid() && date.addYears(span->years).addMonths(span->months).addDays(span->days) > today;
}

} // namespace kelva
