#include "clauseevaluator.h"

#include <QDateTime>
#include <QRegularExpression>

#include <cmath>

using kelva::ClauseNode;
using kelva::ClauseOperand;
using kelva::Comparator;
using kelva::FieldType;

namespace {

QString plain(double number)
{
    QString text = QString::number(number, 'f', 6);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text == "-0" ? "0" : text;
}

/// Row by row as in a textbook: which beginnings of the pattern match which beginnings of the text.
bool like(const QString &text, const QString &pattern, bool ignoreCase)
{
    const QVector<uint> t = (ignoreCase ? text.toCaseFolded() : text).toUcs4();
    const QVector<uint> p = (ignoreCase ? pattern.toCaseFolded() : pattern).toUcs4();
    QVector<bool> matches(t.size() + 1, false);
    matches[0] = true;
    for (const uint wanted : p) {
        QVector<bool> next(t.size() + 1, false);
        for (int i = 0; i <= t.size(); ++i) {
            if (wanted == '%')
                next[i] = matches[i] || (i > 0 && next[i - 1]);
            else
                next[i] = i > 0 && matches[i - 1] && (wanted == '_' || wanted == t[i - 1]);
        }
        matches = next;
    }
    return matches.last();
}

QStringList splitWords(const QString &text)
{
    static const QRegularExpression gap("[^\\p{L}\\p{N}]+", QRegularExpression::UseUnicodePropertiesOption);
    return text.toCaseFolded().split(gap, Qt::SkipEmptyParts);
}

} // namespace

std::optional<QList<int>> ClauseEvaluator::ids(const ClauseNode &clause, const QList<QVariantMap> &rows)
{
    m_refused = false;
    QList<int> found;
    for (const QVariantMap &row : rows)
        if (evaluate(clause, row) == Truth::True)
            found << row.value("docid").toInt();
    return m_refused ? std::nullopt : std::optional(found);
}

ClauseEvaluator::Truth ClauseEvaluator::evaluate(const ClauseNode &node, const QVariantMap &row)
{
    if (node.kind == ClauseNode::Kind::Not)
        return opposite(evaluate(node.children.front(), row));
    if (node.kind != ClauseNode::Kind::And && node.kind != ClauseNode::Kind::Or) {
        const Truth result = evaluatePredicate(node, row);
        return node.negated ? opposite(result) : result;
    }
    const bool conjunction = node.kind == ClauseNode::Kind::And;
    Truth result = truth(conjunction);
    for (const ClauseNode &child : node.children) {
        const Truth value = evaluate(child, row);
        result = conjunction ? std::min(result, value) : std::max(result, value);
    }
    return result;
}

ClauseEvaluator::Truth ClauseEvaluator::evaluatePredicate(const ClauseNode &node, const QVariantMap &row)
{
    const Value left = valueOf(node.left, row);
    switch (node.kind) {
    case ClauseNode::Kind::IsNull:
        return truth(left.isNull);
    case ClauseNode::Kind::In:
        return in(left, node.list);
    case ClauseNode::Kind::WordMatch:
        return evaluateWords(converted(left, Kind::Text), withMacros(node.right.text));
    case ClauseNode::Kind::Like: {
        const Value text = converted(left, Kind::Text);
        const Value pattern = converted(valueOf(node.right, row), Kind::Text);
        if (text.isNull || pattern.isNull)
            return Truth::Unknown;
        return truth(like(text.text, pattern.text, node.ignoreCase));
    }
    default:
        return compare(left, valueOf(node.right, row), node.comparator);
    }
}

ClauseEvaluator::Truth ClauseEvaluator::evaluateWords(const Value &text, const QString &query)
{
    const QStringList words = splitWords(text.text);
    bool anyWanted = false;
    bool anyEmpty = false;
    bool allFound = true;
    bool star = false;
    for (const QString &side : query.split('&')) {
        anyEmpty = anyEmpty || side.simplified().isEmpty();
        for (const QString &part : side.simplified().split(' ', Qt::SkipEmptyParts)) {
            const QStringList wanted = splitWords(part);
            star = star || part == ":*";
            if (wanted.isEmpty())
                continue;
            anyWanted = true;
            bool found = false;
            for (int from = 0; from + wanted.size() <= words.size(); ++from) {
                const QStringList here = words.mid(from, wanted.size());
                found = found || here == wanted ||
                        (part.endsWith(":*") &&
                         here.mid(0, here.size() - 1) == wanted.mid(0, wanted.size() - 1) &&
                         here.last().startsWith(wanted.last()));
            }
            allFound = allFound && found;
        }
    }
    m_refused = m_refused || (anyEmpty && !anyWanted && !star);
    return text.isNull ? Truth::Unknown : truth(anyWanted ? allFound : star && !text.text.isEmpty());
}

ClauseEvaluator::Truth ClauseEvaluator::compare(Value left, Value right, Comparator comparator)
{
    Kind kind = left.kind;
    if (left.kind == Kind::Null || right.kind == Kind::Null)
        return Truth::Unknown;
    if (left.kind == Kind::Loose || left.kind == Kind::Text)
        kind = left.kind == Kind::Loose && right.kind != Kind::Loose ? right.kind : Kind::Text;
    else if (right.kind == Kind::Text)
        kind = Kind::Text;
    else if (left.kind != right.kind && right.kind != Kind::Loose) {
        const bool dates = (left.kind == Kind::Date && right.kind == Kind::Timestamp) ||
                           (left.kind == Kind::Timestamp && right.kind == Kind::Date);
        m_refused = m_refused || !dates;
        kind = Kind::Timestamp;
    }
    left = converted(left, kind);
    right = converted(right, kind);
    if (left.isNull || right.isNull)
        return Truth::Unknown;
    const bool numbers = kind == Kind::Number || kind == Kind::Boolean;
    const bool equal = numbers ? left.number == right.number : left.text == right.text;
    const bool less = numbers ? left.number < right.number : left.text.toUtf8() < right.text.toUtf8();
    switch (comparator) {
    case Comparator::Equal:
        return truth(equal);
    case Comparator::NotEqual:
        return truth(!equal);
    case Comparator::Less:
        return truth(less);
    case Comparator::LessOrEqual:
        return truth(less || equal);
    case Comparator::Greater:
        return truth(!less && !equal);
    default:
        return truth(!less);
    }
}

ClauseEvaluator::Truth ClauseEvaluator::in(const Value &value, const std::vector<ClauseOperand> &list)
{
    Truth result = Truth::False;
    for (const ClauseOperand &entry : list)
        result = std::max(result, compare(value, valueOf(entry, {}), Comparator::Equal));
    return result;
}

ClauseEvaluator::Value ClauseEvaluator::valueOf(const ClauseOperand &operand, const QVariantMap &row)
{
    Value value;
    switch (operand.kind) {
    case ClauseOperand::Kind::Field:
        value = fieldValue(operand.text.toLower(), row);
        break;
    case ClauseOperand::Kind::Text:
        value = {Kind::Loose, false, withMacros(operand.text), 0};
        break;
    case ClauseOperand::Kind::Number:
        value = {Kind::Number, false, {}, operand.text.toDouble()};
        break;
    case ClauseOperand::Kind::Boolean:
        value = {Kind::Boolean, false, {}, operand.text == "true" ? 1.0 : 0.0};
        break;
    case ClauseOperand::Kind::Null:
        return value;
    }
    return operand.asText ? converted(value, Kind::Text) : value;
}

ClauseEvaluator::Value ClauseEvaluator::fieldValue(const QString &key, const QVariantMap &row)
{
    if (!m_types.contains(key))
        m_refused = true;
    const QVariant stored = row.value(key);
    switch (m_types.value(key)) {
    case FieldType::Integer:
    case FieldType::Number:
        return {Kind::Number, stored.isNull(), {}, stored.toDouble()};
    case FieldType::Boolean:
        return {Kind::Boolean, stored.isNull(), {}, stored.toDouble()};
    case FieldType::Date:
        return {Kind::Date, stored.isNull(), stored.toString(), 0};
    case FieldType::Timestamp:
        return {Kind::Timestamp, stored.isNull(), stored.toString(), 0};
    default:
        return {Kind::Text, stored.isNull(), stored.toString(), 0};
    }
}

ClauseEvaluator::Value ClauseEvaluator::converted(const Value &value, Kind kind)
{
    Value result = value;
    result.kind = kind;
    if (value.kind == kind)
        return result;
    if (kind == Kind::Text && value.kind == Kind::Number)
        result.text = plain(value.number);
    if (kind == Kind::Text && value.kind == Kind::Boolean)
        result.text = value.number == 0 ? "false" : "true";
    if (kind == Kind::Timestamp && value.kind == Kind::Date)
        result.text += "T00:00:00";
    if (value.kind != Kind::Loose)
        return result;
    const QString trimmed = value.text.trimmed();
    if (kind == Kind::Number) {
        bool ok = false;
        result.number = trimmed.toDouble(&ok);
        m_refused = m_refused || !ok || !std::isfinite(result.number);
    } else if (kind == Kind::Boolean) {
        const bool yes = QStringList{"true", "t", "yes", "1"}.contains(trimmed.toLower());
        const bool no = QStringList{"false", "f", "no", "0"}.contains(trimmed.toLower());
        m_refused = m_refused || !(yes || no);
        result.number = yes ? 1 : 0;
    } else if (kind == Kind::Date || kind == Kind::Timestamp) {
        const bool stamp = kind == Kind::Timestamp;
        for (const QString form : {"yyyy-M-d", "yyyy-M-dTHH:mm:ss", "yyyy-M-d HH:mm:ss", "yyyy-M-d HH:mm"}) {
            const QDateTime time = QDateTime::fromString(trimmed, form);
            if (time.isValid() && (stamp || form == "yyyy-M-d"))
                result.text = time.toString(stamp ? "yyyy-MM-ddTHH:mm:ss" : "yyyy-MM-dd");
        }
    }
    return result;
}

QString ClauseEvaluator::withMacros(QString text)
{
    for (int from = text.indexOf('['); from >= 0; from = text.indexOf('[', from + 1)) {
        const int end = text.indexOf(']', from);
        const QString inside = text.mid(from + 1, end - from - 1);
        for (const QString unit : {"HEUTE", "MONAT", "JAHR"}) {
            const QString amount = inside.mid(unit.size());
            if (end < 0 || !inside.startsWith(unit) ||
                !QRegularExpression("^[+-][0-9]+\\z").match(amount).hasMatch())
                continue;
            const int n = amount.toInt();
            const QDate date = unit == "HEUTE"   ? m_today.addDays(n)
                               : unit == "MONAT" ? m_today.addMonths(n)
                                                 : m_today.addYears(n);
            if (amount.size() > 8 || date.year() < 1 || date.year() > 9999)
                m_refused = true;
            else
                text.replace(from, end - from + 1, date.toString("yyyy-MM-dd"));
        }
    }
    return text;
}
