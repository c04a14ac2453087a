#include "documents/onelinesearch.h"

#include "contract/recordformat.h"

#include <QtNumeric>

namespace {

QString contains(const QString &column, const QString &value, bool offline)
{
    return QStringLiteral("%1 %2 '%%3%'")
        .arg(column, offline ? QStringLiteral("like") : QStringLiteral("ilike"), value);
}

QString words(const QString &column, const QString &value)
{
    QStringList terms;
    const QStringList parts = value.split(' ', Qt::SkipEmptyParts);
    for (QString part : parts) {
        if (part.endsWith('*')) {
            part.chop(1);
            part += QStringLiteral(":*");
        }
        terms << part;
    }
    if (terms.isEmpty())
        return QStringLiteral("%1 = null or %2 = ''").arg(column, column);
    return QStringLiteral("to_tsvector(%1) @@ to_tsquery('%2')")
        .arg(column, terms.join(QStringLiteral(" & ")));
}

bool isNumber(const QString &text)
{
    bool isNumber = false;
    return qIsFinite(text.toDouble(&isNumber)) && isNumber;
}

QString lineClause(const QString &column, QString value, bool numeric, const OneLineSearch &search)
{
    if (numeric) {
        const QString number = QString(value).replace(search.decimalPoint, '.');
        if (isNumber(number) && !column.contains("time") && !column.contains("date"))
            return QStringLiteral("%1 = %2").arg(column, number);
        if (value.isEmpty())
            return QStringLiteral("%1 is null").arg(column);
    }
    if (!search.offline && !value.startsWith('"'))
        return words(column, value);
    value.remove('"');
    return contains(column, value, search.offline);
}

} // namespace

QString oneLineClause(const OneLineSearch &search)
{
    using Editor = OneLineSearch::Editor;
    QString column = search.column;
    QString value = search.value;
    if (column.contains("folder") && value.startsWith("0.")) {
        value.remove(0, 2); // an entry below the status branch of the folder tree
        column = QStringLiteral("status");
    }
    if (column == "status" && value == "0")
        return QStringLiteral("status > 0");
    if (column == "docid" || column == "docart" || column == "status")
        return QStringLiteral("%1 = %2").arg(column, value);
    if (column == "cdate" || search.editor == Editor::Calendar)
        return QStringLiteral("%1 = '%2'").arg(column, value);
    if (column == "ctimestamp")
        return QStringLiteral("%1::varchar %2 '%%3%'::varchar")
            .arg(column, search.offline ? QStringLiteral("like") : QStringLiteral("ilike"), value);
    if (search.editor == Editor::CheckBox)
        return value == "2" ? QStringLiteral("%1 = 2::varchar").arg(column)
                            : QStringLiteral("(%1 != 2::varchar OR %2 IS NULL)").arg(column, column);
    if (column == "folder")
        return QStringLiteral("%1 = '%2'").arg(column, value);
    if (column == "changeid")
        return contains(column, value, search.offline);
    if (column == "bemerkung" || search.editor == Editor::Line || search.editor == Editor::NumericLine)
        return lineClause(column, value, search.editor == Editor::NumericLine, search);
    return QStringLiteral("%1 = '%2'").arg(column, value);
}

QString fullTextSelection(const QStringList &hits, bool offline)
{
    QStringList ids;
    for (const QString &hit : hits) {
        const QStringList fields = hit.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        const QString id = fields.value(offline ? 1 : 0);
        if (!id.isEmpty())
            ids << id;
    }
    if (ids.isEmpty())
        ids << QStringLiteral("-1");
    return QStringLiteral("OPT:SELECTION;") + ids.join(',');
}

QString fullTextOption(const QString &words)
{
    return QStringLiteral("OPT:FULLTEXT") + recordformat::fieldSeparator + words;
}
