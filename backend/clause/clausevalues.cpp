#include "clause/clausevalues.h"

#include "store/textmatch.h"

#include <QDate>
#include <QRegularExpression>

#include <cmath>

namespace kelva {

std::optional<QVariant> numberValue(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^([+-]?)([0-9]++(?:\\.[0-9]*+)?+|\\.[0-9]++)([eE][+-]?[0-9]++)?+$"));
    const QString trimmed = text.trimmed();
    const QRegularExpressionMatch match = form.match(trimmed);
    if (!match.hasMatch())
        return std::nullopt;
    bool whole = false;
    const qlonglong integer = trimmed.toLongLong(&whole);
    if (whole)
        return integer;
    bool fits = false;
    const double number = trimmed.toDouble(&fits);
    if (!fits || !std::isfinite(number))
        return std::nullopt;
    return number;
}

WholeNumber wholeNumber(const QVariant &number)
{
    if (number.type() != QVariant::Double)
        return {number.toLongLong(), true, 0};
    const double value = number.toDouble();
    constexpr double end = 9223372036854775808.0; // one above the largest
    if (value >= end || value < -end)
        return {0, false, value > 0 ? 1 : -1};
    const double floor = std::floor(value);
    return {static_cast<qlonglong>(floor), floor == value, 0};
}

QString plainNumber(const QString &number)
{
    if (number.contains(QLatin1Char('e'), Qt::CaseInsensitive)) {
        bool fits = false;
        const double value = number.toDouble(&fits);
        return fits ? numberText(value) : number;
    }
    const bool negative = number.startsWith(QLatin1Char('-'));
    QString digits = negative ? number.mid(1) : number;
    if (digits.startsWith(QLatin1Char('.')))
        digits.prepend(QLatin1Char('0'));
    int from = 0;
    while (from + 1 < digits.size() && digits.at(from) == QLatin1Char('0') &&
           digits.at(from + 1) != QLatin1Char('.'))
        ++from;
    int end = digits.size();
    if (digits.contains(QLatin1Char('.'))) {
        while (digits.at(end - 1) == QLatin1Char('0'))
            --end;
        if (digits.at(end - 1) == QLatin1Char('.'))
            --end;
    }
    digits = digits.mid(from, end - from);
    return negative && digits != QLatin1String("0") ? QLatin1Char('-') + digits : digits;
}

QString dateValue(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*([0-9]{4})-([0-9]{1,2})-([0-9]{1,2})\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    const QDate date(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
    return match.hasMatch() && date.isValid() ? date.toString(Qt::ISODate) : text;
}

QString timestampValue(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        "^\\s*([0-9]{4}-[0-9]{1,2}-[0-9]{1,2})(?:[T ]([0-9]{2}:[0-9]{2})(:[0-9]{2})?(?:\\.0*)?)?\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return text;
    const QString time = match.captured(2).isEmpty() ? QStringLiteral("00:00") : match.captured(2);
    const QString seconds = match.captured(3).isEmpty() ? QStringLiteral(":00") : match.captured(3);
    return dateValue(match.captured(1)) + QLatin1Char('T') + time + seconds;
}

std::optional<bool> booleanValue(const QString &text)
{
    const QString word = text.trimmed().toLower();
    for (const char *yes : {"true", "t", "yes", "1"})
        if (word == QLatin1String(yes))
            return true;
    for (const char *no : {"false", "f", "no", "0"})
        if (word == QLatin1String(no))
            return false;
    return std::nullopt;
}

QString endOfPrefix(const QString &prefix)
{
    QVector<uint> characters = prefix.toUcs4();
    while (!characters.isEmpty() && characters.last() == QChar::LastValidCodePoint)
        characters.removeLast();
    if (characters.isEmpty())
        return {};
    // The database orders by code point, and surrogates are none.
    characters.last() = characters.last() == 0xd7ff ? 0xe000 : characters.last() + 1;
    return QString::fromUcs4(characters.constData(), characters.size());
}

int compareValues(const QVariant &left, const QVariant &right)
{
    if (left.type() == QVariant::String)
        return qBound(-1, qstrcmp(left.toString().toUtf8(), right.toString().toUtf8()), 1);
    if (left.type() == QVariant::Double || right.type() == QVariant::Double) {
        const double a = left.toDouble();
        const double b = right.toDouble();
        return a < b ? -1 : a > b ? 1 : 0;
    }
    const qlonglong a = left.toLongLong();
    const qlonglong b = right.toLongLong();
    return a < b ? -1 : a > b ? 1 : 0;
}

} // namespace kelva
