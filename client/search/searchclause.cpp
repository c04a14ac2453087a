#include "search/searchclause.h"

#include "search/searchoperators.h"
#include "widgets/searchtexts.h"

namespace {

const QString andWord = QStringLiteral(" AND ");

class ClauseBuilder
{
public:
    ClauseBuilder(bool offline, QChar decimalPoint) : m_offline(offline), m_decimalPoint(decimalPoint) {}

    void add(const SearchRow &row)
    {
        QString op = row.op;
        // The letters decide; the blank behind them only goes with the prefix.
        if (op.startsWith("or") || op.startsWith("oder") || op.startsWith(searchtext::orPrefix())) {
            searchtext::takeOrPrefix(&op);
            joinGroup();
        } else {
            closeGroup();
        }
        addCondition(row, op);
    }

    QString clause()
    {
        closeGroup();
        return m_result + " 1 = 1 ";
    }

private:
    /// The row is a further value of the group. In the first row there is no group; " OR " then begins the
    /// clause, and the service refuses it.
    void joinGroup()
    {
        m_group.chop(andWord.size());
        m_group += " OR ";
        if (!m_inOr)
            m_group.prepend('(');
        m_inOr = true;
    }

    void closeGroup()
    {
        if (m_group.isEmpty())
            return;
        m_result += m_group;
        if (m_inOr) {
            m_result.chop(andWord.size());
            m_result += ") AND ";
        }
        m_group.clear();
        m_inOr = false;
    }

    void addCondition(const SearchRow &row, const QString &op)
    {
        const bool isCheck = row.kind == SearchRow::Value::CheckBox;
        QString value = row.storedValue.isEmpty() ? row.valueText : row.storedValue;
        if (row.kind == SearchRow::Value::Number)
            value.replace(m_decimalPoint, '.');
        bool isNumber = false;
        value.toFloat(&isNumber);
        if (isCheck || row.field.contains("time"))
            isNumber = false;
        const QString sqlOp = searchoperators::operatorOf(op, m_offline);

        if (isCheck)
            m_group += '(';
        m_group += row.field;
        if (!isNumber || sqlOp.contains("like"))
            m_group += "::varchar";
        m_group += ' ';
        // What was begun stays: the service refuses the clause instead of finding too much.
        if (sqlOp == searchtext::notAssigned())
            return;
        m_group += sqlOp + ' ' + valueText(row, value, sqlOp, isNumber);
        if (isCheck)
            m_group += value == "2" ? QStringLiteral(")")
                                    : QStringLiteral(" OR %1 != 2::varchar OR %1 IS NULL)").arg(row.field);
        // Status 0 means every status, and then no other one of the group matters. After other values the
        // closing parenthesis of the group still comes, and the service refuses it.
        if (row.field == "status" && value == "0")
            m_group = QStringLiteral("not status %1 -1").arg(sqlOp);
        m_group += andWord;
    }

    QString valueText(const SearchRow &row, const QString &value, const QString &sqlOp, bool isNumber) const
    {
        const bool noNumber = row.kind == SearchRow::Value::Number && value.isEmpty();
        if (noNumber && (sqlOp == "=" || sqlOp == "ilike"))
            return QStringLiteral("'' or %1 IS NULL").arg(row.field);
        if (noNumber && (sqlOp == "!=" || sqlOp == "not ilike"))
            return QStringLiteral("'' or %1 IS NOT NULL").arg(row.field);
        const QString wild = sqlOp.contains("like") && !noNumber ? QStringLiteral("%") : QString();
        const QString cast = isNumber ? QString() : QStringLiteral("::varchar");
        return '\'' + wild + value + wild + '\'' + cast;
    }

    const bool m_offline;
    const QChar m_decimalPoint;
    QString m_result;
    QString m_group; ///< conditions that belong together, with " AND " behind
    bool m_inOr = false;
};

} // namespace

ExtendedSearch extendedSearch(const QList<SearchRow> &rows, bool offline, QChar decimalPoint)
{
    ExtendedSearch search;
    ClauseBuilder builder(offline, decimalPoint);
    for (const SearchRow &row : rows) {
        if (row.fieldText == searchtext::notAssigned())
            continue;
        if (row.fieldText == searchtext::fullText()) {
            search.fullText += row.valueText + ' ';
            continue;
        }
        if (row.field == SearchRow::unknownField || row.op.isEmpty() || row.op == searchtext::notAssigned())
            continue;
        builder.add(row);
    }
    search.clause = builder.clause();
    return search;
}

QString checkFullText(const QString &text)
{
    if (text.contains(" or ", Qt::CaseInsensitive) || text.contains(" and ", Qt::CaseInsensitive) ||
        text.contains('+') || text.contains('-'))
        return text;
    QString words;
    const QStringList parts = text.split(' ', Qt::SkipEmptyParts);
    for (const QString &part : parts)
        words += '+' + part + ' ';
    return words;
}
