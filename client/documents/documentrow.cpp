#include "documents/documentrow.h"

#include "contract/recordformat.h"
#include "documents/documentcolumns.h"

#include <QCoreApplication>

namespace {

const char dateFormat[] = "yyyy-MM-dd";

QString translated(const char *text)
{
    return QCoreApplication::translate("KelvaInfoView", text);
}

void lookOfResubmission(const QString &dateText, const QDate &today, DocumentRowLook &look)
{
    using Clock = DocumentRowLook::Clock;
    look.resubmission = true;
    look.toolTip = translated("Resubmit on: %1").arg(QString(dateText).remove('<')); // no markup in a tip
    // A date that does not parse is zero days away and so counts as due.
    const qint64 days = today.daysTo(QDate::fromString(dateText, dateFormat));
    if (days < 2) {
        look.clock = Clock::Red;
        look.background = QColor(255, 116, 119);
    } else if (days < 4) {
        look.clock = Clock::Yellow;
        look.background = QColor(239, 238, 172);
    } else if (days < 8) {
        look.clock = Clock::Green;
        look.background = QColor(172, 239, 182);
    } else {
        look.clock = Clock::Plain;
    }
}

} // namespace

QDate retentionEnd(const QDate &documentDate, const QString &retention)
{
    const QStringList words = retention.split(';');
    if (words.size() != 3)
        return QDate();
    return documentDate.addYears(words.at(0).toInt())
        .addMonths(words.at(1).toInt())
        .addDays(words.at(2).toInt());
}

DocumentRowLook documentRowLook(const QStringList &fields, const DocumentRowContext &context)
{
    DocumentRowLook look;
    const QStringList ids = fields.value(documentcolumn::id).split(recordformat::documentIdSeparator);
    look.archiveId = ids.value(0);
    look.classificationId = ids.value(1);
    look.unread = context.marksUnread && !context.opened.contains(look.archiveId);

    const QString rights = fields.isEmpty() ? QString() : fields.last();
    bool writable = true;
    if (fields.value(documentcolumn::status) == QLatin1String(documentstatus::resubmission)) {
        writable = rights.contains('W');
        lookOfResubmission(fields.value(documentcolumn::resubmission), context.today, look);
    } else if (context.noEdit) {
        look.redPage = true;
    } else if (!rights.contains('W')) {
        look.redPage = true;
        writable = false;
    }
    look.readOnly = !writable || context.noEdit;
    look.key = look.readOnly;
    look.note = rights.contains('N');

    if (context.trash && rights.contains('F')) {
        look.retention = true;
        look.background = QColor(41, 171, 226);
        look.retentionEnd = retentionEnd(QDate::fromString(fields.value(documentcolumn::date), dateFormat),
                                         context.retention.value(fields.value(documentcolumn::type)));
        if (look.retentionEnd.isValid())
            look.toolTip =
                translated("Resubmission Period until: %1").arg(look.retentionEnd.toString(dateFormat));
    }
    return look;
}

Qt::ItemFlags documentCellFlags(int column, bool readOnly, bool trash)
{
    Qt::ItemFlags flags =
        Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled | Qt::ItemIsEnabled;
    if (trash)
        return flags & ~Qt::ItemIsDragEnabled;
    const bool editable = column == documentcolumn::description || column == documentcolumn::status ||
                          column == documentcolumn::folder || column == documentcolumn::type ||
                          column == documentcolumn::date || column >= documentcolumn::resubmission;
    if (editable && !readOnly)
        flags |= Qt::ItemIsEditable;
    return flags;
}

QString numericCellText(QString value, QChar decimalPoint)
{
    value.replace('.', decimalPoint);
    if (value.endsWith(decimalPoint + QStringLiteral("00")))
        value.chop(2);
    return value;
}

bool sameAttributes(const QString &header, const QStringList &vocabulary)
{
    QStringList known;
    for (const QString &row : vocabulary)
        known << row.section(recordformat::fieldSeparator, 0, 0);
    const QStringList shown = header.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
    return shown.size() == known.size() &&
           shown.mid(documentcolumn::firstAttribute, shown.size() - documentcolumn::firstAttribute - 1) ==
               known.mid(documentcolumn::firstAttribute, known.size() - documentcolumn::firstAttribute - 1);
}
