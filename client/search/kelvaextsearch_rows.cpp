#include "search/kelvaextsearch.h"

#include "contract/recordformat.h"
#include "documents/kelvacalendardelegate.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvadelegatewrapper.h"
#include "documents/kelvalinedelegate.h"
#include "documents/kelvamultiselection.h"
#include "folders/kelvaviewdelegate.h"
#include "search/criteriacolumns.h"
#include "search/searchoperators.h"
#include "ui_kelvaextsearch.h"
#include "widgets/itemroles.h"
#include "widgets/searchtexts.h"

#include <QAction>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolButton>

namespace {

const Qt::ItemFlags editable =
    Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable | Qt::ItemIsDragEnabled;

QTableWidgetItem *flaglessItem(const QString &text = QString())
{
    auto *item = new QTableWidgetItem(text);
    item->setFlags(Qt::NoItemFlags);
    return item;
}

QTableWidgetItem *grayItem(const QString &text = QString())
{
    QTableWidgetItem *item = flaglessItem(text);
    item->setBackground(QColor("gray"));
    item->setForeground(QColor("gray"));
    return item;
}

void copyValue(const QTableWidgetItem *from, QTableWidgetItem *to)
{
    for (const int role : {int(Qt::DisplayRole), int(Qt::DecorationRole), int(itemrole::storedId),
                           int(itemrole::rawValue), int(itemrole::content)})
        to->setData(role, from->data(role));
}

FieldKind kindOf(const KelvaDelegate *delegate)
{
    return delegate ? delegate->kind() : FieldKind::Plain;
}

/// What is typed into it: a line, or the words of the full text.
bool isTyped(const QString &field, const KelvaDelegate *delegate)
{
    const FieldKind kind = kindOf(delegate);
    return field == searchtext::fullText() || kind == FieldKind::Text || kind == FieldKind::Number;
}

} // namespace

QTableWidgetItem *KelvaExtSearch::cell(int row, int column) const
{
    return m_ui->m_extSearchTable->item(row, column);
}

QString KelvaExtSearch::cellText(int row, int column) const
{
    return cell(row, column)->text();
}

KelvaDelegate *KelvaExtSearch::valueDelegate(int row) const
{
    return qobject_cast<KelvaDelegate *>(m_cells->getDelegate(row, criteriacolumn::value));
}

KelvaComboDelegate *KelvaExtSearch::operatorDelegate(int row) const
{
    return qobject_cast<KelvaComboDelegate *>(m_cells->getDelegate(row, criteriacolumn::op));
}

int KelvaExtSearch::rowOf(const QObject *button) const
{
    for (int row = 0; row < m_ui->m_extSearchTable->rowCount(); ++row)
        for (const int column : {criteriacolumn::several, criteriacolumn::remove})
            if (m_ui->m_extSearchTable->cellWidget(row, column) == button)
                return row;
    return -1;
}

int KelvaExtSearch::appendRow()
{
    QTableWidget *table = m_ui->m_extSearchTable;
    const QSignalBlocker blocker(table);
    const int row = table->rowCount();
    table->insertRow(row);
    table->setItem(row, criteriacolumn::field, new QTableWidgetItem);
    // Both wait for the field.
    table->setItem(row, criteriacolumn::op, flaglessItem());
    table->setItem(row, criteriacolumn::value, flaglessItem());
    m_cells->addDelegate(row, criteriacolumn::field, m_fieldDelegate->clone(table));
    table->openPersistentEditor(cell(row, criteriacolumn::field));
    addButtons(row);
    return row;
}

void KelvaExtSearch::addLine()
{
    const int row = appendRow();
    m_ui->m_extSearchTable->setCurrentCell(row, criteriacolumn::field);
    const QModelIndex field = m_ui->m_extSearchTable->model()->index(row, criteriacolumn::field);
    if (QWidget *editor = m_ui->m_extSearchTable->indexWidget(field))
        editor->setFocus();
}

void KelvaExtSearch::addButtons(int row)
{
    const auto add = [this, row](int column, QAction *action, const char *slot) {
        auto *button = new QToolButton;
        action->setParent(button);
        button->setDefaultAction(action);
        button->setAccessibleName(action->toolTip());
        // Taking the focus makes an editor that is open write its value first.
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, SIGNAL(clicked()), this, slot);
        m_ui->m_extSearchTable->setItem(row, column, flaglessItem());
        m_ui->m_extSearchTable->setCellWidget(row, column, button);
    };
    auto *several = new QAction(tr("&MC"), this);
    several->setToolTip(tr("Multiple choice"));
    several->setEnabled(false);
    add(criteriacolumn::several, several, SLOT(chooseValues()));
    auto *remove = new QAction(QIcon(":/icons/delete.png"), tr("&Remove"), this);
    add(criteriacolumn::remove, remove, SLOT(removeLine()));
}

void KelvaExtSearch::criterionChanged(QTableWidgetItem *item)
{
    if (item->column() == criteriacolumn::field)
        filterChanged(item->row());
    else if (item->column() == criteriacolumn::op)
        operatorChanged(item->row());
    else if (item->column() == criteriacolumn::value)
        valueChanged(item);
}

/// Editors that write the text alone leave a stored value behind, which would go before it.
void KelvaExtSearch::valueChanged(QTableWidgetItem *item)
{
    const FieldKind kind = kindOf(valueDelegate(item->row()));
    if (kind == FieldKind::Choice || kind == FieldKind::Folder)
        return;
    const QSignalBlocker blocker(m_ui->m_extSearchTable);
    item->setData(itemrole::rawValue, QVariant());
}

void KelvaExtSearch::leaveTable(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    // The table goes on to the next cell that can be edited, past the buttons of the row, and from the last
    // one round to the first.
    const QModelIndex index = m_ui->m_extSearchTable->indexAt(editor->geometry().center());
    if (hint == QAbstractItemDelegate::RevertModelCache &&
        m_ui->m_extSearchTable->isPersistentEditorOpen(index)) {
        // Such an editor stays, so that Escape in it means the dialog.
        QMetaObject::invokeMethod(this, "reject", Qt::QueuedConnection);
        return;
    }
    const bool forward = hint == QAbstractItemDelegate::EditNextItem;
    if (!forward && hint != QAbstractItemDelegate::EditPreviousItem)
        return;
    const int step = forward ? 1 : -1;
    for (int column = index.column() + step; column >= 0 && column <= criteriacolumn::value; column += step)
        if (cell(index.row(), column)->flags() & Qt::ItemIsEnabled)
            return;
    if (QWidget *stop = stopBehind(index.row(), index.column(), forward))
        QTimer::singleShot(0, stop, SLOT(setFocus()));
}

/// Where Tab goes from a cell of the criteria, to an editor that is open or to a button.
QWidget *KelvaExtSearch::stopBehind(int row, int column, bool forward)
{
    QTableWidget *table = m_ui->m_extSearchTable;
    const int step = forward ? 1 : -1;
    for (int place = row * criteriacolumn::count + column + step;
         place >= 0 && place < table->rowCount() * criteriacolumn::count; place += step) {
        const QModelIndex next =
            table->model()->index(place / criteriacolumn::count, place % criteriacolumn::count);
        QWidget *widget = table->indexWidget(next);
        if (!widget && next.flags().testFlag(Qt::ItemIsEditable) &&
            next.flags().testFlag(Qt::ItemIsEnabled)) {
            table->setCurrentIndex(next);
            table->edit(next);
            widget = table->indexWidget(next);
        }
        if (widget && widget->isEnabled() && !(widget->focusPolicy() == Qt::NoFocus))
            return widget;
    }
    return forward ? static_cast<QWidget *>(m_ui->m_bAdd) : m_ui->m_bCancel;
}

bool KelvaExtSearch::focusNextPrevChild(bool next)
{
    QTableWidget *table = m_ui->m_extSearchTable;
    QWidget *focused = focusWidget();
    QWidget *stop = nullptr;
    if (const int row = rowOf(focused); row >= 0)
        stop = stopBehind(row, columnOf(row, focused), next);
    else if (table->rowCount() > 0 && focused == (next ? m_ui->m_bCancel : m_ui->m_bAdd))
        stop =
            next ? stopBehind(0, -1, true) : stopBehind(table->rowCount() - 1, criteriacolumn::count, false);
    if (!stop)
        return QDialog::focusNextPrevChild(next);
    stop->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

int KelvaExtSearch::columnOf(int row, const QWidget *button) const
{
    return m_ui->m_extSearchTable->cellWidget(row, criteriacolumn::several) == button
               ? criteriacolumn::several
               : criteriacolumn::remove;
}

void KelvaExtSearch::filterChanged(int row)
{
    const QSignalBlocker blocker(m_ui->m_extSearchTable);
    const QString field = fieldKey(row);
    const KelvaDelegate *source = delegateFor(field);
    const QString former = cell(row, criteriacolumn::field)->data(itemrole::storedId).toString();
    // A value means nothing to another field, unless it was typed and is typed there as well.
    const bool keepValue = former == field || (isTyped(former, valueDelegate(row)) && isTyped(field, source));
    cell(row, criteriacolumn::field)->setData(itemrole::storedId, field);
    replaceValueDelegate(row, source);
    if (!keepValue)
        m_ui->m_extSearchTable->setItem(row, criteriacolumn::value, new QTableWidgetItem);
    if (isOrRow(row) || rowsBelow(row) > 0)
        return; // field and operator of a group are fixed
    offerOperators(row, source);
    if (auto *button =
            qobject_cast<QToolButton *>(m_ui->m_extSearchTable->cellWidget(row, criteriacolumn::several)))
        button->defaultAction()->setEnabled(searchoperators::allowsSeveralValues(kindOf(source)));
}

void KelvaExtSearch::replaceValueDelegate(int row, const KelvaDelegate *source)
{
    closeEditors(row, {criteriacolumn::value});
    m_cells->removeDelegate(row, criteriacolumn::value);
    if (!source)
        return;
    KelvaDelegate *delegate = source->clone(m_ui->m_extSearchTable);
    delegate->setDelegateColumn(criteriacolumn::value);
    if (auto *calendar = qobject_cast<KelvaCalendarDelegate *>(delegate))
        calendar->setExtended(true);
    m_cells->addDelegate(row, criteriacolumn::value, delegate);
}

void KelvaExtSearch::offerOperators(int row, const KelvaDelegate *source)
{
    const QString former = cellText(row, criteriacolumn::op);
    closeEditors(row, {criteriacolumn::op});
    m_cells->removeDelegate(row, criteriacolumn::op);
    if (cellText(row, criteriacolumn::field) == searchtext::fullText()) {
        m_ui->m_extSearchTable->setItem(row, criteriacolumn::op, flaglessItem(searchtext::searchFor()));
        return;
    }
    const QStringList operators = searchoperators::rows(searchoperators::listFor(kindOf(source)), m_offline);
    auto *delegate = new KelvaComboDelegate(operators, {}, m_cells, false, QIcon(), true, false);
    delegate->setShowPopup(false);
    m_cells->addDelegate(row, criteriacolumn::op, delegate);
    QString op = delegate->getValue(former);
    if (op == searchtext::notAssigned())
        op = operators.first().section(recordformat::fieldSeparator, 0, 0);
    auto *item = new QTableWidgetItem(delegate->getData(op));
    item->setData(itemrole::rawValue, op);
    m_ui->m_extSearchTable->setItem(row, criteriacolumn::op, item);
    m_ui->m_extSearchTable->openPersistentEditor(item);
}

void KelvaExtSearch::operatorChanged(int row)
{
    const QSignalBlocker blocker(m_ui->m_extSearchTable);
    for (int below = row + 1; below <= row + rowsBelow(row); ++below) {
        cell(below, criteriacolumn::op)->setText(searchtext::orPrefix() + cellText(row, criteriacolumn::op));
        cell(below, criteriacolumn::op)
            ->setData(itemrole::rawValue, cell(row, criteriacolumn::op)->data(itemrole::rawValue));
    }
}

void KelvaExtSearch::closeEditors(int row, std::initializer_list<int> columns)
{
    for (const int column : columns)
        m_ui->m_extSearchTable->closePersistentEditor(cell(row, column));
}

bool KelvaExtSearch::isOrRow(int row) const
{
    QString op = cellText(row, criteriacolumn::op);
    return searchtext::takeOrPrefix(&op);
}

/// How many further values the row has.
int KelvaExtSearch::rowsBelow(int row) const
{
    int count = 0;
    while (row + count + 1 < m_ui->m_extSearchTable->rowCount() && isOrRow(row + count + 1))
        ++count;
    return count;
}

/// Field and operator of a row are shown as those of a further value of the row above.
void KelvaExtSearch::makeOrRow(int row, const QString &op, const QString &displayText)
{
    QTableWidget *table = m_ui->m_extSearchTable;
    const QSignalBlocker blocker(table);
    closeEditors(row, {criteriacolumn::field, criteriacolumn::op, criteriacolumn::value});
    for (const int column : {criteriacolumn::field, criteriacolumn::op})
        m_cells->removeDelegate(row, column);
    QTableWidgetItem *field = grayItem();
    for (const int role : {int(Qt::DisplayRole), int(itemrole::storedId), int(itemrole::rawValue)})
        field->setData(role, cell(row, criteriacolumn::field)->data(role));
    table->setItem(row, criteriacolumn::field, field);
    QTableWidgetItem *item = flaglessItem(searchtext::orPrefix() + displayText);
    item->setData(itemrole::rawValue, op);
    item->setForeground(QColor("black"));
    table->setItem(row, criteriacolumn::op, item);
    for (const int column : {criteriacolumn::several, criteriacolumn::remove}) {
        table->removeCellWidget(row, column);
        table->setItem(row, column, grayItem());
    }
}

/// Field and operator stay as they are while further values follow; without this they would no longer fit.
void KelvaExtSearch::fixHead(int row)
{
    const QSignalBlocker blocker(m_ui->m_extSearchTable);
    for (const int column : {criteriacolumn::field, criteriacolumn::op}) {
        closeEditors(row, {column});
        cell(row, column)->setFlags(Qt::NoItemFlags);
        cell(row, column)->setForeground(QColor("black"));
    }
}

void KelvaExtSearch::freeHead(int row)
{
    const QSignalBlocker blocker(m_ui->m_extSearchTable);
    for (const int column : {criteriacolumn::field, criteriacolumn::op}) {
        cell(row, column)->setFlags(editable);
        cell(row, column)->setData(Qt::ForegroundRole, QVariant());
        m_ui->m_extSearchTable->openPersistentEditor(cell(row, column));
    }
}

void KelvaExtSearch::insertOrRow(int row, const QTableWidgetItem *value)
{
    QTableWidget *table = m_ui->m_extSearchTable;
    const QSignalBlocker blocker(table);
    const int head = row - 1;
    table->insertRow(row);
    for (int column = 0; column < criteriacolumn::count; ++column)
        table->setItem(row, column, new QTableWidgetItem);
    m_cells->insertDelegate(row, criteriacolumn::value, valueDelegate(head)->clone(table));
    copyValue(value, cell(row, criteriacolumn::value));
    for (const int role : {int(Qt::DisplayRole), int(itemrole::storedId), int(itemrole::rawValue)})
        cell(row, criteriacolumn::field)->setData(role, cell(head, criteriacolumn::field)->data(role));
    QString op = cellText(head, criteriacolumn::op);
    searchtext::takeOrPrefix(&op);
    makeOrRow(row, cell(head, criteriacolumn::op)->data(itemrole::rawValue).toString(), op);
}

void KelvaExtSearch::chooseValues()
{
    const int row = rowOf(sender());
    if (row < 0 || !valueDelegate(row))
        return;
    QList<QTableWidgetItem *> items;
    const int below = rowsBelow(row);
    for (int i = row; i <= row + below; ++i)
        if (!cellText(i, criteriacolumn::value).isEmpty())
            items << cell(i, criteriacolumn::value);
    KelvaMultiSelection dialog(valueDelegate(row), items, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (dialog.getRows() == 0) {
        removeRows(row, 1 + below);
        return;
    }
    {
        const QSignalBlocker blocker(m_ui->m_extSearchTable);
        copyValue(dialog.getItem(0), cell(row, criteriacolumn::value));
    }
    removeRows(row + 1, below);
    for (int i = 1; i < dialog.getRows(); ++i)
        insertOrRow(row + i, dialog.getItem(i));
    if (dialog.getRows() > 1)
        fixHead(row);
    else if (below > 0)
        freeHead(row);
}

void KelvaExtSearch::removeLine()
{
    const int row = rowOf(sender());
    if (row >= 0)
        removeRows(row, 1 + rowsBelow(row));
}

void KelvaExtSearch::removeRows(int row, int count)
{
    const QSignalBlocker blocker(m_ui->m_extSearchTable);
    for (int i = row + count - 1; i >= row; --i) {
        closeEditors(i, {criteriacolumn::field, criteriacolumn::op, criteriacolumn::value});
        m_cells->removeAllRowDelegates(i);
        m_ui->m_extSearchTable->removeRow(i);
    }
}

void KelvaExtSearch::clearSearch()
{
    removeRows(0, m_ui->m_extSearchTable->rowCount());
}
