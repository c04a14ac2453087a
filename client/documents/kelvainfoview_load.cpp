#include "documents/kelvainfoview.h"

#include "documents/documentcolumns.h"
#include "documents/documentrow.h"
#include "documents/itemroles.h"
#include "documents/kelvaiconprovider.h"
#include "documents/kelvalinedelegate.h"
#include "documents/mysortfilterproxymodel.h"
#include "documents/qinfoviewmodel.h"
#include "server/recordformat.h"

#include <QHash>
#include <QHeaderView>
#include <QLocale>
#include <QPainter>
#include <QSignalBlocker>
#include <QStandardItem>

namespace {

constexpr int iconSize = 32;

/// The pictures of one load. Each combination of page, clock, note and key is painted once.
class RowIcons
{
public:
    explicit RowIcons(qreal devicePixelRatio) : m_ratio(devicePixelRatio) {}

    const QIcon &icon(const DocumentRowLook &look, const QString &fileName)
    {
        const QString page = look.redPage ? QStringLiteral("red") : fileKey(fileName);
        const QString key =
            page + '/' + QString::number(int(look.clock)) + (look.note ? "N" : "") + (look.key ? "K" : "");
        const auto known = m_composed.constFind(key);
        if (known != m_composed.constEnd())
            return *known;
        return *m_composed.insert(key, compose(look, basePicture(look, page, fileName)));
    }

private:
    /// Files of one type share an icon; the suffix stands for the type.
    static QString fileKey(const QString &fileName)
    {
        if (fileName.isEmpty())
            return QStringLiteral("green");
        const int dot = fileName.lastIndexOf('.');
        return QStringLiteral("file:") + (dot > 0 ? fileName.mid(dot).toLower() : fileName);
    }

    QIcon basePicture(const DocumentRowLook &look, const QString &page, const QString &fileName)
    {
        if (look.redPage)
            return QIcon(":/icons/page_red.png");
        if (page != "green") {
            const QIcon file = kelvaIconProvider::instance()->fileIcon(fileName);
            if (!file.isNull())
                return file;
        }
        return QIcon(":/icons/page_green.png");
    }

    QIcon compose(const DocumentRowLook &look, const QIcon &base) const
    {
        using Clock = DocumentRowLook::Clock;
        QPixmap picture(QSize(iconSize, iconSize) * m_ratio);
        picture.setDevicePixelRatio(m_ratio);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        base.paint(&painter, QRect(0, 0, iconSize, iconSize));
        static const QHash<int, const char *> clocks{{int(Clock::Red), ":/icons/clock_red.png"},
                                                     {int(Clock::Yellow), ":/icons/clock_yellow.png"},
                                                     {int(Clock::Green), ":/icons/clock_green.png"},
                                                     {int(Clock::Plain), ":/icons/clock.png"}};
        if (look.clock != Clock::None)
            drawMark(painter, clocks.value(int(look.clock)), QPoint(0, 0), iconSize);
        if (look.note)
            drawMark(painter, ":/icons/notizen_icon_24x24.png", QPoint(10, -8), 24);
        if (look.key)
            drawMark(painter, ":/icons/my_page_key.png", QPoint(0, 0), iconSize);
        painter.end();
        return QIcon(picture);
    }

    static void drawMark(QPainter &painter, const char *path, const QPoint &position, int size)
    {
        QIcon(path).paint(&painter, QRect(position, QSize(size, size)));
    }

    const qreal m_ratio;
    QHash<QString, QIcon> m_composed;
};

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
    RowIcons icons(devicePixelRatioF());
    bool anyResubmission = false;

    QList<QList<QStandardItem *>> rows;
    rows.reserve(docs.size());
    for (const QString &doc : docs) {
        const QStringList fields = doc.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        const DocumentRowLook look = documentRowLook(fields, context);
        anyResubmission = anyResubmission || look.resubmission;
        QList<QStandardItem *> row;
        row.reserve(columns);
        for (int column = 0; column < columns; ++column) {
            // Of a row that is too short the last field still is the rights; the missing ones are empty.
            const QString field = column < fields.size() - 1 ? fields.at(column) : QString();
            auto *cell = new QStandardItem(column == documentcolumn::id ? look.archiveId
                                           : numeric.at(column)         ? numericCellText(field, decimalPoint)
                                                                        : field);
            if (column == documentcolumn::id) {
                cell->setData(look.classificationId, itemrole::classificationId);
                cell->setIcon(icons.icon(look, fileNames.value(look.archiveId)));
            } else if (keepsRawValue(column)) {
                cell->setData(field, itemrole::rawValue);
            }
            if (numeric.at(column))
                cell->setData(true, itemrole::numeric);
            if (look.unread)
                cell->setFont(unreadFont);
            cell->setFlags(documentCellFlags(column, look.readOnly, trash));
            cell->setData(look.readOnly ? 1 : 0, itemrole::readOnly);
            if (look.background.isValid())
                cell->setBackground(look.background);
            if (!look.toolTip.isEmpty())
                cell->setToolTip(look.toolTip);
            if (look.retention)
                cell->setData(true, itemrole::retention);
            if (look.retentionEnd.isValid())
                cell->setData(look.retentionEnd, itemrole::retentionEnd);
            row << cell;
        }
        rows << row;
    }
    m_model->replaceRows(rows);
    if (columns > documentcolumn::resubmission)
        setColumnHidden(documentcolumn::resubmission, !anyResubmission);
}
