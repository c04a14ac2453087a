#include "app/kelvaclientmain.h"

#include "documents/itemroles.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/kelvalinedelegate.h"
#include "documents/onelinesearch.h"
#include "search/kelvastatusbarext.h"
#include "server/kelvaarchiveworker.h"

#include <QLocale>
#include <QMessageBox>
#include <QSignalBlocker>

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
    {
        const QSignalBlocker blocker(m_SearchString);
        m_SearchString->setEnabled(true);
        QTableWidgetItem *cell = m_SearchString->item(0, 0);
        m_SearchString->closePersistentEditor(cell);
        const auto *source = qobject_cast<KelvaDelegate *>(getDelegateForColumn(getColumnIndex(column)));
        delete m_SearchString->itemDelegateForColumn(0);
        KelvaDelegate *delegate =
            source ? source->clone(m_SearchString) : new KelvaLineDelegate({}, m_SearchString, 254, false);
        delegate->setDelegateColumn(0);
        m_SearchString->setItemDelegateForColumn(0, delegate);
    }
    if (m_bClearSuchen->isEnabled())
        doSearch(false);
    if (focus)
        m_SearchString->setFocus(Qt::OtherFocusReason);
}

void KelvaClientMain::searchTextChanged()
{
    const QTableWidgetItem *cell = m_SearchString->item(0, 0);
    if (cell && !cell->text().isEmpty())
        doSearch(false);
}

void KelvaClientMain::doCheckSearch()
{
    if (m_bClearSuchen->isEnabled())
        doSearch(false);
}

void KelvaClientMain::doSearch(bool)
{
    const QTableWidgetItem *cell = m_SearchString->item(0, 0);
    QString value = cell ? cell->data(itemrole::rawValue).toString() : QString();
    if (value.isEmpty() && cell)
        value = cell->text();
    const QString column = m_SearchCombo->currentData().toString();
    if (column == tr("full text")) {
        searchFullText(value);
        return;
    }
    OneLineSearch search;
    search.column = column;
    search.value = value;
    search.editor = editorOf(m_SearchString->itemDelegateForColumn(0));
    search.offline = offlineMode;
    search.decimalPoint = QLocale().decimalPoint();
    m_searchWhere = oneLineClause(search);
    {
        const QSignalBlocker blocker(m_tWOrdner);
        m_tWOrdner->clearSelection();
    }
    setSearchActive(true);
    updateDocuments({});
}

void KelvaClientMain::searchFullText(const QString &words)
{
    if (words.size() < fullTextMinimumLength) {
        QMessageBox::information(this, tr("full text search"),
                                 tr("A minimum of 3 characters is needed for the full text search!"));
        return;
    }
    // The service's own search takes the words itself; then no hit of the local one is asked for.
    const bool atService = actionErweitererte_Volltextsuche->isChecked() && !offlineMode;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const QStringList hits = atService ? QStringList() : archiveWorker->searchDocs(words);
    setSearchActive(true);
    m_selectionOption = fullTextSelection(hits, offlineMode);
    m_fullTextOption = atService ? fullTextOption(words) : QString();
    QApplication::restoreOverrideCursor();
    updateDocuments({});
}

void KelvaClientMain::doClearSearch(bool update)
{
    m_searchWhere = QStringLiteral("1=1");
    m_selectionOption.clear();
    m_fullTextOption.clear();
    setSearchActive(false);
    m_SearchString->setStyleSheet(QString());
    m_SearchString->setEnabled(true);
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
