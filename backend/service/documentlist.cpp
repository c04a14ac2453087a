#include "service/documentlist.h"

#include "contract/recordformat.h"
#include "service/documentcolumns.h"
#include "service/documentfilter.h"
#include "service/operation.h"
#include "service/retention.h"
#include "service/rights.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <optional>

namespace kelva {
namespace {

/// Finds the newest records that a condition holds for. Going back from the newest record meets a common
/// condition soon; a rare one is better served by its index, whose hits then have to be sorted; and a user
/// who sees little by his folders. Which it is nobody knows beforehand, so all are tried in turn, a little at
/// first, then with more steps each.
class NewestFinder
{
public:
    NewestFinder(Session &session, const DocumentCondition &condition, qint64 limit)
        : m_database(session.database()),
          m_condition(condition),
          m_limit(limit)
    {
        if (!condition.needsRights)
            return;
        m_byFolder = QStringLiteral(" AND ") + session.access().visibleCondition(QStringLiteral("c.folder"));
        m_onlyChecked = QStringLiteral(" AND ") +
                        session.access().visibleCondition(sql::opaque(QStringLiteral("c.folder")));
    }

    QVector<qint64> find()
    {
        if (m_condition.asksForEverything && !m_condition.needsRights)
            return walk(noBound).value_or(QVector<qint64>());
        // A full-text table gathers all its hits before the first one can be had, so it should drive the
        // query.
        if (m_condition.wanted.usesTextIndex) {
            constexpr qint64 rowIdSteps = 2'000'000;
            if (const auto hits = select(sql::byRowId(), m_onlyChecked, rowIdSteps))
                return newestOf(hits);
            return newestOf(select(QString(), m_onlyChecked, noBound));
        }
        // A thousand records found by index cost next to nothing, ten thousand passed on the way back a
        // little more.
        constexpr qint64 growth = 6;
        constexpr qint64 stepsPerHit = 20;
        qint64 indexSteps = 10'000;
        qint64 walkSteps = 150'000;
        // An index that begins with what is asked for has its hits in the order of the list.
        if (!m_condition.asksForEverything)
            if (const auto hits = inOrder(indexSteps + stepsPerHit * qMin(m_limit, indexSteps)))
                return *hits;
        for (;; indexSteps *= growth, walkSteps *= 2) {
            if (!m_condition.asksForEverything)
                if (const auto hits = select(QString(), m_onlyChecked, indexSteps))
                    return newestOf(hits);
            if (m_condition.needsRights)
                if (const auto hits = select(QString(), m_byFolder, indexSteps))
                    return newestOf(hits);
            if (const auto hits = walk(walkSteps))
                return *hits;
        }
    }

private:
    static constexpr qint64 noBound = std::numeric_limits<qint64>::max();

    std::optional<QVector<qint64>> walk(qint64 steps)
    {
        return ordered(steps, m_condition.inTrash ? sql::byIndex(QStringLiteral("classification_trash"))
                                                  : sql::byRowId());
    }

    std::optional<QVector<qint64>> inOrder(qint64 steps)
    {
        constexpr qint64 withoutSorting = 1'000;
        return ordered(steps, QString(), withoutSorting);
    }

    std::optional<QVector<qint64>> ordered(qint64 steps, const QString &way, qint64 stepsToFirst = 0)
    {
        return m_database.numbersWithin(
            steps,
            QStringLiteral("SELECT c.id FROM classification c %1 WHERE %2%3 ORDER BY c.id DESC LIMIT %4")
                .arg(way, m_condition.wanted.sql, m_onlyChecked)
                .arg(m_limit),
            m_condition.wanted.values, stepsToFirst);
    }

    std::optional<QVector<qint64>> select(const QString &way, const QString &rights, qint64 steps)
    {
        return m_database.numbersWithin(steps,
                                        QStringLiteral("SELECT c.id FROM classification c %1 WHERE %2%3")
                                            .arg(way, m_condition.wanted.sql, rights),
                                        m_condition.wanted.values);
    }

    QVector<qint64> newestOf(std::optional<QVector<qint64>> hits) const
    {
        if (!hits)
            return {};
        std::sort(hits->begin(), hits->end(), std::greater<>());
        if (hits->size() > m_limit)
            hits->resize(static_cast<int>(m_limit));
        return *hits;
    }

    Database &m_database;
    const DocumentCondition &m_condition;
    QString m_byFolder;
    QString m_onlyChecked;
    qint64 m_limit;
};

struct RowSource
{
    SqlCondition condition;
    bool allOpened = false; ///< every row lies in a folder that is open to the user's roles
    bool withRetention = false;
};

QStringList readRows(Session &session, const DocumentColumns &columns, const RowSource &source)
{
    Database &database = session.database();
    const Access &access = session.access();
    const QString writable = source.allOpened && access.has(rights::classify)
                                 ? sql::always
                                 : access.writableCondition(QStringLiteral("c.folder"));
    const QString select =
        QStringLiteral("SELECT %1, c.notes > 0, %2, c.id, c.docart, c.cdate FROM classification c WHERE %3"
                       " ORDER BY c.id DESC")
            .arg(columns.rowColumns().join(QStringLiteral(", ")), writable, source.condition.sql);
    const int behind = columns.rowColumns().size();
    const Retention retention = source.withRetention ? Retention::load(database) : Retention();
    const QDate today = session.today();
    QStringList rows;
    QVector<qint64> ids;
    const auto take = [&](const Row &row) {
        QString text = columns.rowText(row);
        text += recordformat::fieldSeparator;
        if (row.flag(behind + 1))
            text += QLatin1Char('W');
        if (row.flag(behind))
            text += QLatin1Char('N');
        if (source.withRetention && retention.isInForce(row.number(behind + 3), row.text(behind + 4), today))
            text += QLatin1Char('F');
        rows << text;
        ids << row.number(behind + 2);
    };
    if (database.forEachRow(select, source.condition.values, take))
        session.recordLayouts().noteList(ids, columns.attributeIds());
    return rows;
}

} // namespace

Result<QStringList> listDocuments(Session &session, const QStringList &filters)
{
    const Result<DocumentFilter> filter = DocumentFilter::parse(filters);
    if (!filter)
        return filter.error();
    return read(session, "listDocuments", [&](Database &database) -> Result<QStringList> {
        const DocumentColumns columns = DocumentColumns::load(database);
        const Result<DocumentCondition> condition = conditionFor(session, filter.value(), columns);
        if (!condition)
            return condition.error();

        const TimeLimit patience(database, longestSearchMs(database));
        RowSource source;
        source.withRetention = filter.value().trash || filter.value().ignoreRights;
        source.allOpened = condition.value().needsRights;
        if (filter.value().limit >= 0) {
            const QVector<qint64> ids = NewestFinder(session, condition.value(), filter.value().limit).find();
            source.condition = sql::inList(QStringLiteral("c.id"), ids);
        } else {
            source.condition = condition.value().wanted;
            if (condition.value().needsRights)
                source.condition.sql +=
                    QStringLiteral(" AND ") + session.access().visibleCondition(QStringLiteral("c.folder"));
        }
        QStringList rows{columns.titles().join(recordformat::fieldSeparator) + recordformat::fieldSeparator +
                         QStringLiteral("Rights")};
        rows += readRows(session, columns, source);
        return rows;
    });
}

} // namespace kelva
