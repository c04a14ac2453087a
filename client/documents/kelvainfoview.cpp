#include "documents/kelvainfoview.h"

#include "documents/documentcolumns.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/plaincelldelegate.h"
#include "documents/qinfoviewmodel.h"
#include "documents/rowicons.h"
#include "widgets/itemroles.h"
#include "widgets/mysortfilterproxymodel.h"

#include <QAction>
#include <QCalendarWidget>
#include <QCoreApplication>
#include <QDebug>
#include <QDialog>
#include <QDropEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>
#include <QStandardItem>

namespace {

bool isReturn(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// Keys that begin an edit of the current cell.
bool startsEditing(const QKeyEvent &event)
{
    if (isReturn(event))
        return true;
    const QString text = event.text();
    if (text.isEmpty())
        return false;
    const QChar first = text.at(0);
    if (first.unicode() > 127)
        return first.isLetterOrNumber();
    return (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z') || (first >= '0' && first <= '9');
}

} // namespace

KelvaInfoView::KelvaInfoView(QWidget *parent)
    : QTableView(parent),
      m_model(new QInfoViewModel(this)),
      m_proxy(new MySortFilterProxyModel(this))
{
    m_proxy->setDynamicSortFilter(true);
    m_proxy->setSourceModel(m_model);
    setModel(m_proxy);
    setItemDelegate(new PlainCellDelegate(this));

    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTabKeyNavigation(false); // Tab leads on to the next panel; the arrows go from cell to cell
    verticalHeader()->setDefaultSectionSize(verticalHeader()->fontMetrics().height() + 8);
    horizontalHeader()->setSectionsMovable(true);
    horizontalHeader()->setHighlightSections(false);
    setSortingEnabled(true);

    QHeaderView *header = horizontalHeader();
    connect(header, SIGNAL(sectionCountChanged(int, int)), this, SLOT(saveHeaderState()));
    connect(header, SIGNAL(sectionMoved(int, int, int)), this, SLOT(saveHeaderState()));
    connect(header, SIGNAL(sectionResized(int, int, int)), this, SLOT(saveHeaderState()));
    connect(header, SIGNAL(sortIndicatorChanged(int, Qt::SortOrder)), this, SLOT(saveHeaderState()));
    loadActionMenu();
}

KelvaInfoView::~KelvaInfoView() = default;

void KelvaInfoView::setArchiveClient(KelvaArchiveWorker *worker, ClassifyInterface *client)
{
    archiveClient = worker;
    classifyClient = client;
}

int KelvaInfoView::rowCount() const
{
    return m_model->rowCount();
}

QStandardItem *KelvaInfoView::item(int proxyRow, int column) const
{
    return m_model->itemFromIndex(m_proxy->mapToSource(m_proxy->index(proxyRow, column)));
}

QStandardItem *KelvaInfoView::itemFromSource(int row, int column) const
{
    return m_model->item(row, column);
}

QModelIndex KelvaInfoView::currentIndex() const
{
    return m_proxy->mapToSource(QTableView::currentIndex());
}

QModelIndexList KelvaInfoView::selectedIndexes() const
{
    QModelIndexList indexes = QTableView::selectedIndexes();
    for (QModelIndex &index : indexes)
        index = m_proxy->mapToSource(index);
    return indexes;
}

QItemSelection KelvaInfoView::getSelection() const
{
    return selectionModel()->selection();
}

void KelvaInfoView::setSelection(const QItemSelection &selection)
{
    selectionModel()->select(selection, QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

QString KelvaInfoView::getCurrentFolder() const
{
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty()
               ? QString()
               : rows.first().siblingAtColumn(documentcolumn::folder).data(itemrole::rawValue).toString();
}

QStringList KelvaInfoView::getCurrentDocIds(bool onlyWritable, bool notDeleted) const
{
    QStringList ids;
    const QModelIndexList rows = selectionModel()->selectedRows();
    for (const QModelIndex &row : rows) {
        if (onlyWritable && row.data(itemrole::readOnly).toInt() == 1)
            continue;
        if (notDeleted && row.siblingAtColumn(documentcolumn::status).data(itemrole::rawValue).toInt() < 0)
            continue;
        ids << row.data(itemrole::classificationId).toString();
    }
    return ids;
}

QStringList KelvaInfoView::getCurrentRealDocIds(bool onlyWritable) const
{
    QStringList ids;
    const QModelIndexList rows = selectionModel()->selectedRows();
    for (const QModelIndex &row : rows)
        if (!onlyWritable || row.data(itemrole::readOnly).toInt() != 1)
            ids << row.data(Qt::DisplayRole).toString();
    return ids;
}

QMap<QString, QString> KelvaInfoView::getCurrentBemerkungen(bool onlyWritable) const
{
    QMap<QString, QString> descriptions;
    const QModelIndexList rows = selectionModel()->selectedRows();
    for (const QModelIndex &row : rows)
        if (!onlyWritable || row.data(itemrole::readOnly).toInt() != 1)
            descriptions.insert(
                row.data(Qt::DisplayRole).toString(),
                row.siblingAtColumn(documentcolumn::description).data(Qt::DisplayRole).toString());
    return descriptions;
}

QList<QStandardItem *> KelvaInfoView::findItemsByData(const QString &value, int role, Qt::MatchFlags flags,
                                                      int column) const
{
    QList<QStandardItem *> items;
    const QModelIndexList hits = m_model->match(m_model->index(0, column), role, value, -1, flags);
    for (const QModelIndex &hit : hits)
        items << m_model->itemFromIndex(hit);
    return items;
}

bool KelvaInfoView::isReadOnly(const QString &docId) const
{
    const QList<QStandardItem *> items =
        findItemsByData(docId, itemrole::classificationId, Qt::MatchExactly, documentcolumn::id);
    for (const QStandardItem *item : items)
        if (item->data(itemrole::readOnly).toInt() == 1)
            return true;
    return false;
}

QString KelvaInfoView::getVersion(const QString &docId) const
{
    const QList<QStandardItem *> items =
        findItemsByData(docId, itemrole::classificationId, Qt::MatchExactly, documentcolumn::id);
    const QStandardItem *version =
        items.isEmpty() ? nullptr : m_model->item(items.first()->row(), documentcolumn::version);
    return version ? version->text() : QString();
}

QList<int> KelvaInfoView::getItemRows(const QString &docId) const
{
    // Indexes only: an item would note its position when asked for it, which is a write.
    QList<int> rows;
    const QVector<int> found = m_rowsOfDocument.value(docId);
    for (const int row : found)
        rows << m_proxy->mapFromSource(m_model->index(row, documentcolumn::id)).row();
    return rows;
}

void KelvaInfoView::commitData(QWidget *editor)
{
    const QScopedValueRollback<bool> committing(m_committing, true);
    QTableView::commitData(editor);
}

void KelvaInfoView::finishEditing()
{
    if (state() != EditingState || m_committing)
        return;
    const QPointer<QWidget> editor = indexWidget(QTableView::currentIndex());
    if (editor)
        commitData(editor);
    if (editor)
        closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void KelvaInfoView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (m_model->rowCount() > 0 || m_emptyText.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Text));
    const int margin = fontMetrics().height();
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

void KelvaInfoView::keyPressEvent(QKeyEvent *event)
{
    if (state() == EditingState) {
        // A key that a text editor has no use for would move the selection away from under it.
        event->ignore();
        return;
    }
    const QModelIndex current = currentIndex();
    const bool mayEdit = editTriggers() != QAbstractItemView::NoEditTriggers;
    const bool plain =
        mayEdit && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    // A number may also begin with its sign or its point.
    const bool begins = startsEditing(*event) ||
                        (current.data(itemrole::numeric).toBool() &&
                         QString("-+.,").contains(event->text().left(1)) && !event->text().isEmpty());
    if (plain && (current.flags() & Qt::ItemIsEditable) && begins) {
        event->ignore();
        startEditing(*event);
        return;
    }
    QTableView::keyPressEvent(event);
}

void KelvaInfoView::startEditing(const QKeyEvent &key)
{
    const QModelIndex cell = QTableView::currentIndex();
    edit(cell, DoubleClicked, nullptr); // a click that waits to become a double one would hold it back
    auto *editor = indexWidget(cell);
    if (auto *calendar = qobject_cast<QDialog *>(editor) ? editor->findChild<QCalendarWidget *>() : nullptr)
        editor = calendar->findChild<QAbstractItemView *>();
    else if (!qobject_cast<QLineEdit *>(editor))
        editor = nullptr;
    if (!editor || isReturn(key))
        return;
    // The key is the first one typed; the editor has all of its text selected.
    QKeyEvent typed(key);
    QCoreApplication::sendEvent(editor, &typed);
}

bool KelvaInfoView::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    // Rows that are about to be replaced cannot be edited.
    return updatesEnabled() && QTableView::edit(index, trigger, event);
}

void KelvaInfoView::mousePressEvent(QMouseEvent *event)
{
    qDebug("MOUSE PRESS");
    if (event->button() == Qt::RightButton && (event->modifiers() & Qt::ControlModifier)) {
        event->ignore();
        return;
    }
    // A box takes the press for itself; the cell that is edited is the current one all the same.
    const QModelIndex pressed = indexAt(event->pos());
    if (event->button() == Qt::LeftButton && pressed.isValid() &&
        qobject_cast<KelvaCheckBoxDelegate *>(itemDelegateForColumn(pressed.column())))
        QTableView::setCurrentIndex(pressed);
    QTableView::mousePressEvent(event);
}

void KelvaInfoView::mouseReleaseEvent(QMouseEvent *event)
{
    qDebug("MOUSE RELEASE");
    QTableView::mouseReleaseEvent(event);
}

void KelvaInfoView::dragEnterEvent(QDragEnterEvent *event)
{
    emit gotDragEnterEvent(event);
}

void KelvaInfoView::dragMoveEvent(QDragMoveEvent *event)
{
    emit gotDragMoveEvent(event);
}

void KelvaInfoView::dropEvent(QDropEvent *event)
{
    emit gotDropEvent(event);
}
