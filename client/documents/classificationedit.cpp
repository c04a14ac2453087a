#include "documents/classificationedit.h"

#include "documents/documentcolumns.h"

void classificationedit::replaceField(QStringList &fields, int position, const QString &value)
{
    if (position < fields.size())
        fields.removeAt(position);
    fields.insert(qMin(position, fields.size()), value);
}

QString classificationedit::derivedMainFolder(const QString &oid)
{
    const int first = oid.indexOf('.');
    const int second = oid.indexOf('.', first + 1);
    if (first < 0 || second < 0)
        return oid;
    return oid.mid(first - 1, second - first + 1);
}

void classificationedit::moveToFolder(QStringList &fields, const QString &oid)
{
    const QString main = derivedMainFolder(oid);
    if (fields.value(mainFolder) != main)
        replaceField(fields, mainFolder, main);
    replaceField(fields, folder, oid);
}

void classificationedit::setStatus(QStringList &fields, const QString &newStatus,
                                   const QString &resubmissionDate)
{
    const bool resubmit = newStatus == QLatin1String(documentstatus::resubmission);
    replaceField(fields, resubmission, resubmit ? resubmissionDate : QString());
    replaceField(fields, status, newStatus);
}

void classificationedit::setColumn(QStringList &fields, int column, const QString &value)
{
    replaceField(fields, column - 1, value);
    if (column == documentcolumn::resubmission)
        replaceField(fields, status, QLatin1String(documentstatus::resubmission));
}

bool classificationedit::isStatusNode(const QString &oid)
{
    return oid.startsWith("0.");
}

QString classificationedit::statusOfNode(const QString &oid)
{
    return oid.section('.', 1, 1);
}
