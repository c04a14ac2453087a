#include "app/kelvaclientmain.h"

#include "app/kelvaclientsettings.h"
#include "documents/documentcolumns.h"
#include "documents/kelvacalendardelegate.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvalinedelegate.h"
#include "documents/kelvasimplecombodelegate.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvanewfolder.h"
#include "folders/kelvaviewdelegate.h"
#include "folders/workbenchdata.h"
#include "search/kelvaextsearch.h"
#include "server/classifyinterface.h"
#include "server/folderoid.h"
#include "server/kelvaarchiveworker.h"
#include "server/plainbox.h"
#include "server/recordformat.h"
#include "server/userrights.h"
#include "server/waitcursor.h"

#include <QDebug>
#include <QHeaderView>
#include <QMenu>
#include <QSignalBlocker>
#include <QStatusBar>

namespace {

constexpr int longestText = 254;

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
    makeAttributeDelegates(workbench);
    m_extSearch->setUsers(classifyClient->getRoles());
    makeFixedDelegates(workbench);
    showFolderTree(workbench);
    makeFolderColumn(workbench);
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

void KelvaClientMain::setColumnDelegate(int column, KelvaDelegate *&member, KelvaDelegate *delegate)
{
    member = delegate;
    m_infoView->setItemDelegateForColumn(column, delegate);
}

void KelvaClientMain::releaseFixedDelegates()
{
    for (KelvaDelegate **delegate :
         {&m_mainFolderDelegate, &m_descriptionDelegate, &m_statusDelegate, &m_typeDelegate, &m_dateDelegate,
          &m_changeTimeDelegate, &m_resubmissionDelegate}) {
        if (*delegate)
            (*delegate)->deleteLater();
        *delegate = nullptr;
    }
}

void KelvaClientMain::makeFixedDelegates(const WorkbenchData &workbench)
{
    const auto combo = [this](const QStringList &rows, const QList<QByteArray> &pictures,
                              const QIcon &fallback) {
        return new KelvaComboDelegate(rows, pictures, m_infoView, false, fallback, true, true);
    };
    setColumnDelegate(
        documentcolumn::mainFolder, m_mainFolderDelegate,
        combo(workbench.mainFolders, workbench.mainFolderPictures, QIcon(":/icons/folder.png")));
    setColumnDelegate(documentcolumn::status, m_statusDelegate,
                      combo(workbench.status, workbench.statusPictures, QIcon()));
    setColumnDelegate(documentcolumn::type, m_typeDelegate,
                      combo(workbench.types, workbench.typePictures, QIcon()));
    setColumnDelegate(documentcolumn::date, m_dateDelegate,
                      new KelvaCalendarDelegate(m_infoView, false, false, false));
    setColumnDelegate(documentcolumn::resubmission, m_resubmissionDelegate,
                      new KelvaCalendarDelegate(m_infoView, true, false, false));
    setColumnDelegate(documentcolumn::changeTime, m_changeTimeDelegate,
                      new KelvaLineDelegate({}, m_infoView, longestText, false));
    setColumnDelegate(
        documentcolumn::description, m_descriptionDelegate,
        new KelvaLineDelegate(classifyClient->getDescriptionCompletions(), m_infoView, longestText, false));
}

void KelvaClientMain::releaseDelegates(QMap<int, KelvaDelegate *> &delegates)
{
    for (auto delegate = delegates.cbegin(); delegate != delegates.cend(); ++delegate) {
        m_infoView->setItemDelegateForColumn(delegate.key(), nullptr);
        delegate.value()->deleteLater();
    }
    delegates.clear();
}

void KelvaClientMain::makeAttributeDelegates(const WorkbenchData &workbench)
{
    // First everything old goes: a column may have become one of another kind.
    for (QMap<int, KelvaDelegate *> *delegates : {&m_comboDelegates, &m_checkDelegates, &m_dateDelegates})
        releaseDelegates(*delegates);
    makeLineDelegates(workbench.lineColumns);
    const auto install = [this](QMap<int, KelvaDelegate *> &delegates, int column, KelvaDelegate *delegate,
                                const QString &values) {
        qDebug() << "DELEGATEVALS: " << column << values;
        delegates.insert(column, delegate);
        m_infoView->setItemDelegateForColumn(column, delegate);
    };
    for (auto combo = workbench.comboColumns.cbegin(); combo != workbench.comboColumns.cend(); ++combo) {
        QStringList values = combo.value().split(recordformat::listSeparator, Qt::SkipEmptyParts);
        values.prepend(QString());
        install(m_comboDelegates, combo.key(),
                new KelvaSimpleComboDelegate(values, m_infoView, true, true, false, true), combo.value());
    }
    for (auto check = workbench.checkColumns.cbegin(); check != workbench.checkColumns.cend(); ++check)
        install(m_checkDelegates, check.key(), new KelvaCheckBoxDelegate(false, m_infoView), check.value());
    for (auto date = workbench.dateColumns.cbegin(); date != workbench.dateColumns.cend(); ++date)
        install(m_dateDelegates, date.key(), new KelvaCalendarDelegate(m_infoView, false, false, true),
                date.value());
}

void KelvaClientMain::makeLineDelegates(const QMap<int, QString> &columns)
{
    const QList<int> known = m_lineDelegates.keys();
    for (const int column : known) {
        if (columns.contains(column))
            continue;
        m_infoView->setItemDelegateForColumn(column, nullptr);
        m_lineDelegates.take(column)->deleteLater();
    }
    for (auto line = columns.cbegin(); line != columns.cend(); ++line) {
        QStringList values = line.value().split(recordformat::listSeparator, Qt::KeepEmptyParts);
        const bool numeric =
            values.removeAll(KelvaLineDelegate::numericMark) > 0; // a mark, and no value to offer
        KelvaLineDelegate *&delegate = m_lineDelegates[line.key()];
        if (delegate) {
            delegate->setCompletor(values); // numeric or not stays as it was when the column came
            continue;
        }
        qDebug() << "DELEGATEVALS: " << line.key() << values;
        delegate = new KelvaLineDelegate(values, m_infoView, longestText, numeric);
        m_infoView->setItemDelegateForColumn(line.key(), delegate);
    }
}

void KelvaClientMain::showFolderTree(const WorkbenchData &workbench)
{
    auto *tree = new KelvaDocTree(tr("Folders"), true, QString(), QString(), m_tWOrdner);
    if (mayDo(userright::createFolder)) {
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

void KelvaClientMain::makeFolderColumn(const WorkbenchData &workbench)
{
    KelvaDelegate *oldDelegate = m_folderDelegate;
    KelvaDocTree *oldTree = m_folderColumnTree;
    m_folderColumnTree =
        new KelvaDocTree(tr("Folders"), true, tr("not assigned"), folderoid::notAssigned, nullptr);
    m_folderColumnTree->loadFromStringList(workbench.folders, workbench.folderPictures, false);
    setColumnDelegate(documentcolumn::folder, m_folderDelegate,
                      new KelvaViewDelegate(m_folderColumnTree, m_infoView));
    if (oldDelegate)
        oldDelegate->deleteLater();
    if (oldTree)
        oldTree->deleteLater();
}

KelvaDelegate *KelvaClientMain::getDelegateForColumn(int column) const
{
    return column < 0 ? nullptr : qobject_cast<KelvaDelegate *>(m_infoView->itemDelegateForColumn(column));
}

void KelvaClientMain::blockDelegateSignals(bool block)
{
    for (KelvaDelegate *delegate : {m_mainFolderDelegate, m_folderDelegate, m_statusDelegate, m_dateDelegate,
                                    m_typeDelegate, m_descriptionDelegate})
        if (delegate)
            delegate->blockSignals(block);
}

QString KelvaClientMain::getArchiveString() const
{
    return m_currentSubArchiv->currentData().toString();
}

void KelvaClientMain::enterSubArchive(const QString &archive)
{
    KelvaClientSettings().setCurrentSubArchive(archive);
    archiveWorker->selectArchive(archive);
}

void KelvaClientMain::fillSubArchives(const QStringList &names)
{
    m_currentSubArchiv->clear();
    for (const QString &name : names) {
        const QStringList fields = name.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        m_currentSubArchiv->addItem(fields.value(0), fields.value(fields.size() > 1 ? 1 : 0));
    }
}

void KelvaClientMain::subArchiveChanged(int, bool reload)
{
    const WaitCursor cursor;
    action_MoveToArchive->menu()->clear();
    QString archive = getArchiveString();
    if (!archive.isEmpty()) {
        archiveWorker->setConnectionSettings(archiveHost, archivePort, loginName, loginPassword);
        m_infoView->setArchiveClient(archiveWorker, classifyClient);
        enterSubArchive(archive);
        QStringList names;
        archiveWorker->getArchiveNames(names);
        if (names.isEmpty()) {
            statusBar()->showMessage(archiveWorker->getLastError());
        } else {
            const QSignalBlocker blocker(m_currentSubArchiv);
            fillSubArchives(names);
            int entry = m_currentSubArchiv->findData(archive, Qt::UserRole,
                                                     Qt::MatchExactly | Qt::MatchCaseSensitive);
            if (entry < 0) {
                entry = 0;
                archive = m_currentSubArchiv->itemData(0).toString();
                enterSubArchive(archive);
            }
            m_currentSubArchiv->setCurrentIndex(entry);
        }
        if (classifyClient)
            classifyClient->setCurrentArchive(getArchiveString());
        if (reload)
            updateDocuments({}, false);
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
}
