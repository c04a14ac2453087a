#include "documents/searchcell.h"

#include "contract/recordformat.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvalinedelegate.h"
#include "widgets/itemroles.h"
#include "widgets/searchtexts.h"

#include <QHeaderView>
#include <QSignalBlocker>
#include <QTableWidget>

#include <utility>

namespace {

constexpr int longestText = 254;

} // namespace

SearchCell::SearchCell(QTableWidget *table) : QObject(table), m_table(table)
{
    m_table->resize(200, 40);
    m_table->setColumnCount(1);
    m_table->setRowCount(1);
    m_table->setItem(0, 0, new QTableWidgetItem);
    m_table->setRowHeight(0, 22);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->hide();
    m_table->verticalHeader()->hide();
    connect(m_table, SIGNAL(itemChanged(QTableWidgetItem *)), this, SLOT(noteEntry()));
}

QTableWidgetItem *SearchCell::cell() const
{
    return m_table->item(0, 0);
}

void SearchCell::takeWords()
{
    replace(new KelvaLineDelegate({}, m_table, longestText, false));
}

void SearchCell::takeLike(const KelvaDelegate *column)
{
    KelvaDelegate *delegate = column ? column->clone(m_table) : nullptr;
    if (delegate) {
        delegate->setShowPopup(false); // here the list opens when the user wants it to
        delegate->setDelegateColumn(0);
    }
    replace(delegate);
    if (delegate && (delegate->kind() == FieldKind::Choice || delegate->kind() == FieldKind::Values))
        openList(delegate);
}

void SearchCell::clear()
{
    const QSignalBlocker blocker(m_table);
    m_table->setItem(0, 0, new QTableWidgetItem);
}

void SearchCell::replace(KelvaDelegate *delegate)
{
    const QSignalBlocker blocker(m_table);
    m_table->closePersistentEditor(cell());
    m_table->setItem(0, 0, new QTableWidgetItem);
    // Before the old one dies: the table would keep an entry without a delegate and paint with it.
    QAbstractItemDelegate *old = m_table->itemDelegateForColumn(0);
    m_table->setItemDelegateForColumn(0, delegate);
    if (old)
        old->deleteLater();
    m_table->update();
}

void SearchCell::openList(const KelvaDelegate *delegate)
{
    const QSignalBlocker blocker(m_table);
    if (const auto *choices = qobject_cast<const KelvaComboDelegate *>(delegate)) {
        if (choices->getValues().isEmpty())
            return;
        const QString key = choices->getValues().first().section(recordformat::fieldSeparator, 0, 0);
        cell()->setText(choices->getData(key));
        cell()->setData(itemrole::rawValue, key);
    }
    m_table->openPersistentEditor(cell());
    // The first entry stands there already: choosing it changes nothing in the cell.
    connect(m_table->indexWidget(m_table->model()->index(0, 0)), SIGNAL(activated(int)), this,
            SLOT(noteEntry()));
}

void SearchCell::setEnabled(bool enable)
{
    if (!enable)
        m_table->setCurrentCell(-1, -1); // nothing is chosen in what cannot be used
    m_table->setEnabled(enable);
}

void SearchCell::edit()
{
    m_table->editItem(cell());
}

FieldKind SearchCell::kind() const
{
    const auto *delegate = qobject_cast<KelvaDelegate *>(m_table->itemDelegateForColumn(0));
    return delegate ? delegate->kind() : FieldKind::Plain;
}

QString SearchCell::text() const
{
    return cell() ? cell()->text() : QString();
}

void SearchCell::setText(const QString &text)
{
    const QSignalBlocker blocker(m_table);
    cell()->setText(text);
}

QString SearchCell::value() const
{
    const QString raw = cell() ? cell()->data(itemrole::rawValue).toString() : QString();
    if (!raw.isEmpty())
        return raw;
    const auto *choices = qobject_cast<KelvaComboDelegate *>(m_table->itemDelegateForColumn(0));
    const QString key = choices ? choices->getValue(text()) : searchtext::notAssigned();
    return key == searchtext::notAssigned() ? text() : key;
}

void SearchCell::noteEntry()
{
    // The cell's editor is still at work: a search may replace cell and editor.
    if (!std::exchange(m_noted, true))
        QMetaObject::invokeMethod(this, "announce", Qt::QueuedConnection);
}

void SearchCell::announce()
{
    m_noted = false;
    if (!m_table->signalsBlocked() && !text().isEmpty())
        emit entered();
}
