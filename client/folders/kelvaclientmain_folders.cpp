#include "app/kelvaclientmain.h"

#include "app/kelvaclientsettings.h"
#include "contract/classifyinterface.h"
#include "contract/folderoid.h"
#include "contract/userrights.h"
#include "documents/documentcolumns.h"
#include "documents/kelvadelegate.h"
#include "folders/columneditors.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvanewfolder.h"
#include "folders/workbenchdata.h"
#include "search/kelvaextsearch.h"
#include "server/archiveentry.h"
#include "server/kelvaarchiveworker.h"
#include "widgets/plainbox.h"
#include "widgets/waitcursor.h"

#include <QDebug>
#include <QHeaderView>
#include <QMenu>
#include <QSet>
#include <QSignalBlocker>
#include <QStatusBar>

namespace {

void enterSubArchive(KelvaArchiveWorker &worker, const QString &archive)
{
    KelvaClientSettings().setCurrentSubArchive(archive);
    worker.selectArchive(archive);
}

void fillSubArchives(QComboBox &box, const QStringList &names)
{
    box.clear();
    for (const QString &name : names) {
        const ArchiveEntry entry = ArchiveEntry::parse(name);
        box.addItem(entry.name, entry.key);
    }
}

} // namespace

bool KelvaClientMain::initFolders()
{
    const QByteArray panelHeader = m_tWOrdner->header()->saveState();
    m_searchColumns.clear();
    WorkbenchData workbench;
    const QString key = workbenchKey(classifyClient->getLoginName(), classifyClient->getServerHost(),
                                     classifyClient->getServerPort(), classifyClient->getProfileId());
    QString fault;
    if (!readWorkbenchData(key, workbench, &fault)) {
        const QString text =
            tr("The connection to the Connection Manager could not be established, please restart Kelva!");
        plainbox::critical(this, tr("Error"), fault.isEmpty() ? text : text + "\n\n" + fault);
        return false;
    }
    m_searchColumns = workbench.searchColumns;
    disconnect(docTree, SIGNAL(updateDocuments()), this, SLOT(updateDocuments()));
    disconnect(m_tWOrdner, SIGNAL(curSelChanged()), this, SLOT(timerSelChanged()));
    m_extSearch->setUsers(classifyClient->getRoles());
    m_editors->rebuild(workbench, classifyClient->getDescriptionCompletions());
    showFolderTree(workbench);
    if (!m_tWOrdner->currentIndex().isValid()) {
        m_tWOrdner->setCurrentIndex(docTree->index(0, 0));
        m_tWOrdner->scrollToTop();
    }
    connect(m_tWOrdner, SIGNAL(curSelChanged()), this, SLOT(timerSelChanged()), Qt::DirectConnection);
    connect(docTree, SIGNAL(updateDocuments()), this, SLOT(updateDocuments()), Qt::DirectConnection);
    if (!firstConnect)
        m_tWOrdner->header()->restoreState(panelHeader);
    m_retentionByDocType = workbench.retentionByType();
    return true;
}

void KelvaClientMain::showFolderTree(const WorkbenchData &workbench)
{
    auto *tree = new KelvaDocTree(tr("Folders"), true, QString(), QString(), m_tWOrdner);
    if (m_session.mayDo(userright::createFolder)) {
        tree->setCanCreateFolder(true);
        connect(tree, SIGNAL(doCreateFolder(QString)), this, SLOT(doCreateFolder(QString)));
    }
    connect(tree, SIGNAL(newDocumentFolders(QStringList, QString)), this,
            SLOT(updateDocsAfterDrop(QStringList, QString)));
    connect(tree, SIGNAL(newDocumentFolder(QString, QString)), this,
            SLOT(updateDocAfterDrop(QString, QString)));
    tree->loadFromStringList(workbench.folders, workbench.folderPictures, false);
    KelvaDocTree *old = docTree;
    docTree = tree;
    m_tWOrdner->setUpdatesEnabled(false);
    m_tWOrdner->setModel(docTree);
    const QList<KelvaDocItem *> hidden = docTree->getHiddenRows();
    for (const KelvaDocItem *folder : hidden)
        m_tWOrdner->setRowHidden(docTree->indexFromItem(folder), true);
    m_tWOrdner->setUpdatesEnabled(true);
    old->deleteLater();
}

KelvaDelegate *KelvaClientMain::getDelegateForColumn(int column) const
{
    return m_editors->forColumn(column);
}

void KelvaClientMain::blockDelegateSignals(bool block)
{
    for (const int column : {documentcolumn::mainFolder, documentcolumn::folder, documentcolumn::status,
                             documentcolumn::date, documentcolumn::type, documentcolumn::description})
        if (KelvaDelegate *delegate = m_editors->forColumn(column))
            delegate->blockSignals(block);
}

QString KelvaClientMain::getArchiveString() const
{
    return m_currentSubArchiv->currentData().toString();
}

void KelvaClientMain::subArchiveChanged(int, bool reload)
{
    const WaitCursor cursor;
    action_MoveToArchive->menu()->clear();
    QString archive = getArchiveString();
    if (!archive.isEmpty()) {
        archiveWorker->setConnectionSettings(m_session.host, m_session.port, m_session.login,
                                             m_session.password);
        m_infoView->setArchiveClient(archiveWorker, classifyClient);
        enterSubArchive(*archiveWorker, archive);
        QStringList names;
        archiveWorker->getArchiveNames(names);
        const QString fault = names.isEmpty() ? archiveWorker->getLastError() : QString();
        if (!names.isEmpty()) {
            const QSignalBlocker blocker(m_currentSubArchiv);
            fillSubArchives(*m_currentSubArchiv, names);
            int entry = m_currentSubArchiv->findData(archive, Qt::UserRole,
                                                     Qt::MatchExactly | Qt::MatchCaseSensitive);
            if (entry < 0) {
                entry = 0;
                archive = m_currentSubArchiv->itemData(0).toString();
                enterSubArchive(*archiveWorker, archive);
            }
            m_currentSubArchiv->setCurrentIndex(entry);
        }
        if (classifyClient)
            classifyClient->setCurrentArchive(getArchiveString());
        if (reload)
            updateDocuments({}, false);
        if (!fault.isEmpty())
            statusBar()->showMessage(fault); // in place of the refresh's count
        fillMoveMenu();
    }
    if (m_currentSubArchiv->count() == 0)
        action_MoveToArchive->setVisible(false);
    if (classifyClient)
        m_tWOrdner->setConnectionData(classifyClient->getServerHost(),
                                      QString::number(classifyClient->getServerPort()), getArchiveString());
}

void KelvaClientMain::fillMoveMenu()
{
    for (int i = 0; i < m_currentSubArchiv->count(); ++i) {
        if (m_currentSubArchiv->itemText(i) == m_currentSubArchiv->currentText())
            continue;
        QAction *target = action_MoveToArchive->menu()->addAction(
            m_currentSubArchiv->itemText(i).replace(QLatin1Char('&'), QLatin1String("&&")));
        target->setData(m_currentSubArchiv->itemData(i));
        connect(target, SIGNAL(triggered()), this, SLOT(notAvailableYet()));
    }
}

void KelvaClientMain::moveToFolder()
{
    const QString oid = m_infoView->getCurrentFolder();
    if (!oid.isEmpty())
        m_tWOrdner->moveToFolder(oid);
}

void KelvaClientMain::doCreateFolder(QString parentOid)
{
    if (!classifyClient) {
        plainbox::critical(this, tr("Error"), tr("The connection has been disconnected."));
        return;
    }
    KelvaNewFolder dialog(this);
    dialog.m_jumpToFolder->hide();
    if (const KelvaDocItem *parent = docTree->findItem(parentOid))
        dialog.setParentName(parent->getName());
    QSet<QString> before;
    for (const KelvaDocItem *folder : docTree->getAllItems())
        before.insert(folder->getOid());
    const auto create = [&] {
        return classifyClient->createFolder(parentOid, dialog.m_Name->text(), dialog.m_Key->text(),
                                            folderKeywords(dialog.m_BuzzWords->toPlainText()));
    };
    // What was typed is not lost: the dialog comes back with it.
    do {
        if (dialog.exec() != QDialog::Accepted)
            return;
        if (create())
            break;
        plainbox::critical(this, tr("Error"),
                           tr("The folder could not be created: ") + classifyClient->lastMessage());
    } while (true);
    // The whole workplace is rebuilt for one new folder.
    classifyClient->reloadServerData();
    updateAll(true);
    for (const KelvaDocItem *folder : docTree->getAllItems())
        if (!before.contains(folder->getOid()) && folder->getName() == dialog.m_Name->text().trimmed())
            m_tWOrdner->setCurrentIndex(docTree->indexFromItem(folder));
}
