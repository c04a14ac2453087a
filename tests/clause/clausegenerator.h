#pragma once

#include "clause/clausetree.h"

#include <QRandomGenerator>
#include <QVariantMap>

/// Clauses and rows made up from a seed.
class ClauseGenerator
{
public:
    /// A number from the environment, or the usual one.
    static int setting(const char *variable, int usual)
    {
        return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariableIntValue(variable) : usual;
    }
    explicit ClauseGenerator(quint32 seed) : m_random(seed) {}

    /// A tree of the grammar; its fields exist, but what it compares may not fit together.
    kelva::ClauseNode tree(int depth = 3);
    /// A tree as text, with blanks, case and quotes as they come.
    QString text(const kelva::ClauseNode &node);
    /// A clause with a few characters changed.
    QString damaged(QString clause);

    QList<QVariantMap> rows(int count, int firstId);

private:
    int below(int bound) { return int(m_random.bounded(bound)); }
    template<typename T>
    T oneOf(const QList<T> &list)
    {
        return list.at(below(list.size()));
    }

    kelva::ClauseNode predicate();
    kelva::ClauseOperand field();
    kelva::ClauseOperand literal(const QString &nearField);
    kelva::ClauseOperand operand();
    QString value();
    QString number();
    QString text(const kelva::ClauseOperand &operand, bool isLeft = false);
    QString quoted(const QString &value, bool isLeft);
    QString word(const QString &keyword);
    QString blank() { return oneOf<QString>({"", "", " ", "  ", "\n"}); }
    QString gap() { return oneOf<QString>({" ", " ", "\t", "  "}); }

    QRandomGenerator m_random;
};
