#include "search/searchoperators.h"

#include "contract/recordformat.h"
#include "widgets/searchtexts.h"

#include <QCoreApplication>

namespace searchoperators {
namespace {

QString text(const char *source)
{
    return QCoreApplication::translate("SearchOperators", source);
}

} // namespace

QStringList rows(List list, bool offline)
{
    const QString like = offline ? QStringLiteral("like") : QStringLiteral("ilike");
    const auto row = [](const QString &op, const char *display) {
        return op + recordformat::fieldSeparator + text(display);
    };
    QStringList result{row("=", QT_TRANSLATE_NOOP("SearchOperators", "is"))};
    if (list == List::Flag)
        return result;
    result << row("!=", QT_TRANSLATE_NOOP("SearchOperators", "is not"));
    if (list == List::Choice || list == List::Folder)
        return result;
    result << row(like, QT_TRANSLATE_NOOP("SearchOperators", "contains"))
           << row("not " + like, QT_TRANSLATE_NOOP("SearchOperators", "not contains"));
    if (list == List::Text)
        return result;
    // "then" is how these four are known.
    result << row(">", QT_TRANSLATE_NOOP("SearchOperators", "greater then"))
           << row("<", QT_TRANSLATE_NOOP("SearchOperators", "smaller then"))
           << row(">=", QT_TRANSLATE_NOOP("SearchOperators", "greater/equal then"))
           << row("<=", QT_TRANSLATE_NOOP("SearchOperators", "smaller/equal then"));
    return result;
}

QString operatorOf(const QString &displayText, bool offline)
{
    const QStringList all = rows(List::All, offline);
    for (const QString &row : all)
        if (row.section(recordformat::fieldSeparator, 1) == displayText)
            return row.section(recordformat::fieldSeparator, 0, 0);
    return searchtext::notAssigned();
}

List listFor(FieldKind kind)
{
    switch (kind) {
    case FieldKind::Choice:
        return List::Choice;
    case FieldKind::Folder:
        return List::Folder;
    case FieldKind::CheckBox:
        return List::Flag;
    case FieldKind::Text:
        return List::Text;
    default:
        return List::All;
    }
}

bool allowsSeveralValues(FieldKind kind)
{
    return kind != FieldKind::CheckBox && kind != FieldKind::Plain;
}

} // namespace searchoperators
