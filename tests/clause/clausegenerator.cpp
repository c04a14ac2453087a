#include "clausegenerator.h"

#include "clausetable.h"

using kelva::ClauseNode;
using kelva::ClauseOperand;
using kelva::Comparator;
using kelva::FieldType;

ClauseNode ClauseGenerator::tree(int depth)
{
    ClauseNode node;
    const int choice = below(10);
    if (depth == 0 || choice < 3)
        return predicate();
    if (choice < 5) {
        node.kind = ClauseNode::Kind::Not;
        node.children.push_back(tree(depth - 1));
        return node;
    }
    node.kind = choice < 8 ? ClauseNode::Kind::And : ClauseNode::Kind::Or;
    for (int i = below(3) + 2; i > 0; --i)
        node.children.push_back(tree(depth - 1));
    return node;
}

ClauseNode ClauseGenerator::predicate()
{
    ClauseNode node;
    node.left = below(5) == 0 ? operand() : field();
    const QString key = node.left.kind == ClauseOperand::Kind::Field ? node.left.text : "bemerkung";
    const int choice = below(20);
    if (choice < 9) {
        node.kind = ClauseNode::Kind::Compare;
        node.comparator = Comparator(below(6));
        node.right = below(8) == 0 ? operand() : literal(key);
    } else if (choice < 14) {
        node.kind = ClauseNode::Kind::Like;
        node.ignoreCase = below(3) > 0;
        node.negated = below(3) == 0;
        node.right = below(12) == 0 ? operand() : literal("bemerkung");
        if (node.right.kind == ClauseOperand::Kind::Text && below(3) > 0)
            node.right.text =
                oneOf<QString>({"%", "%", "", "_"}) + node.right.text + oneOf<QString>({"%", "%", "_"});
    } else if (choice < 16) {
        node.kind = ClauseNode::Kind::IsNull;
        node.negated = below(2) == 0;
    } else if (choice < 18) {
        node.kind = ClauseNode::Kind::In;
        node.negated = below(2) == 0;
        for (int i = oneOf<int>({1, 2, 3, 12}); i > 0; --i) {
            node.list.push_back(literal(key));
            node.list.back().asText = false;
        }
    } else {
        node.kind = ClauseNode::Kind::WordMatch;
        node.left = field();
        node.left.asText = false;
        node.right.kind = ClauseOperand::Kind::Text;
        node.right.text = value() + oneOf<QString>({"", ":*", " & " + value(), ":* & " + value() + ":*"});
    }
    return node;
}

ClauseOperand ClauseGenerator::field()
{
    return {ClauseOperand::Kind::Field, oneOf(ClauseTable::types().keys()), below(4) == 0, 0};
}

ClauseOperand ClauseGenerator::literal(const QString &nearField)
{
    ClauseOperand result{ClauseOperand::Kind::Text, value(), below(6) == 0, 0};
    const FieldType type = ClauseTable::types().value(nearField);
    const bool numeric = type == FieldType::Integer || type == FieldType::Number;
    const int choice = below(30);
    if (choice == 0) {
        result.kind = ClauseOperand::Kind::Null;
    } else if (choice < 3 || (type == FieldType::Boolean && choice < 25)) {
        result.kind = ClauseOperand::Kind::Boolean;
        result.text = oneOf<QString>({"true", "false"});
    } else if (choice < 6 || (numeric && choice < 18)) {
        result.kind = ClauseOperand::Kind::Number;
        result.text = number();
    } else if (numeric && choice < 29) {
        result.text = number();
    }
    return result;
}

ClauseOperand ClauseGenerator::operand()
{
    return below(3) == 0 ? literal("bemerkung") : field();
}

QString ClauseGenerator::value()
{
    static const QStringList values =
        QString::fromUtf8(
            "|Miete|miete|MIETE Januar|O'Brien|O'|'|''|it's|a' b|x' y' z|100%|%|_|a_b|\\|\"|"
            "\"a\" OR|Größe|GRÖßE|straße|ö|Ö|é|日本語文書|\U0001F600é|inv-2015|2015|in|a & b|"
            "a && b|NEAR(a b)|*|2014|2014-08-11|2014-8-1|2014-02-30|2014-08-11 12:30|"
            "2014-08-11T12:30:00|[HEUTE+7]|[MONAT-1]|[JAHR+1]|[HEUTE+]|[HEUTE-9999999]|"
            "x[HEUTE+0]|3.1|3.1.%|3.10|true|f|2|2.0|1e2|inf|nan|0x10|1,5| 12 |12.5|-3|meier|MEIER")
            .split('|');
    return oneOf(values);
}

QString ClauseGenerator::number()
{
    return oneOf<QString>({"0",    "1",     "2",   "3",    "5",   "12",      "-1",          "-3",
                           "12.5", "12.50", "007", "0.10", "1.5", "1000000", "99999999999", "-0.0",
                           "2.25", "12.",   ".5",  "-.5",  "1e6", "125E-1",  "-0.e+3"});
}

QString ClauseGenerator::text(const ClauseNode &node)
{
    const QString left = text(node.left, true);
    const QString negation = node.negated ? word("NOT") + gap() : QString();
    switch (node.kind) {
    case ClauseNode::Kind::And:
    case ClauseNode::Kind::Or: {
        QString result;
        for (const ClauseNode &child : node.children) {
            if (!result.isEmpty())
                result += gap() + word(node.kind == ClauseNode::Kind::And ? "AND" : "OR") + gap();
            const bool bare = child.kind != ClauseNode::Kind::Or && child.kind != node.kind && below(3) > 0;
            result += bare ? text(child) : "(" + blank() + text(child) + blank() + ")";
        }
        return result;
    }
    case ClauseNode::Kind::Not: {
        const ClauseNode &child = node.children.front();
        const bool bare = child.kind != ClauseNode::Kind::Or && child.kind != ClauseNode::Kind::And;
        return word("NOT") + (bare ? gap() + text(child) : blank() + "(" + text(child) + ")");
    }
    case ClauseNode::Kind::Compare: {
        static const QList<QString> signs{"=", "!=", "<", "<=", ">", ">="};
        return left + blank() + signs.at(int(node.comparator)) + blank() + text(node.right);
    }
    case ClauseNode::Kind::Like:
        return left + gap() + negation + word(node.ignoreCase ? "ILIKE" : "LIKE") + gap() + text(node.right);
    case ClauseNode::Kind::IsNull:
        return left + gap() + word("IS") + gap() + negation + word("NULL");
    case ClauseNode::Kind::In: {
        QString list;
        for (const ClauseOperand &entry : node.list)
            list += (list.isEmpty() ? QString() : blank() + "," + blank()) + text(entry);
        return left + gap() + negation + word("IN") + blank() + "(" + blank() + list + ")";
    }
    case ClauseNode::Kind::WordMatch:
        return word("to_tsvector") + blank() + "(" + left + ")" + blank() + "@@" + blank() +
               word("to_tsquery") + "(" + blank() + text(node.right) + ")";
    }
    return {};
}

QString ClauseGenerator::text(const ClauseOperand &operand, bool isLeft)
{
    QString result = operand.text;
    if (operand.kind == ClauseOperand::Kind::Text)
        result = quoted(operand.text, isLeft);
    else if (operand.kind == ClauseOperand::Kind::Null)
        result = word("NULL");
    else if (operand.kind != ClauseOperand::Kind::Number)
        result = word(operand.text);
    return operand.asText ? result + "::" + word("varchar") : result;
}

QString ClauseGenerator::quoted(const QString &value, bool isLeft)
{
    QString inside = value;
    if (isLeft || value.contains("''") || below(2) == 0)
        inside.replace("'", "''");
    return "'" + inside + "'";
}

QString ClauseGenerator::word(const QString &keyword)
{
    const int choice = below(3);
    return choice == 0 ? keyword.toUpper() : choice == 1 ? keyword.toLower() : keyword;
}

QString ClauseGenerator::damaged(QString clause)
{
    static const QString characters = QStringLiteral("''()=!<>:@%_ ,.-;\"1aAü[]");
    for (int i = below(3) + 1; i > 0 && !clause.isEmpty(); --i) {
        const int at = below(clause.size());
        const int choice = below(4);
        if (choice == 0)
            clause.remove(at, below(3) + 1);
        else if (choice == 1)
            clause.insert(at, characters.at(below(characters.size())));
        else if (choice == 2)
            clause[at] = characters.at(below(characters.size()));
        else
            clause.insert(below(clause.size()), clause.mid(at, below(12)));
    }
    return clause;
}

QList<QVariantMap> ClauseGenerator::rows(int count, int firstId)
{
    const QList<QVariant> dates{"2014-08-11", "2014-08-18", "2014-07-11",
                                "2015-08-11", "2014-01-01", "0999-12-31"};
    QList<QVariantMap> rows;
    for (int id = firstId; id < firstId + count; ++id) {
        QVariantMap row;
        for (const QString &key : ClauseTable::types().keys()) {
            QVariant stored = value();
            switch (ClauseTable::types().value(key)) {
            case FieldType::Integer:
                stored = below(16) - 2;
                break;
            case FieldType::Number:
                stored = number().toDouble();
                break;
            case FieldType::Boolean:
                stored = below(2);
                break;
            case FieldType::Date:
                stored = oneOf(dates);
                break;
            case FieldType::Timestamp:
                stored = oneOf(dates).toString() + oneOf<QString>({"T00:00:00", "T12:30:00", "T23:59:59"});
                break;
            case FieldType::Text:
                stored = value() + oneOf<QString>({"", " ", "-", "."}) + value();
                break;
            }
            row.insert(key, below(6) == 0 ? QVariant() : stored);
        }
        row.insert("docid", id);
        rows << row;
    }
    return rows;
}
