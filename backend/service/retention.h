#pragma once

#include <QDate>
#include <QHash>

namespace kelva {

class Database;

/// How long records of a document type must be kept, counted from their document date.
class Retention
{
public:
    static Retention load(Database &database);

    /// The record may not be deleted yet. documentDate is "yyyy-MM-dd" or empty.
    bool isInForce(qint64 type, const QString &documentDate, const QDate &today) const;

private:
    struct Span
    {
        int years = 0;
        int months = 0;
        int days = 0;
    };
    QHash<qint64, Span> m_byType;
};

} // namespace kelva
