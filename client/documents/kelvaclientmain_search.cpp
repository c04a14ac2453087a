#include "app/kelvaclientmain.h"

#include "documents/itemroles.h"
#include "documents/kelvacalendardelegate.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvalinedelegate.h"
#include "documents/kelvasimplecombodelegate.h"
#include "documents/onelinesearch.h"
#include "documents/searchtexts.h"
#include "folders/kelvaviewdelegate.h"
#include "search/kelvaextsearch.h"
#include "search/kelvastatusbarext.h"
#include "server/kelvaarchiveworker.h"
#include "server/plainbox.h"
#include "server/recordformat.h"
#include "server/waitcursor.h"

#include <QLocale>
#include <QSignalBlocker>

#include <utility>

namespace {

const char groupBoxSheet[] =
    "QGroupBox::title { subcontrol-position: top center; subcontrol-origin: margin; padding-top: "
    "0px;padding-left:1px;padding-right:1px;} QGroupBox { %1border: 1px solid gray;border-radius: "
    "5px;margin-top: "
    "1ex;}";

OneLineSearch::Editor editorOf(const QAbstractItemDelegate *delegate)
{
    if (const auto *line = qobject_cast<const KelvaLineDelegate *>(delegate))
        return line->getIsNumeric() ? OneLineSearch::Editor::NumericLine : OneLineSearch::Editor::Line;
    if (qobject_cast<const KelvaCheckBoxDelegate *>(delegate))
        return OneLineSearch::Editor::CheckBox;
    if (qobject_cast<const KelvaCalendarDelegate *>(delegate))
        return OneLineSearch::Editor::Calendar;
    return OneLineSearch::Editor::Other;
}

} // namespace

void KelvaClientMain::searchComboChanged(int index)
{
    searchComboChanged(index, true);
}

void KelvaClientMain::searchComboChanged(int index, bool focus)
{
    const QString column = m_SearchCombo->itemData(index).toString();
    if (column == searchtext::extendedSearchKey) {
        replaceSearchCell(nullptr);
        enableSearchCell(false);
        if (!focus)
            return;
        searchAnew(false);
        return;
    }
    // A text is kept only from one line editor to the next: it means nothing to a list of choices.
    const bool wasLine = qobject_cast<KelvaLineDelegate *>(m_SearchString->itemDelegateForColumn(0));
    const QString text = wasLine ? m_SearchString->item(0, 0)->text() : QString();
    enableSearchCell(true);
    KelvaDelegate *delegate = searchDelegate(column);
    replaceSearchCell(delegate);
    QTableWidgetItem *cell = m_SearchString->item(0, 0);
    {
        const QSignalBlocker blocker(m_SearchString);
        if (qobject_cast<KelvaLineDelegate *>(delegate))
            cell->setText(text);
        else
            presetChoice(cell, delegate);
    }
    const bool active = m_bClearSuchen->isEnabled();
    const bool putBack = !text.isEmpty() && cell->text() == text;
    if (active ? cell->text().isEmpty() : !putBack) {
        doClearSearch(true);
    } else {
        searchAnew(false);
    }
    if (!focus)
        return;
    m_SearchString->setFocus(Qt::OtherFocusReason);
    if (qobject_cast<KelvaCalendarDelegate *>(delegate) || qobject_cast<KelvaViewDelegate *>(delegate))
        m_SearchString->editItem(cell);
}

void KelvaClientMain::enableSearchCell(bool enable)
{
    if (!enable)
        m_SearchString->setCurrentCell(-1, -1); // nothing is chosen in what cannot be used
    m_SearchString->setEnabled(enable);
}

/// An empty cell with this delegate, or with none.
void KelvaClientMain::replaceSearchCell(KelvaDelegate *delegate)
{
    const QSignalBlocker blocker(m_SearchString);
    m_SearchString->closePersistentEditor(m_SearchString->item(0, 0));
    m_SearchString->setItem(0, 0, new QTableWidgetItem);
    // Before the old one dies: the table would keep an entry without a delegate and paint with it.
    QAbstractItemDelegate *old = m_SearchString->itemDelegateForColumn(0);
    m_SearchString->setItemDelegateForColumn(0, delegate);
    if (old)
        old->deleteLater();
}

/// A list of choices stands open in the search cell, on its first entry.
void KelvaClientMain::presetChoice(QTableWidgetItem *cell, const KelvaDelegate *delegate)
{
    if (const auto *combo = qobject_cast<const KelvaComboDelegate *>(delegate)) {
        if (combo->getValues().isEmpty())
            return;
        const QString key = combo->getValues().first().section(recordformat::fieldSeparator, 0, 0);
        cell->setText(combo->getData(key));
        cell->setData(itemrole::rawValue, key);
    } else if (!qobject_cast<const KelvaSimpleComboDelegate *>(delegate)) {
        return;
    }
    m_SearchString->openPersistentEditor(cell);
    // The first entry stands there already: choosing it changes nothing in the cell.
    const QModelIndex place = m_SearchString->model()->index(0, 0);
    connect(m_SearchString->indexWidget(place), SIGNAL(activated(int)), this, SLOT(searchTextChanged()));
}

/// A delegate for the search cell: words for the full text, otherwise a clone of the column's, or null.
KelvaDelegate *KelvaClientMain::searchDelegate(const QString &column) const
{
    KelvaDelegate *delegate = nullptr;
    if (column == searchtext::fullText())
        delegate = new KelvaLineDelegate({}, m_SearchString, 254, false);
    else if (const KelvaDelegate *source = getDelegateForColumn(getColumnIndex(column)))
        delegate = source->clone(m_SearchString);
    // In the search bar the list opens when the user wants it to.
    if (auto *combo = qobject_cast<KelvaComboDelegate *>(delegate))
        combo->setShowPopup(false);
    if (auto *combo = qobject_cast<KelvaSimpleComboDelegate *>(delegate))
        combo->setShowPopup(false);
    if (delegate)
        delegate->setDelegateColumn(0);
    return delegate;
}

void KelvaClientMain::searchTextChanged()
{
    // The cell's editor is still at work: a search may replace cell and editor.
    if (std::exchange(m_searchWaits, true))
        return;
    QMetaObject::invokeMethod(this, "searchEnteredText", Qt::QueuedConnection);
}

void KelvaClientMain::searchEnteredText()
{
    m_searchWaits = false;
    const QTableWidgetItem *cell = m_SearchString->item(0, 0);
    if (cell && !cell->text().isEmpty())
        doSearch(false);
}

void KelvaClientMain::doCheckSearch()
{
    // The extended search is repeated as it stands, without its dialog.
    if (m_bClearSuchen->isEnabled())
        doSearch(m_SearchCombo->currentData() == searchtext::extendedSearchKey);
}

/// Drops the search before. When the new one cannot be done, nothing is searched for.
void KelvaClientMain::searchAnew(bool special)
{
    m_query.clearSearch();
    if (!runSearch(special))
        doClearSearch(true);
}

void KelvaClientMain::searchClicked()
{
    {
        // The shortcut leaves an editor open: what was typed into it is meant.
        const QSignalBlocker blocker(m_SearchString);
        m_bSuchen->setFocus();
    }
    if (!runSearch(false))
        m_SearchString->setFocus(Qt::OtherFocusReason); // to type what was missing
}

void KelvaClientMain::doSearch(bool special)
{
    runSearch(special); // when it cannot be done, the search before stays
}

/// False when the search cannot be done; then the user has been told and nothing has changed.
bool KelvaClientMain::runSearch(bool special)
{
    const QString column = m_SearchCombo->currentData().toString();
    if (column == searchtext::extendedSearchKey)
        return searchExtended(special);
    const QTableWidgetItem *cell = m_SearchString->item(0, 0);
    QString value = cell ? cell->data(itemrole::rawValue).toString() : QString();
    if (value.isEmpty() && cell)
        value = cell->text();
    const auto *choices = qobject_cast<KelvaComboDelegate *>(m_SearchString->itemDelegateForColumn(0));
    if (choices && cell && cell->data(itemrole::rawValue).toString().isEmpty()) {
        // A name that was typed instead of chosen.
        const QString key = choices->getValue(value);
        if (key != searchtext::notAssigned())
            value = key;
    }
    if (column == searchtext::fullText()) {
        if (!takeFullText(value, value.size()))
            return false;
        showSearch();
        return true;
    }
    OneLineSearch search;
    search.column = column;
    search.value = value;
    search.editor = editorOf(m_SearchString->itemDelegateForColumn(0));
    search.offline = m_session.offline;
    search.decimalPoint = QLocale().decimalPoint();
    m_query.searchWhere = oneLineClause(search);
    {
        const QSignalBlocker blocker(m_tWOrdner);
        m_tWOrdner->clearSelection();
    }
    showSearch();
    return true;
}

bool KelvaClientMain::searchExtended(bool special)
{
    if (!special && m_extSearch->exec() != QDialog::Accepted) {
        doClearSearch(true);
        return true;
    }
    enableSearchCell(false);
    const QString where = m_extSearch->getFilter();
    const QString words = m_extSearch->getFullText();
    if (words.isEmpty()) {
        m_query.clearSearch();
    } else if (!takeFullText(words, words.size() - 1)) { // it ends in a blank that nobody typed
        return false;
    }
    m_query.searchWhere = where;
    if (!special)
        m_treeSearch->selectActive(m_extSearch->getCurrentFilter());
    showSearch();
    return true;
}

bool KelvaClientMain::takeFullText(const QString &words, int typed)
{
    if (typed < fullTextMinimumLength) {
        plainbox::information(this, tr("full text search"),
                              tr("A minimum of 3 characters is needed for the full text search!"));
        return false;
    }
    // The service's own search takes the words itself; then no hit of the local one is asked for.
    const bool atService = actionErweitererte_Volltextsuche->isChecked() && !m_session.offline;
    const WaitCursor cursor;
    const QStringList hits = atService ? QStringList() : archiveWorker->searchDocs(words);
    m_query.searchFault = atService || !hits.isEmpty() ? QString() : archiveWorker->getLastError();
    m_query.selectionOption = fullTextSelection(hits, m_session.offline);
    m_query.fullTextOption = atService ? fullTextOption(words) : QString();
    return true;
}

void KelvaClientMain::showSearch()
{
    setSearchActive(true);
    updateDocuments({});
}

void KelvaClientMain::doClearSearch(bool update)
{
    m_query.clearSearch();
    setSearchActive(false);
    m_treeSearch->clearSelection();
    m_treeSearch->clearActive();
    m_SearchString->setStyleSheet(QString());
    enableSearchCell(m_SearchCombo->currentData() != searchtext::extendedSearchKey);
    if (update)
        selChanged();
}

void KelvaClientMain::setSearchActive(bool active)
{
    m_bClearSuchen->setEnabled(active);
    m_bClearSuchen2->setEnabled(active);
    statusBarExt->setFilterActive(active);
    m_clearSearch2Label->setText(active ? tr("Filter active") : tr("Filter inactive"));
    groupBox_Search->setStyleSheet(
        QString(groupBoxSheet).arg(active ? QStringLiteral("background-color: #FFFec1;") : QString()));
}
