#include "app/kelvaclientmain.h"

#include "documents/kelvacombodelegate.h"
#include "documents/kelvalinedelegate.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvaviewdelegate.h"
#include "search/kelvastatusbarext.h"
#include "server/classifyinterface.h"
#include "server/plainbox.h"
#include "server/recordformat.h"

#include <QSignalBlocker>

void KelvaClientMain::initStatus()
{
    disconnect(m_twStatus, SIGNAL(currentRowChanged(int)), this, SLOT(selChanged()));
    QStringList rows;
    QList<QByteArray> pictures;
    if (!classifyClient->getStatusList(rows, pictures))
        plainbox::critical(this, tr("Error"), tr("The status data could not be loaded!"));
    m_twStatus->setStatusList(rows, pictures);
    connect(m_twStatus, SIGNAL(currentRowChanged(int)), this, SLOT(selChanged()), Qt::DirectConnection);
}

void KelvaClientMain::loadFilters()
{
    statusBarExt->setMinMaxDates(classifyClient->getMinMaxDates());
    if (offlineMode)
        statusBarExt->setOffline(true);
    disconnect(m_SearchCombo, SIGNAL(activated(int)), this, SLOT(searchComboChanged(int)));
    disconnect(m_SearchString, SIGNAL(itemChanged(QTableWidgetItem *)), this, SLOT(searchTextChanged()));
    {
        const QSignalBlocker comboBlocker(m_SearchCombo);
        const QSignalBlocker cellBlocker(m_SearchString);
        m_SearchCombo->clear();
        m_SearchString->setItem(0, 0, new QTableWidgetItem);
        m_columnNames.clear();
        QStringList columns = m_searchColumns;
        if (!columns.isEmpty())
            columns.removeLast(); // the rights letters are nothing to search for
        columns << tr("full text") + recordformat::fieldSeparator + tr("full text");
        for (const QString &column : qAsConst(columns)) {
            const QStringList fields = column.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
            m_columnNames << fields.value(1);
            m_SearchCombo->addItem(fields.value(0), fields.value(1));
        }
        m_SearchCombo->setCurrentIndex(0);
        m_SearchCombo->model()->sort(0);
        m_SearchCombo->setCurrentIndex(m_SearchCombo->findData(tr("full text")));
        QAbstractItemDelegate *old = m_SearchString->itemDelegateForColumn(0);
        m_SearchString->setItemDelegateForColumn(0, new KelvaLineDelegate({}, m_SearchString, 254, false));
        delete old;
        doClearSearch(false);
    }
    connect(m_SearchCombo, SIGNAL(activated(int)), this, SLOT(searchComboChanged(int)), Qt::DirectConnection);
    connect(m_SearchString, SIGNAL(itemChanged(QTableWidgetItem *)), this, SLOT(searchTextChanged()),
            Qt::DirectConnection);
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
