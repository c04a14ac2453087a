#include "app/kelvaclientmain.h"

#include "contract/classifyinterface.h"
#include "contract/recordformat.h"
#include "documents/kelvadelegate.h"
#include "documents/searchcell.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvaviewdelegate.h"
#include "search/filtermodel.h"
#include "search/kelvaextsearch.h"
#include "search/kelvastatusbarext.h"
#include "widgets/itemroles.h"
#include "widgets/plainbox.h"
#include "widgets/searchtexts.h"

#include <QSignalBlocker>

namespace {

/// Returns the keys in the order of the table's columns; only what the combo shows is sorted.
QStringList fillSearchCombo(QComboBox &combo, const QStringList &columns)
{
    combo.clear();
    QStringList keys;
    for (const QString &column : columns) {
        const QStringList fields = column.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        keys << fields.value(1);
        combo.addItem(fields.value(0), fields.value(1));
    }
    combo.setCurrentIndex(0);
    combo.model()->sort(0);
    combo.addItem(searchtext::extendedSearch(), searchtext::extendedSearchKey);
    combo.setCurrentIndex(combo.findData(searchtext::fullText()));
    return keys;
}

} // namespace

void KelvaClientMain::initStatus()
{
    disconnect(m_twStatus, SIGNAL(currentRowChanged(int)), this, SLOT(selChanged()));
    disconnect(m_twStatus, SIGNAL(updateStatus(QStringList, QString)), this,
               SLOT(updateDocsAfterDrop(QStringList, QString)));
    QStringList rows;
    QList<QByteArray> pictures;
    if (!classifyClient->getStatusList(rows, pictures))
        plainbox::critical(this, tr("Error"), tr("The status data could not be loaded!"));
    m_twStatus->setStatusList(rows, pictures);
    connect(m_twStatus, SIGNAL(currentRowChanged(int)), this, SLOT(selChanged()), Qt::DirectConnection);
    connect(m_twStatus, SIGNAL(updateStatus(QStringList, QString)), this,
            SLOT(updateDocsAfterDrop(QStringList, QString)), Qt::DirectConnection);
}

void KelvaClientMain::initExtendedSearch()
{
    delete m_extSearch;
    m_extSearch = new KelvaExtSearch(m_session.offline, this);
    m_extSearch->setDelegateLookup(
        [this](const QString &field) { return getDelegateForColumn(getColumnIndex(field)); });
}

void KelvaClientMain::loadFilters()
{
    if (m_session.offline)
        statusBarExt->setOffline(true);
    else
        statusBarExt->setMinMaxDates(classifyClient->getMinMaxDates());
    disconnect(m_extSearch, SIGNAL(modelReset()), m_treeSearch, SLOT(modelIsResetted()));
    disconnect(m_extSearch, SIGNAL(filterUpdated()), m_treeSearch, SLOT(updateExpanded()));
    disconnect(m_treeSearch, SIGNAL(doubleClicked(QModelIndex)), this, SLOT(filterActivated(QModelIndex)));
    disconnect(m_SearchCombo, SIGNAL(activated(int)), this, SLOT(searchComboChanged(int)));
    disconnect(m_searchCell, SIGNAL(entered()), this, SLOT(searchTextChanged()));
    {
        const QSignalBlocker comboBlocker(m_SearchCombo);
        const QSignalBlocker cellBlocker(m_SearchString);
        QStringList columns = m_searchColumns;
        if (!columns.isEmpty())
            columns.removeLast(); // the rights letters are nothing to search for
        columns << searchtext::fullText() + recordformat::fieldSeparator + searchtext::fullText();
        m_SearchCombo->setUpdatesEnabled(false);
        m_columnNames = fillSearchCombo(*m_SearchCombo, columns);
        m_SearchCombo->setUpdatesEnabled(true);
        m_treeSearch->modelIsResetted(); // before its items go
        m_extSearch->setClassifyClient(classifyClient);
        m_extSearch->setFilters(columns);
        m_searchCell->takeWords();
        doClearSearch(false);
        m_treeSearch->setHeaderHidden(true);
        m_treeSearch->setModel(m_extSearch->filterModel());
        m_treeSearch->updateExpanded();
    }
    connect(m_extSearch, SIGNAL(modelReset()), m_treeSearch, SLOT(modelIsResetted()), Qt::DirectConnection);
    connect(m_extSearch, SIGNAL(filterUpdated()), m_treeSearch, SLOT(updateExpanded()));
    connect(m_treeSearch, SIGNAL(doubleClicked(QModelIndex)), this, SLOT(filterActivated(QModelIndex)));
    connect(m_SearchCombo, SIGNAL(activated(int)), this, SLOT(searchComboChanged(int)), Qt::DirectConnection);
    connect(m_searchCell, SIGNAL(entered()), this, SLOT(searchTextChanged()), Qt::DirectConnection);
}

void KelvaClientMain::filterActivated(const QModelIndex &index)
{
    QStandardItem *item = m_extSearch->filterModel()->itemFromIndex(index);
    if (!item)
        return;
    if (FilterModel::isGroup(item)) {
        m_searchCell->clear();
        doClearSearch(true);
        return;
    }
    m_searchCell->takeLike(nullptr);
    m_treeSearch->setActive(item);
    m_extSearch->selectEntry(item->data(itemrole::storedId).toString()); // its name may be there twice
    m_extSearch->reloadSearch(item->text());
    m_SearchCombo->setCurrentIndex(m_SearchCombo->findData(searchtext::extendedSearchKey));
    searchAnew(true);
}

void KelvaClientMain::doEditFilters()
{
    m_searchCell->takeLike(nullptr);
    m_SearchCombo->setCurrentIndex(m_SearchCombo->findData(searchtext::extendedSearchKey));
    doSearch(false);
}

void KelvaClientMain::resetFilters(bool reload, bool resetFolder)
{
    doClearSearch(false);
    {
        const QSignalBlocker blocker(m_twStatus);
        m_twStatus->setCurrentRow(0);
    }
    {
        const QSignalBlocker blocker(statusBarExt);
        statusBarExt->resetTimeLine(true);
    }
    if (resetFolder) {
        const QSignalBlocker blocker(m_tWOrdner);
        m_tWOrdner->setCurrentIndex(docTree->index(0, 0));
    }
    if (reload)
        selChanged();
}
