#include "search/searchtemplate.h"

#include "contract/recordformat.h"

namespace {

QString bare(QString text)
{
    for (const QChar separator :
         {recordformat::fieldSeparator, recordformat::listSeparator, recordformat::rowSeparator})
        text.remove(separator);
    return text;
}

} // namespace

QString writeTemplateRows(const QList<TemplateRow> &rows)
{
    QStringList lines;
    for (const TemplateRow &row : rows)
        lines << QStringList{bare(row.field), bare(row.op), bare(row.valueText), bare(row.storedValue)}.join(
            recordformat::listSeparator);
    return lines.join(recordformat::rowSeparator);
}

QList<TemplateRow> readTemplateRows(const QString &content)
{
    QList<TemplateRow> rows;
    const QStringList lines = content.split(recordformat::rowSeparator, Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QStringList fields = line.split(recordformat::listSeparator, Qt::KeepEmptyParts);
        rows.append({fields.value(0), fields.value(1), fields.value(2), fields.value(3)});
    }
    return rows;
}

SearchTemplate SearchTemplate::parse(const QString &record)
{
    const QStringList fields = record.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
    return {fields.value(0), fields.value(1), fields.value(2),
            fields.value(3).split(recordformat::listSeparator, Qt::SkipEmptyParts)};
}

bool SearchTemplate::isPersonal(const QString &personalRole) const
{
    return roles.size() < 2 && roles.contains(personalRole);
}

QString personalRole(const QString &login)
{
    return QStringLiteral("r_") + login;
}
