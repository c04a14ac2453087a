#include "clause/clausemacros.h"

#include <QRegularExpression>

namespace kelva {

namespace {

constexpr int lastYear = 9999;
constexpr int mostDigits = 7;

QDate macroDate(QStringView unit, int offset, const QDate &today)
{
    if (unit == QLatin1String("HEUTE"))
        return today.addDays(offset);
    return unit == QLatin1String("MONAT") ? today.addMonths(offset) : today.addYears(offset);
}

} // namespace

std::optional<QString> withDateMacros(const QString &text, const QDate &today)
{
    if (!text.contains(QLatin1Char('[')))
        return text;
    static const QRegularExpression macro(QStringLiteral("\\[(HEUTE|MONAT|JAHR)([+-])0*+([0-9]*)\\]"));
    QString result;
    int from = 0;
    QRegularExpressionMatchIterator matches = macro.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedEnd(2) + 1 == match.capturedEnd())
            continue; // no digit at all
        if (match.capturedLength(3) > mostDigits)
            return std::nullopt;
        const int amount = match.capturedView(3).toInt();
        const QDate date = macroDate(match.capturedView(1),
                                     match.capturedView(2) == QLatin1String("-") ? -amount : amount, today);
        if (!date.isValid() || date.year() < 1 || date.year() > lastYear)
            return std::nullopt;
        result += QStringView(text).mid(from, match.capturedStart() - from);
        result += date.toString(Qt::ISODate);
        from = match.capturedEnd();
    }
    return result + text.mid(from);
}

} // namespace kelva
