#include "service/recordvalues.h"

#include "service/records.h"

#include <QDate>

#include <cmath>

namespace kelva {

QString versionToken(qint64 revision)
{
    return QStringLiteral("1_%1").arg(revision);
}

QVariant storedText(const QString &text, int maximum)
{
    return cleanText(text, maximum);
}

Result<QVariant> storedDate(const QString &text)
{
    if (text.isEmpty())
        return QVariant();
    const QDate date = QDate::fromString(text, Qt::ISODate);
    if (!date.isValid() || text.size() != 10)
        return Error{ErrorCode::BadInput, QStringLiteral("\"%1\" is not a date.").arg(text.left(40))};
    return QVariant(text);
}

Result<QVariant> storedAttribute(const AttributeColumn &attribute, const QString &text)
{
    switch (attribute.kind) {
    case AttributeKind::CheckBox:
        if (text.isEmpty())
            return QVariant();
        return QVariant(text == QLatin1String("2") ? text : QStringLiteral("0"));
    case AttributeKind::Numeric: {
        if (text.isEmpty())
            return QVariant();
        bool isNumber = false;
        QString plain = text;
        if (!plain.contains(QLatin1Char('.')))
            plain.replace(QLatin1Char(','), QLatin1Char('.'));
        const double number = plain.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(number))
            return Error{ErrorCode::BadInput,
                         QStringLiteral("\"%1\" is not a number (%2).").arg(text.left(40), attribute.name)};
        return QVariant(number);
    }
    case AttributeKind::Date: {
        const Result<QVariant> date = storedDate(text);
        if (!date || date.value().isValid())
            return date;
        return storedText(text);
    }
    case AttributeKind::String:
    case AttributeKind::ComboBox:
        break;
    }
    return storedText(text);
}

} // namespace kelva
