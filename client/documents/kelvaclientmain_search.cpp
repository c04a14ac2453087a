#include "app/kelvaclientmain.h"

#include "documents/kelvadelegate.h"
#include "documents/onelinesearch.h"
#include "documents/searchcell.h"
#include "search/kelvaextsearch.h"
#include "search/kelvastatusbarext.h"
#include "server/kelvaarchiveworker.h"
#include "widgets/plainbox.h"
#include "widgets/searchtexts.h"
#include "widgets/waitcursor.h"

#include <QLocale>
#include <QSignalBlocker>

namespace {

const char groupBoxSheet[] =
    "QGroupBox::title { subcontrol-position: top center; subcontrol-origin: margin; padding-top: "
    "0px;padding-left:1px;padding-right:1px;} QGroupBox { %1border: 1px solid gray;border-radius: "
    "5px;margin-top: "
    "1ex;}";

OneLineSearch::Editor editorOf(FieldKind kind)
{
    switch (kind) {
    case FieldKind::Number:
        return OneLineSearch::Editor::NumericLine;
    case FieldKind::Text:
        return OneLineSearch::Editor::Line;
    case FieldKind::CheckBox:
        return OneLineSearch::Editor::CheckBox;
    case FieldKind::Date:
        return OneLineSearch::Editor::Calendar;
    default:
        return OneLineSearch::Editor::Other;
    }
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
        m_searchCell->takeLike(nullptr);
        m_searchCell->setEnabled(false);
        if (focus)
            searchAnew(false);
        return;
    }
    // A text is kept only from one line editor to the next: it means nothing to a list of choices.
    const QString text = m_searchCell->isTyped() ? m_searchCell->text() : QString();
    m_searchCell->setEnabled(true);
    if (column == searchtext::fullText())
        m_searchCell->takeWords();
    else
        m_searchCell->takeLike(getDelegateForColumn(getColumnIndex(column)));
    if (m_searchCell->isTyped())
        m_searchCell->setText(text);
    const bool active = m_bClearSuchen->isEnabled();
    const bool putBack = !text.isEmpty() && m_searchCell->text() == text;
    if (active ? m_searchCell->text().isEmpty() : !putBack)
        doClearSearch(true);
    else
        searchAnew(false);
    if (!focus)
        return;
    m_SearchString->setFocus(Qt::OtherFocusReason);
    if (m_searchCell->kind() == FieldKind::Date || m_searchCell->kind() == FieldKind::Folder)
        m_searchCell->edit();
}

void KelvaClientMain::searchTextChanged()
{
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
    const QString value = m_searchCell->value();
    if (column == searchtext::fullText()) {
        if (!takeFullText(value, value.size()))
            return false;
        showSearch();
        return true;
    }
    OneLineSearch search;
    search.column = column;
    search.value = value;
    search.editor = editorOf(m_searchCell->kind());
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
    m_searchCell->setEnabled(false);
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
    m_searchCell->setEnabled(m_SearchCombo->currentData() != searchtext::extendedSearchKey);
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
