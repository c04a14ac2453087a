#include "app/kelvaclientmain.h"

#include "contract/classifyinterface.h"
#include "contract/folderoid.h"
#include "contract/recordformat.h"
#include "contract/userrights.h"
#include "documents/documentactionstate.h"
#include "documents/documentcolumns.h"
#include "documents/documentrow.h"
#include "documents/kelvatrashbutton.h"
#include "documents/qinfoviewmodel.h"
#include "documents/refreshgate.h"
#include "folders/columneditors.h"
#include "search/kelvaextsearch.h"
#include "search/kelvastatusbarext.h"
#include "server/kelvaarchiveworker.h"
#include "widgets/itemroles.h"
#include "widgets/mysortfilterproxymodel.h"
#include "widgets/waitcursor.h"

#include <QCheckBox>
#include <QDebug>
#include <QLabel>
#include <QScopeGuard>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStandardItem>
#include <QTimerEvent>
#include <QtConcurrent>

#include <mutex>
#include <optional>

namespace {

constexpr int selectionDelayMs = 250;

} // namespace

void KelvaClientMain::timerSelChanged()
{
    if (selectTimerId != -1)
        killTimer(selectTimerId);
    selectTimerId = startTimer(selectionDelayMs, Qt::CoarseTimer);
}

void KelvaClientMain::timerEvent(QTimerEvent *event)
{
    const std::unique_lock<QMutex> lock(m_timerMutex, std::try_to_lock);
    if (event->timerId() != selectTimerId || !lock.owns_lock()) {
        QMainWindow::timerEvent(event);
        return;
    }
    killTimer(selectTimerId);
    selectTimerId = -1;
    selChanged();
}

void KelvaClientMain::selChanged()
{
    const WaitCursor cursor;
    m_query.fragments = selectionFragments(m_tWOrdner->currentOid(), m_twStatus->currentStatus());
    doUpdateDocuments();
}

void KelvaClientMain::doUpdateDocuments()
{
    // A spin box that is refreshed under the fingers would lose its focus and its text.
    QSpinBox *count = statusBarExt->getMaxSearchBox();
    const bool focused = count->hasFocus();
    if (focused)
        count->setEnabled(false);
    updateDocuments({});
    if (focused) {
        count->setEnabled(true);
        count->setFocus(Qt::OtherFocusReason);
    }
}

void KelvaClientMain::updateDocumentsClearPlugins()
{
    updateDocuments({}, true);
}

DocumentQuery KelvaClientMain::currentQuery() const
{
    DocumentQuery query = m_query;
    query.dateFilter = statusBarExt->getCurrentDateFilter();
    query.trash = m_trashButton->isChecked();
    query.openStatus = m_twStatus->currentStatus() == QLatin1String(documentstatus::open);
    query.limit = statusBarExt->getMaxSearchBox()->value();
    return query;
}

void KelvaClientMain::updateDocuments(QStringList docIds, bool resetPlugins)
{
    m_infoView->finishEditing();
    // The service may run events while it works, and so does a reload. A refresh from there cannot wait on
    // the same thread, so it runs afterwards.
    if (!m_gate->isFree()) {
        m_gate->missRefresh(docIds, resetPlugins);
        return;
    }
    refreshList(docIds, resetPlugins, false);
}

void KelvaClientMain::catchUp()
{
    if (m_gate->isHeld())
        return;
    while (const std::optional<CellEdit> edit = m_gate->takeEdit()) {
        {
            const RefreshGate::Hold hold(*m_gate);
            saveEdit(*edit);
        }
        // Each with its refresh: the next one needs the version token that this one has made.
        m_infoView->finishEditing();
        if (const std::optional<RefreshGate::Refresh> missed = m_gate->takeRefresh())
            refreshList(missed->docIds, missed->resetPlugins, edit->fromTable);
    }
    if (m_gate->takeReload() && !reload(true))
        return;
    if (const std::optional<RefreshGate::Refresh> missed = m_gate->takeRefresh())
        updateDocuments(missed->docIds, missed->resetPlugins);
}

void KelvaClientMain::refreshList(const QStringList &docIds, bool resetPlugins, bool afterEdit)
{
    const std::lock_guard<QMutex> lock(m_updateMutex);
    const RefreshGate::Hold hold(*m_gate);
    qDebug() << "UPDATE DOCS" << m_infoView->selectedIndexes().size();
    if (!uiReady) {
        qDebug("INITUPDATE");
        return;
    }
    {
        const WaitCursor cursor;
        refreshTable(docIds, resetPlugins, afterEdit);
    }
    qDebug("UPDATE DOCS END");
}

void KelvaClientMain::refreshTable(const QStringList &docIds, bool resetPlugins, bool afterEdit)
{
    Q_UNUSED(resetPlugins)
    const char *changed = SIGNAL(dataChanged(QModelIndex, QModelIndex));
    disconnect(m_infoView->getModel(), changed, this, SLOT(infoViewItemChanged()));
    m_infoView->setUpdatesEnabled(false);
    const auto restore = qScopeGuard([this, changed] {
        m_infoView->setUpdatesEnabled(true);
        connect(m_infoView->getModel(), changed, this, SLOT(infoViewItemChanged()));
    });
    {
        const QSignalBlocker windowBlocker(this);
        const QSignalBlocker tableBlocker(m_infoView);
        const QSignalBlocker selectionBlocker(m_infoView->selectionModel());
        const int scrolled = m_infoView->verticalScrollBar()->value();
        const bool hadSelection = m_infoView->selectionModel()->hasSelection();
        QStringList ids = getCurrentDocIds(false, false);
        const QModelIndex current = m_infoView->currentIndex();
        const QString currentId =
            current.siblingAtColumn(documentcolumn::id).data(itemrole::classificationId).toString();
        const int currentColumn = current.isValid() ? current.column() : int(documentcolumn::none);

        if (classifyClient && !loadRows())
            return; // the reload has failed and closed the window

        if (hadSelection)
            m_infoView->verticalScrollBar()->setValue(scrolled);
        m_infoView->clearSelection();
        if (!docIds.isEmpty())
            ids = docIds;
        ids.removeDuplicates();
        restoreSelection(ids, currentId, currentColumn);
        m_infoView->getModel()->updateLayout();
    }
    if (afterEdit) {
        m_infoView->setFocus(Qt::OtherFocusReason);
        // In the sorted column the edit has moved its row.
        m_infoView->scrollTo(m_infoView->QTableView::currentIndex());
    }
    docSelChanged(m_infoView->getSelection());
    m_infoView->doResizeColumnsToContents();
}

/// Steps between query and filled table. False when a pending reload has failed.
bool KelvaClientMain::loadRows()
{
    const DocumentQuery query = currentQuery();
    const QStringList docs = classifyClient->getDocuments(documentFilters(query));
    // Even an empty list has its header.
    m_infoView->setEmptyText(emptyListText(query, docs.isEmpty() ? classifyClient->lastError() : QString()));
    if (reloadPending) {
        reloadPending = false;
        if (!reload(false))
            return false;
    }
    QStringList archiveIds;
    for (int row = 1; row < docs.size(); ++row)
        archiveIds << docs.at(row)
                          .section(recordformat::fieldSeparator, 0, 0)
                          .section(recordformat::documentIdSeparator, 0, 0);
    QStringList infos;
    if (!archiveIds.isEmpty())
        archiveWorker->getDocumentInfo(archiveIds, infos);

    QStringList opened;
    bool openedKnown = false;
    if (!m_session.offline && statusBarExt->getShowUnReadCheckBox()->isChecked() && !archiveIds.isEmpty()) {
        QStringList actions;
        openedKnown = archiveWorker->getDocumentActions(archiveIds, actions, 0, m_session.login);
        for (const QString &action : qAsConst(actions))
            opened << action.section(recordformat::fieldSeparator, 0, 0);
    }
    if (!docs.isEmpty()) {
        const bool known = sameAttributes(docs.first(), m_searchColumns);
        m_editors->setAttributesDetached(!known);
        m_infoView->setAttributesReadOnly(!known);
    }
    m_infoView->loadDocuments(docs, infos, m_trashButton->isChecked(), m_retentionByDocType,
                              openedKnown ? &opened : nullptr);
    disableDocumentActions();
    showCount();
    return true;
}

void KelvaClientMain::showCount()
{
    const int limit = statusBarExt->getMaxSearchBox()->value();
    const int rows = m_infoView->rowCount();
    // A list exactly as long as the limit counts as cut off, too.
    statusBar()->showMessage(
        rows == limit ? tr("More than %1 documents found. Limit your search using filters!").arg(limit)
                      : tr("%1 documents").arg(rows));
    if (m_infoView->areAttributesReadOnly())
        statusBar()->showMessage(
            tr("%1 - The attributes have been changed. Reload the workbench to edit them.")
                .arg(statusBar()->currentMessage()));
}

/// The table asks for names and pictures of its keys while it fills.
void KelvaClientMain::updateFolderColumn()
{
    m_infoView->setCellFaces(
        [this](int column, const QString &key) { return m_editors->display(column, key); });
}

void KelvaClientMain::restoreSelection(const QStringList &ids, const QString &currentId, int currentColumn)
{
    const QAbstractItemView::SelectionMode mode = m_infoView->selectionMode();
    m_infoView->setSelectionMode(QAbstractItemView::MultiSelection);
    const QAbstractItemModel *proxy = m_infoView->getProxyModel();
    const int lastColumn = proxy->columnCount() - 1;
    proxy->rowCount(); // makes the proxy's mapping, which the tasks only read

    QList<QFuture<QList<int>>> futures;
    QFutureSynchronizer<QList<int>> lookUps;
    for (const QString &id : ids) {
        futures << QtConcurrent::run(m_infoView, &KelvaInfoView::getItemRows, id);
        lookUps.addFuture(futures.last());
    }
    lookUps.waitForFinished();

    QItemSelection merged;
    for (int i = 0; i < futures.size(); ++i) {
        const QList<int> rows = futures.at(i).result();
        if (rows.isEmpty())
            continue;
        const int row = rows.first(); // a document in several rows has its first one selected
        if (ids.at(i) == currentId && currentColumn >= 0)
            m_infoView->selectionModel()->setCurrentIndex(proxy->index(row, currentColumn),
                                                          QItemSelectionModel::NoUpdate);
        merged.merge(QItemSelection(proxy->index(row, 0), proxy->index(row, lastColumn)),
                     QItemSelectionModel::Select);
    }
    m_infoView->setSelection(merged);
    m_infoView->setSelectionMode(mode);
}

void KelvaClientMain::disableDocumentActions()
{
    for (QAction *action :
         {action_Exportieren, action_Trash, action_Versenden, action_Link, action_Link_Email,
          action_Link_Clip, action_Anzeigen, action_Loeschen, action_MoveToArchive, action_Print,
          action_moveToFolder, action_Zurueckstellen, action_History})
        action->setEnabled(false);
}

void KelvaClientMain::docSelChanged(const QItemSelection &)
{
    SelectionFacts facts;
    facts.hasLiveDocuments = !getCurrentDocIds(false, true).isEmpty();
    facts.hasDocuments = !getCurrentDocIds(false, false).isEmpty();
    facts.trash = m_trashButton->isChecked();
    facts.offline = m_session.offline;
    facts.mayClassify = m_session.mayDo(userright::classify);
    const DocumentActionState state = documentActionState(facts);

    // Enabling a hidden action has no effect, so what a right has hidden stays off.
    action_Zurueckstellen->setEnabled(state.resubmit);
    if (state.hideResubmit)
        action_Zurueckstellen->setVisible(false);
    action_Trash->setEnabled(state.trash);
    action_MoveToArchive->setEnabled(state.moveToArchive);
    action_Exportieren->setEnabled(state.exportAndMail);
    action_Versenden->setEnabled(state.exportAndMail);
    for (QAction *action : {action_Link, action_Link_Email, action_Link_Clip})
        action->setEnabled(state.link);
    if (m_contextLink)
        m_contextLink->setEnabled(state.link);
    action_Anzeigen->setEnabled(state.show);
    action_Print->setEnabled(state.print);
    action_moveToFolder->setEnabled(state.moveToFolder);
    action_History->setEnabled(state.history);
    if (!state.eraseUnchanged)
        action_Loeschen->setEnabled(state.erase);
    showSelectedCount();
}

void KelvaClientMain::showSelectedCount()
{
    const int selected = m_infoView->selectionModel()->selectedRows().size();
    m_selectedCount->setText(tr("%n selected", nullptr, selected));
    m_selectedCount->setVisible(selected > 1); // of a single one everybody sees it
}

QStringList KelvaClientMain::getCurrentDocIds(bool onlyWritable, bool notDeleted) const
{
    return m_infoView->getCurrentDocIds(onlyWritable, notDeleted);
}

QStringList KelvaClientMain::getCurrentRealDocIds(bool onlyWritable) const
{
    return m_infoView->getCurrentRealDocIds(onlyWritable);
}

void KelvaClientMain::changeDocView()
{
    m_query.mineOption = action_docView->isChecked() ? QStringLiteral("OPT:MINE") : QString();
    showDocView();
    updateDocuments({});
}

void KelvaClientMain::showDocView()
{
    // The text names what the next click will do.
    const QString text =
        action_docView->isChecked() ? tr("Show all documents") : tr("Show personal documents");
    action_docView->setText(text);
    action_docView->setToolTip(text);
}

void KelvaClientMain::updateTrash()
{
    m_extSearch->updateStatusDelegates();
    updateDocuments({});
}
