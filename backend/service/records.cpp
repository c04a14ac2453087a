#include "service/records.h"

#include "contract/recordformat.h"

namespace kelva {

void Records::add(const QStringList &fields, const QByteArray &picture)
{
    rows << joinFields(fields);
    pictures << picture;
}

QStringList Records::fields(int row, int atLeast) const
{
    QStringList fields = splitFields(rows.at(row));
    while (fields.size() < atLeast)
        fields << QString();
    return fields;
}

QString joinFields(const QStringList &fields)
{
    return fields.join(recordformat::fieldSeparator);
}

QStringList splitFields(const QString &record)
{
    return record.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
}

QString cleanText(const QString &text, int maximum)
{
    QString clean;
    clean.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            clean += c;
            clean += text.at(++i);
            continue;
        }
        // Half a character and what is none would come back as something else.
        if (c == recordformat::fieldSeparator || c == recordformat::listSeparator ||
            c == recordformat::rowSeparator || c.isSurrogate() || c.unicode() >= 0xfffe)
            continue;
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            clean += QLatin1Char(' ');
        else
            clean += c;
    }
    if (clean.size() > maximum) {
        // Not through the middle of a character of two units.
        if (clean.at(maximum).isLowSurrogate())
            --maximum;
        clean.truncate(maximum);
    }
    return clean;
}

} // namespace kelva
