#include "clause/clausewriter.h"

#include "clause/clausemacros.h"
#include "clause/clauseparser.h"
#include "clause/clausesql.h"
#include "clause/clausevalues.h"
#include "clause/comparators.h"
#include "store/textindex.h"

#include <algorithm>

namespace kelva {

namespace {

constexpr int mostValues = 30000; ///< the database takes 32766 in one statement

} // namespace

ClauseWriter::ClauseWriter(const ClauseFields &fields, const QDate &today)
    : m_rowIdColumn(fields.rowIdColumn),
      m_today(today)
{
    for (auto field = fields.byKey.begin(); field != fields.byKey.end(); ++field)
        m_fields.insert(field.key().toLower(), field.value());
}

Result<SqlCondition> ClauseWriter::write(const ClauseNode &root)
{
    const std::optional<SqlPart> part = writeNode(root, false);
    if (!part)
        return m_error;
    if (part->condition.values.size() > mostValues)
        return clauseError(1, QStringLiteral("it holds more than %1 values").arg(mostValues));
    SqlCondition condition = part->condition;
    condition.sql = QLatin1Char('(') + condition.sql + QLatin1Char(')');
    return condition;
}

std::optional<SqlPart> ClauseWriter::writeNode(const ClauseNode &node, bool negated)
{
    const bool inverted = negated != node.negated;
    switch (node.kind) {
    case ClauseNode::Kind::And:
    case ClauseNode::Kind::Or:
        return writeJoin(node, negated);
    case ClauseNode::Kind::Not:
        return writeNode(node.children.front(), !negated);
    case ClauseNode::Kind::Compare:
        return writeCompare(node, inverted);
    case ClauseNode::Kind::Like:
        return writeLike(node, inverted);
    case ClauseNode::Kind::IsNull:
        return writeIsNull(node, inverted);
    case ClauseNode::Kind::In:
        return writeIn(node, inverted);
    case ClauseNode::Kind::WordMatch:
        return writeWordMatch(node, inverted);
    }
    return std::nullopt;
}

std::optional<SqlPart> ClauseWriter::writeJoin(const ClauseNode &node, bool negated)
{
    const bool conjunction = (node.kind == ClauseNode::Kind::And) != negated;
    std::vector<SqlPart> parts;
    if (!collect(node, negated, conjunction, &parts))
        return std::nullopt;
    const auto decides = [=](const SqlPart &part) { return part.constant == !conjunction; };
    if (std::any_of(parts.begin(), parts.end(), decides))
        return constantPart(!conjunction);
    parts.erase(std::remove_if(parts.begin(), parts.end(), [](const SqlPart &part) { return part.constant; }),
                parts.end());
    return parts.empty() ? constantPart(conjunction) : joinParts(std::move(parts), conjunction);
}

/// What a node has to add to a chain of AND, or of OR: a chain of the same kind adds all that is in it.
bool ClauseWriter::collect(const ClauseNode &node, bool negated, bool conjunction,
                           std::vector<SqlPart> *parts)
{
    const bool isJoin = node.kind == ClauseNode::Kind::And || node.kind == ClauseNode::Kind::Or;
    if (node.kind == ClauseNode::Kind::Not)
        return collect(node.children.front(), !negated, conjunction, parts);
    if (isJoin && ((node.kind == ClauseNode::Kind::And) != negated) == conjunction) {
        return std::all_of(node.children.begin(), node.children.end(), [&](const ClauseNode &child) {
            return collect(child, negated, conjunction, parts);
        });
    }
    std::optional<SqlPart> part = writeNode(node, negated);
    if (!part)
        return false;
    parts->push_back(std::move(*part));
    return true;
}

std::optional<SqlPart> ClauseWriter::writeCompare(const ClauseNode &node, bool negated)
{
    const std::optional<Side> left = resolve(node.left);
    const std::optional<Side> right = left ? resolve(node.right) : std::nullopt;
    if (!right)
        return std::nullopt;
    return writeComparison(*left, *right, negated ? negation(node.comparator) : node.comparator);
}

std::optional<SqlPart> ClauseWriter::writeComparison(const Side &left, const Side &right,
                                                     Comparator comparator)
{
    const std::optional<Type> type = commonType(left, right);
    if (!type)
        return std::nullopt;
    if (*type == Type::Null)
        return constantPart(false);
    if (*type == Type::Number && left.field && !right.field && left.field->type == FieldType::Integer)
        return writeWholeNumber(left, right, comparator);
    if (*type == Type::Number && right.field && !left.field && right.field->type == FieldType::Integer)
        return writeWholeNumber(right, left, mirrored(comparator));
    QString text;
    QVariantList values;
    for (const Side *side : {&left, &right}) {
        if (!text.isEmpty())
            text += sign(comparator);
        if (side->field) {
            text += column(*side, *type);
            continue;
        }
        const std::optional<QVariant> value = literal(*side, *type);
        if (!value)
            return std::nullopt;
        text += QLatin1Char('?');
        values << *value;
    }
    if (values.size() == 2)
        return constantPart(holds(comparator, compareValues(values.first(), values.last())));
    if (values.size() == 1 && (comparator == Comparator::Equal || comparator == Comparator::NotEqual))
        return memberPart(column(left.field ? left : right, *type), values,
                          comparator == Comparator::NotEqual);
    return sqlPart(text, values);
}

/// A column of whole numbers beside a literal. A fraction is never bound for it: not every database would
/// take it, and what it means is known.
std::optional<SqlPart> ClauseWriter::writeWholeNumber(const Side &field, const Side &number,
                                                      Comparator comparator)
{
    const std::optional<QVariant> value = literal(number, Type::Number);
    if (!value)
        return std::nullopt;
    const WholeNumber whole = wholeNumber(*value);
    const QString name = column(field, Type::Number);
    const bool equality = comparator == Comparator::Equal || comparator == Comparator::NotEqual;
    if (whole.exact && equality)
        return memberPart(name, {whole.floor}, comparator == Comparator::NotEqual);
    if (whole.exact)
        return sqlPart(name + sign(comparator) + QLatin1Char('?'), {whole.floor});
    const bool below = comparator == Comparator::Less || comparator == Comparator::LessOrEqual;
    const bool above = comparator == Comparator::Greater || comparator == Comparator::GreaterOrEqual;
    // Beyond all whole numbers, or between two of them.
    if (whole.outside == 0 && !equality)
        return sqlPart(name + sign(below ? Comparator::LessOrEqual : Comparator::Greater) + QLatin1Char('?'),
                       {whole.floor});
    const bool all =
        comparator == Comparator::NotEqual || (below && whole.outside > 0) || (above && whole.outside < 0);
    return all ? sqlPart(name + QLatin1String(" IS NOT NULL")) : constantPart(false);
}

std::optional<SqlPart> ClauseWriter::writeIsNull(const ClauseNode &node, bool negated)
{
    const std::optional<Side> side = resolve(node.left);
    if (!side)
        return std::nullopt;
    if (!side->field)
        return constantPart((side->type == Type::Null) != negated);
    return sqlPart(side->field->column +
                   (negated ? QLatin1String(" IS NOT NULL") : QLatin1String(" IS NULL")));
}

std::optional<SqlPart> ClauseWriter::writeIn(const ClauseNode &node, bool negated)
{
    const std::optional<Side> left = resolve(node.left);
    if (!left)
        return std::nullopt;
    std::vector<Side> list;
    bool holdsNull = false;
    for (const ClauseOperand &operand : node.list) {
        std::optional<Side> entry = resolve(operand);
        if (!entry)
            return std::nullopt;
        if (entry->type == Type::Null)
            holdsNull = true;
        else
            list.push_back(std::move(*entry));
    }
    std::optional<SqlPart> part = writeList(*left, list, negated);
    // Nothing is known to differ from all entries when one of them is unknown.
    return part && holdsNull && negated ? constantPart(false) : part;
}

std::optional<SqlPart> ClauseWriter::writeList(const Side &left, const std::vector<Side> &list, bool negated)
{
    if (!left.field) {
        bool found = false;
        for (const Side &entry : list) {
            const std::optional<SqlPart> part = writeComparison(left, entry, Comparator::Equal);
            if (!part)
                return std::nullopt;
            found = found || *part->constant;
        }
        return constantPart(left.type != Type::Null && found != negated);
    }
    Type type = Type::Null;
    QVariantList values;
    int fractions = 0; // that no whole number is equal to
    for (const Side &entry : list) {
        const std::optional<Type> common = commonType(left, entry);
        const std::optional<QVariant> value = common ? literal(entry, *common) : std::nullopt;
        if (!value)
            return std::nullopt;
        type = *common;
        if (type == Type::Number && left.field->type == FieldType::Integer) {
            const WholeNumber whole = wholeNumber(*value);
            if (whole.exact)
                values << whole.floor;
            else
                ++fractions;
        } else {
            values << *value;
        }
    }
    if (!values.isEmpty())
        return memberPart(column(left, type), values, negated);
    return negated && fractions > 0 ? sqlPart(left.field->column + QLatin1String(" IS NOT NULL"))
                                    : constantPart(false);
}

std::optional<SqlPart> ClauseWriter::writeLike(const ClauseNode &node, bool negated)
{
    const std::optional<Side> left = resolve(node.left);
    const std::optional<Side> right = left ? resolve(node.right) : std::nullopt;
    if (!right)
        return std::nullopt;
    if (left->type == Type::Null || right->type == Type::Null)
        return constantPart(false);
    const auto sensitivity = node.ignoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive;
    if (!left->field && !right->field) {
        const bool matches = LikePattern(literal(*right, Type::Text)->toString(), sensitivity)
                                 .matches(literal(*left, Type::Text)->toString());
        return constantPart(matches != negated);
    }
    if (left->field && !right->field)
        return writePattern(*left, literal(*right, Type::Text)->toString(), node.ignoreCase, negated);
    QVariantList values;
    if (!left->field)
        values << *literal(*left, Type::Text);
    const QString function = node.ignoreCase ? QStringLiteral("kelva_ilike(") : QStringLiteral("kelva_like(");
    return sqlPart((negated ? QStringLiteral("NOT ") : QString()) + function + column(*right, Type::Text) +
                       QLatin1String(", ") + (left->field ? column(*left, Type::Text) : QStringLiteral("?")) +
                       QLatin1Char(')'),
                   values);
}

SqlPart ClauseWriter::writePattern(const Side &left, const QString &pattern, bool ignoreCase,
                                   bool negated) const
{
    const QString text = column(left, Type::Text);
    const int wildcard = pattern.indexOf(QLatin1Char('%'));
    const bool onlyPercent = wildcard == 0 && pattern.count(QLatin1Char('%')) == pattern.size();
    if (onlyPercent)
        return negated ? constantPart(false) : sqlPart(left.field->column + QLatin1String(" IS NOT NULL"));
    const bool storedAsText = text == left.field->column;
    if (!ignoreCase && storedAsText && !pattern.contains(QLatin1Char('_'))) {
        if (wildcard < 0)
            return sqlPart(text + (negated ? QLatin1String(" <> ?") : QLatin1String(" = ?")), {pattern});
        const QString prefix = pattern.left(wildcard);
        const QString end = endOfPrefix(prefix);
        if (!end.isEmpty() && pattern.count(QLatin1Char('%')) == pattern.size() - wildcard)
            return sqlPart(text + (negated ? QLatin1String(" < ? OR ") : QLatin1String(" >= ? AND ")) + text +
                               (negated ? QLatin1String(" >= ?") : QLatin1String(" < ?")),
                           {prefix, end});
    }
    const QString match = (ignoreCase ? QLatin1String("kelva_ilike(?, ") : QLatin1String("kelva_like(?, ")) +
                          text + QLatin1Char(')');
    if (negated)
        return sqlPart(QLatin1String("NOT ") + match, {pattern});
    const QString run = storedAsText && !left.field->trigramTable.isEmpty() ? trigramRun(pattern) : QString();
    if (run.isEmpty())
        return sqlPart(match, {pattern});
    SqlPart part;
    part.condition = textindex::contains(m_rowIdColumn, left.field->trigramTable, run);
    part.condition.sql += QLatin1String(" AND ") + match;
    part.condition.values << pattern;
    return part;
}

std::optional<SqlPart> ClauseWriter::writeWordMatch(const ClauseNode &node, bool negated)
{
    const std::optional<Side> left = resolve(node.left);
    const std::optional<Side> right = left ? resolve(node.right) : std::nullopt;
    if (!right)
        return std::nullopt;
    const QString query = right->operand.text;
    const Result<WordQuery> words = WordQuery::parse(query);
    if (!words)
        return refuse(right->operand.position, words.error().text);
    const QString known = left->field->column + QLatin1String(" IS NOT NULL");
    if (words.value().matchesNothing())
        return negated ? sqlPart(known) : constantPart(false);
    if (words.value().matchesAnyText())
        return sqlPart(column(*left, Type::Text) +
                       (negated ? QLatin1String(" = ''") : QLatin1String(" <> ''")));
    if (left->field->wordTable.isEmpty())
        return sqlPart((negated ? QStringLiteral("NOT ") : QString()) + QLatin1String("kelva_words(?, ") +
                           column(*left, Type::Text) + QLatin1Char(')'),
                       {query});
    SqlPart part;
    part.condition = textindex::words(m_rowIdColumn, left->field->wordTable, words.value().terms());
    if (negated)
        part.condition.sql.prepend(known + QLatin1String(" AND NOT "));
    return part;
}

std::optional<ClauseWriter::Side> ClauseWriter::resolve(const ClauseOperand &operand)
{
    Side side{operand, nullptr, Type::Text};
    switch (operand.kind) {
    case ClauseOperand::Kind::Null:
        side.type = Type::Null;
        return side;
    case ClauseOperand::Kind::Text: {
        const std::optional<QString> text = withDateMacros(operand.text, m_today);
        if (!text)
            return refuse(operand.position, QStringLiteral("the date macro leads out of the calendar"));
        side.operand.text = *text;
        side.type = Type::Untyped;
        break;
    }
    case ClauseOperand::Kind::Number:
        side.type = Type::Number;
        break;
    case ClauseOperand::Kind::Boolean:
        side.type = Type::Boolean;
        break;
    case ClauseOperand::Kind::Field: {
        const auto field = m_fields.constFind(operand.text.toLower());
        if (field == m_fields.constEnd())
            return refuse(operand.position,
                          QStringLiteral("the field \"%1\" is not known").arg(operand.text.left(60)));
        side.field = &field.value();
        switch (field->type) {
        case FieldType::Integer:
        case FieldType::Number:
            side.type = Type::Number;
            break;
        case FieldType::Text:
            side.type = Type::Text;
            break;
        case FieldType::Date:
            side.type = Type::Date;
            break;
        case FieldType::Timestamp:
            side.type = Type::Timestamp;
            break;
        case FieldType::Boolean:
            side.type = Type::Boolean;
            break;
        }
        break;
    }
    }
    if (operand.asText)
        side.type = Type::Text;
    return side;
}

std::optional<ClauseWriter::Type> ClauseWriter::commonType(const Side &left, const Side &right)
{
    const auto one = [&](Type type) { return left.type == type || right.type == type; };
    if (one(Type::Null))
        return Type::Null;
    if (left.type == right.type)
        return left.type == Type::Untyped ? Type::Text : left.type;
    if (one(Type::Untyped))
        return left.type == Type::Untyped ? right.type : left.type;
    if (one(Type::Text))
        return Type::Text;
    if (one(Type::Date) && one(Type::Timestamp))
        return Type::Timestamp;
    return refuse(left.operand.position,
                  QStringLiteral("%1 cannot be compared with %2").arg(nameOf(left), nameOf(right)));
}

std::optional<QVariant> ClauseWriter::literal(const Side &side, Type type)
{
    const QString &text = side.operand.text;
    switch (type) {
    case Type::Number:
        if (const std::optional<QVariant> number = numberValue(text))
            return number;
        return refuse(side.operand.position, QStringLiteral("%1 is no number").arg(nameOf(side)));
    case Type::Boolean:
        if (const std::optional<bool> value = booleanValue(text))
            return int(*value);
        return refuse(side.operand.position,
                      QStringLiteral("%1 is neither true nor false").arg(nameOf(side)));
    case Type::Date:
        return dateValue(text);
    case Type::Timestamp:
        return timestampValue(text);
    case Type::Text:
    case Type::Untyped:
    case Type::Null:
        break;
    }
    return side.operand.kind == ClauseOperand::Kind::Number ? plainNumber(text) : text;
}

QString ClauseWriter::column(const Side &side, Type type)
{
    const QString &name = side.field->column;
    if (type == Type::Timestamp && side.field->type == FieldType::Date)
        return name + QLatin1String(" || 'T00:00:00'");
    if (type != Type::Text)
        return name;
    switch (side.field->type) {
    case FieldType::Integer:
        return QStringLiteral("CAST(%1 AS TEXT)").arg(name);
    case FieldType::Number:
        return QStringLiteral("kelva_number_text(%1)").arg(name);
    case FieldType::Boolean:
        return QStringLiteral("CASE %1 WHEN 0 THEN 'false' WHEN 1 THEN 'true' END").arg(name);
    case FieldType::Text:
    case FieldType::Date:
    case FieldType::Timestamp:
        break;
    }
    return name;
}

QString ClauseWriter::nameOf(const Side &side)
{
    constexpr int longestName = 60;
    const QString &text = side.operand.text;
    const QString shown = text.size() > longestName ? text.left(longestName) + QLatin1String("...") : text;
    return side.operand.kind == ClauseOperand::Kind::Text ? QLatin1Char('\'') + shown + QLatin1Char('\'')
                                                          : shown;
}

std::nullopt_t ClauseWriter::refuse(int position, const QString &reason)
{
    m_error = clauseError(position, reason);
    return std::nullopt;
}

} // namespace kelva
