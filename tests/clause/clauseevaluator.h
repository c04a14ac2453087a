#pragma once

#include "clause/clause.h"
#include "clause/clausetree.h"

#include <QVariantMap>

#include <optional>

/// What a clause means, worked out for one row after the other without a database.
class ClauseEvaluator
{
public:
    ClauseEvaluator(const QMap<QString, kelva::FieldType> &types, const QDate &today)
        : m_types(types),
          m_today(today)
    {
    }

    /// Numbers of the rows that fulfil the clause; nothing when the clause has to be refused.
    std::optional<QList<int>> ids(const kelva::ClauseNode &clause, const QList<QVariantMap> &rows);

private:
    enum class Truth { False, Unknown, True };
    enum class Kind { Null, Loose, Text, Number, Date, Timestamp, Boolean };

    struct Value
    {
        Kind kind = Kind::Null;
        bool isNull = true;
        QString text;
        double number = 0;
    };

    static Truth truth(bool value) { return value ? Truth::True : Truth::False; }
    static Truth opposite(Truth value) { return Truth(2 - int(value)); }

    Truth evaluate(const kelva::ClauseNode &node, const QVariantMap &row);
    Truth evaluatePredicate(const kelva::ClauseNode &node, const QVariantMap &row);
    Truth evaluateWords(const Value &text, const QString &query);
    Truth compare(Value left, Value right, kelva::Comparator comparator);
    Truth in(const Value &value, const std::vector<kelva::ClauseOperand> &list);
    Value valueOf(const kelva::ClauseOperand &operand, const QVariantMap &row);
    Value fieldValue(const QString &key, const QVariantMap &row);
    Value converted(const Value &value, Kind kind);
    QString withMacros(QString text);

    QMap<QString, kelva::FieldType> m_types;
    QDate m_today;
    bool m_refused = false;
};
