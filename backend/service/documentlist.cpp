#include "service/documentlist.h"

#include "server/recordformat.h"
#include "service/documentcolumns.h"
#include "service/documentfilter.h"
#include "service/retention.h"
#include "service/session.h"

#include <algorithm>
#include <cmath>

namespace kelva {
namespace {

/// Finds the newest records that a condition holds for. Records in the order of their ids from the newest on
/// meet a common condition soon; a rare one is better served by its index, whose hits then have to be sorted.
/// Which it is nobody knows beforehand, so both are tried a little, then further.
class NewestFinder
{
public:
    NewestFinder(Database &database, const SqlCondition &condition, bool everything)
        : m_database(database),
          m_condition(condition),
          m_everything(everything)
    {
    }

    QVector<qint64> find(qint64 limit)
    {
        constexpr qint64 probeFactor = 2;
        constexpr qint64 walkFactor = 16;
        if (m_everything)
            return walk(0, limit);
        // A full-text condition gathers its hits each time; once is enough.
        if (m_condition.sql.contains(QLatin1String(" MATCH ")))
            return sorted(limit);
        if (complete(limit * probeFactor, limit))
            return m_hits;
        const qint64 newest =
            m_database.value(QStringLiteral("SELECT max(id) FROM classification")).toLongLong();
        const QVector<qint64> recent = walk(newest - limit * walkFactor, limit);
        if (recent.size() == limit)
            return recent;
        const auto cap =
            static_cast<qint64>(std::sqrt(static_cast<double>(limit) * static_cast<double>(newest)));
        if (complete(std::max(cap, limit * probeFactor), limit))
            return m_hits;
        return walk(0, limit);
    }

private:
    QVector<qint64> walk(qint64 above, qint64 limit)
    {
        return m_database.numbers(
            QStringLiteral("SELECT c.id FROM classification c NOT INDEXED WHERE c.id > %1 AND %2"
                           " ORDER BY c.id DESC LIMIT %3")
                .arg(above)
                .arg(m_condition.sql)
                .arg(limit),
            m_condition.values);
    }

    QVector<qint64> sorted(qint64 limit)
    {
        return m_database.numbers(QStringLiteral("SELECT c.id FROM classification c WHERE %1"
                                                 " ORDER BY c.id DESC LIMIT %2")
                                      .arg(m_condition.sql)
                                      .arg(limit),
                                  m_condition.values);
    }

    /// All hits, if there are fewer than cap.
    bool complete(qint64 cap, qint64 limit)
    {
        m_hits = m_database.numbers(QStringLiteral("SELECT c.id FROM classification c WHERE %1 LIMIT %2")
                                        .arg(m_condition.sql)
                                        .arg(cap),
                                    m_condition.values);
        if (m_hits.size() >= cap)
            return false;
        std::sort(m_hits.begin(), m_hits.end(), std::greater<>());
        if (m_hits.size() > limit)
            m_hits.resize(static_cast<int>(limit));
        return true;
    }

    Database &m_database;
    const SqlCondition &m_condition;
    bool m_everything;
    QVector<qint64> m_hits;
};

struct RowSource
{
    SqlCondition condition;
    bool checkVisible = false; ///< rows may lie in folders that the session does not see
    bool withRetention = false;
};

QStringList readRows(Session &session, const DocumentColumns &columns, const RowSource &source)
{
    Database &database = session.database();
    const Access &access = session.access();
    const QString visible =
        source.checkVisible ? access.visibleCondition(QStringLiteral("c.folder")) : QStringLiteral("1");
    QString sql = QStringLiteral("SELECT %1, c.notes > 0, %2").arg(columns.rowExpression(), visible);
    if (source.withRetention)
        sql += QStringLiteral(", c.docart, c.cdate");
    sql += QStringLiteral(" FROM classification c WHERE %1 ORDER BY c.id DESC").arg(source.condition.sql);
    const Retention retention = source.withRetention ? Retention::load(database) : Retention();
    const bool mayClassify = access.has(QStringLiteral("kelvaCLASSIFY"));
    QStringList rows;
    for (Query row = database.query(sql, QVariantList{columns.rowFormat()} + source.condition.values);
         row.next();) {
        QString text = row.text(0);
        text += recordformat::fieldSeparator;
        if (mayClassify && row.flag(2))
            text += QLatin1Char('W');
        if (row.flag(1))
            text += QLatin1Char('N');
        if (source.withRetention &&
            retention.isInForce(row.number(3), QDate::fromString(row.text(4), Qt::ISODate), session.today()))
            text += QLatin1Char('F');
        rows << text;
    }
    return rows;
}

} // namespace

Result<QStringList> listDocuments(Session &session, const QStringList &filters)
{
    const Result<DocumentFilter> filter = DocumentFilter::parse(filters);
    if (!filter)
        return filter.error();
    Database &database = session.database();
    Transaction reading(database, Transaction::Kind::Read);
    const DocumentColumns columns = DocumentColumns::load(database);
    const Result<SqlCondition> condition = conditionFor(session, filter.value(), columns);
    if (!condition)
        return condition.error();

    RowSource source;
    source.condition = condition.value();
    source.withRetention = filter.value().trash || filter.value().ignoreRights;
    source.checkVisible = filter.value().ignoreRights && !session.access().seesEverything();
    if (filter.value().limit >= 0) {
        const bool everything = condition.value().sql == QLatin1String("c.trashed = 0");
        const QVector<qint64> ids =
            NewestFinder(database, condition.value(), everything).find(filter.value().limit);
        source.condition = {QStringLiteral("c.id IN (SELECT value FROM json_each(?))"), {jsonList(ids)}};
    }
    QStringList rows{columns.titles().join(recordformat::fieldSeparator) + recordformat::fieldSeparator +
                     QStringLiteral("Rights")};
    rows += readRows(session, columns, source);
    if (const Result<void> done = reading.commit(); !done)
        return done.error();
    return rows;
}

} // namespace kelva
