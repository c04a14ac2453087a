#include "store/sql.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace kelva {
namespace {

/// As one text in JSON. Whole numbers are written here, as QJsonValue would make doubles of them.
template<typename Values, typename Write>
QString listOf(const Values &values, Write write)
{
    QByteArray json;
    for (const auto &value : values) {
        json += json.isEmpty() ? '[' : ',';
        json += write(value);
    }
    return QString::fromUtf8(json.isEmpty() ? QByteArray("[]") : json + ']');
}

QByteArray inJson(const QVariant &value)
{
    if (value.type() != QVariant::String)
        return QByteArray::number(value.toLongLong());
    return QJsonDocument(QJsonArray{value.toString()}).toJson(QJsonDocument::Compact).mid(1).chopped(1);
}

QString inOrNot(const QString &column, bool excluded)
{
    return column + (excluded ? QLatin1String(" NOT IN (") : QLatin1String(" IN (")) +
           QLatin1String("SELECT value FROM json_each(?))");
}

} // namespace

SqlCondition sql::inList(const QString &column, const QVariantList &values, bool excluded)
{
    return {inOrNot(column, excluded), {listOf(values, inJson)}};
}

SqlCondition sql::inList(const QString &column, const QVector<qint64> &values)
{
    return {inOrNot(column, false), {listOf(values, [](qint64 value) { return QByteArray::number(value); })}};
}

QString sql::byRowId()
{
    return QStringLiteral("NOT INDEXED");
}

QString sql::byIndex(const QString &index)
{
    return QStringLiteral("INDEXED BY ") + index;
}

QString sql::opaque(const QString &expression)
{
    return QLatin1Char('+') + expression;
}

} // namespace kelva
