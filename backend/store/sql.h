#pragma once

#include <QString>
#include <QVariantList>
#include <QVector>

namespace kelva {

/// A condition to stand in a WHERE, with one "?" for each of values.
struct SqlCondition
{
    QString sql;
    QVariantList values;
    bool usesTextIndex = false; ///< asks a full-text table, which gathers all its hits before the first
};

/// What databases say differently.
namespace sql {

inline const QString always = QStringLiteral("TRUE");
inline const QString never = QStringLiteral("FALSE");

/// The column has one of the values, or with excluded is not NULL and has none of them. Whole numbers or
/// texts, any number of them: they are bound as one.
SqlCondition inList(const QString &column, const QVariantList &values, bool excluded = false);
SqlCondition inList(const QString &column, const QVector<qint64> &values);

/// Behind the name of a table: its rows are met in the order of their ids, by no index.
QString byRowId();
/// The same for this index.
QString byIndex(const QString &index);
/// A column or condition that no index is looked for.
QString opaque(const QString &expression);

} // namespace sql
} // namespace kelva
