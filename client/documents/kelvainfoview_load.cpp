#include "documents/kelvainfoview.h"

#include "contract/recordformat.h"
#include "documents/documentcell.h"
#include "documents/documentcolumns.h"
#include "documents/documentrow.h"
#include "documents/kelvalinedelegate.h"
#include "documents/qinfoviewmodel.h"
#include "documents/rowicons.h"
#include "widgets/itemroles.h"
#include "widgets/mysortfilterproxymodel.h"

#include <QHeaderView>
#include <QLocale>
#include <QSignalBlocker>
#include <QStandardItem>

namespace {

/// Archive id to file name, from the entries of getDocumentInfo(); incomplete entries are left out.
QMap<QString, QString> fileNamesOf(const QStringList &infos)
{
    QMap<QString, QString> names;
    for (const QString &info : infos) {
        const QStringList words = info.split(recordformat::listSeparator, Qt::KeepEmptyParts);
        if (words.size() > 2)
            names.insert(words.at(0), words.at(1));
    }
    return names;
}

bool showsName(int column)
{
    return column == documentcolumn::mainFolder || column == documentcolumn::status ||
           column == documentcolumn::folder || column == documentcolumn::type;
}

bool keepsRawValue(int column)
{
    return column == documentcolumn::status || column == documentcolumn::folder ||
           column == documentcolumn::type || column == documentcolumn::date;
}

} // namespace

void KelvaInfoView::loadDocuments(QStringList docs, const QStringList &infos, bool trash,
                                  QMap<QString, QString> retention, QStringList *readDocs)
{
    const QSignalBlocker viewBlocker(this);
    const QSignalBlocker headerBlocker(horizontalHeader());
    m_rowsOfDocument.clear();
    if (docs.isEmpty()) {
        m_model->clear();
        return;
    }
    setSortingEnabled(false);
    QStringList titles = docs.takeFirst().split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
    titles.removeLast(); // the rights letters get no column
    if (m_model->rowCount() == 0 || m_model->columnCount() != titles.size())
        m_model->clear();
    m_model->setColumnCount(titles.size());
    m_model->setHorizontalHeaderLabels(titles);
    m_headerKnown = restoreHeader();
    fillRows(docs, titles.size(), fileNamesOf(infos), trash, retention, readDocs);
    setSortingEnabled(true);
    // The blocked header told the view nothing of its sections.
    updateGeometries();
}

void KelvaInfoView::fillRows(const QStringList &docs, int columns, const QMap<QString, QString> &fileNames,
                             bool trash, const QMap<QString, QString> &retention, const QStringList *readDocs)
{
    DocumentRowContext context;
    context.today = QDate::currentDate();
    context.noEdit = noEdit;
    context.trash = trash;
    context.retention = retention;
    context.marksUnread = readDocs != nullptr;
    if (readDocs)
        context.opened = QSet<QString>(readDocs->cbegin(), readDocs->cend());

    QVector<bool> numeric(columns);
    for (int column = 0; column < columns; ++column) {
        const auto *line = qobject_cast<KelvaLineDelegate *>(itemDelegateForColumn(column));
        numeric[column] = line && line->getIsNumeric();
    }
    const QChar decimalPoint = QLocale().decimalPoint();
    QFont unreadFont = font();
    unreadFont.setWeight(QFont::Bold);
    if (!m_icons || m_icons->devicePixelRatio() != devicePixelRatioF())
        m_icons = std::make_unique<RowIcons>(devicePixelRatioF());
    bool anyResubmission = false;

    QList<QList<QStandardItem *>> rows;
    rows.reserve(docs.size());
    for (const QString &doc : docs) {
        const QStringList fields = doc.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        const DocumentRowLook look = documentRowLook(fields, context);
        anyResubmission = anyResubmission || look.resubmission;
        const auto facts = std::make_shared<const DocumentRowFacts>(DocumentRowFacts{
            documentCellFlags(documentcolumn::id, look.readOnly, trash), look.readOnly, look.unread,
            unreadFont, look.background, look.toolTip, look.retention, look.retentionEnd});
        QList<QStandardItem *> row;
        row.reserve(columns);
        for (int column = 0; column < columns; ++column) {
            // Of a row that is too short the last field still is the rights; the missing ones are empty.
            const QString field = column < fields.size() - 1 ? fields.at(column) : QString();
            const bool fixed = m_attributesReadOnly && column >= documentcolumn::firstAttribute;
            const bool editable =
                documentCellFlags(column, look.readOnly || fixed, trash).testFlag(Qt::ItemIsEditable);
            const CellFace face =
                m_faces && showsName(column) ? m_faces(column, field) : CellFace{field, QIcon()};
            auto *cell = new DocumentCell(column == documentcolumn::id ? look.archiveId
                                          : numeric.at(column)         ? numericCellText(field, decimalPoint)
                                                                       : face.text,
                                          facts, editable, numeric.at(column));
            if (column == documentcolumn::id) {
                cell->setData(look.classificationId, itemrole::classificationId);
                cell->setIcon(m_icons->icon(look, fileNames.value(look.archiveId)));
            } else if (!face.icon.isNull()) {
                cell->setIcon(face.icon);
            }
            if (keepsRawValue(column))
                cell->setData(field, itemrole::rawValue);
            row << cell;
        }
        m_rowsOfDocument[look.classificationId].append(rows.size());
        rows << row;
    }
    m_model->replaceRows(rows);
    if (columns > documentcolumn::resubmission)
        setColumnHidden(documentcolumn::resubmission, !anyResubmission);
}
