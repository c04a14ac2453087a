#include "documents/datemacro.h"

namespace {

struct KindText
{
    DateMacro::Kind kind;
    const char *prefix;
    const char *name;
};

constexpr KindText kindTexts[] = {{DateMacro::Kind::Day, "[HEUTE", "Heute"},
                                  {DateMacro::Kind::Month, "[MONAT", "Diesen Monat"},
                                  {DateMacro::Kind::Year, "[JAHR", "Dieses Jahr"}};

} // namespace

DateMacro DateMacro::parse(const QString &text)
{
    const QString word = text.section(':', 0, 0);
    for (const KindText &known : kindTexts) {
        const QString prefix(known.prefix);
        if (!word.startsWith(prefix))
            continue;
        DateMacro macro;
        macro.kind = known.kind;
        macro.offset = word.mid(prefix.size()).chopped(word.size() > prefix.size() ? 1 : 0).toInt();
        return macro;
    }
    return {};
}

QString DateMacro::nameOf(Kind kind)
{
    for (const KindText &known : kindTexts)
        if (known.kind == kind)
            return known.name;
    return QString();
}

DateMacro::Kind DateMacro::kindOf(const QString &name)
{
    for (const KindText &known : kindTexts)
        if (name == known.name)
            return known.kind;
    return Kind::None;
}

QDate DateMacro::date(const QDate &today) const
{
    switch (kind) {
    case Kind::Day:
        return today.addDays(offset);
    case Kind::Month:
        return today.addMonths(offset);
    case Kind::Year:
        return today.addYears(offset);
    case Kind::None:
        break;
    }
    return QDate();
}

QString DateMacro::text(const QDate &today) const
{
    for (const KindText &known : kindTexts)
        if (known.kind == kind)
            return QString("%1%2%3]:%4")
                .arg(known.prefix, offset < 0 ? "" : "+", QString::number(offset),
                     date(today).toString("yyyy-MM-dd"));
    return QString();
}
