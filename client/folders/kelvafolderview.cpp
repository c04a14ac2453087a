#include "folders/kelvafolderview.h"

#include "documents/kelvalinedelegate.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvasearchdlg.h"
#include "widgets/mysortfilterproxymodel.h"

#include <QAction>
#include <QCoreApplication>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QSettings>
#include <QSignalBlocker>

#include <memory>

namespace {

constexpr int firstNameWidth = 220;
constexpr int besideNameWidth = 60; ///< in the picker, where names matter
constexpr int longestName = 254;

/// The document table's selection, and a paler hint of it under the pointer.
const char treeSheet[] =
    "QTreeView { selection-color: #FFFFFF; selection-background-color: "
    "qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #6ea1f1, stop: 1 #567dbc); }\n"
    "QTreeView::item:hover:!selected { background: "
    "qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #eef4fd, stop: 1 #d4e2f8); color: #000000; }";

} // namespace

KelvaFolderView::KelvaFolderView(QWidget *parent)
    : QTreeView(parent),
      m_proxy(new MySortFilterProxyModel(this))
{
    m_proxy->setSortLocaleAware(true);
    m_proxy->setDynamicSortFilter(true);
    header()->setSortIndicator(0, Qt::AscendingOrder);
    setSortingEnabled(true);
    setAlternatingRowColors(true);
    setUniformRowHeights(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropOverwriteMode(true); // a drop between two folders would reach the wrong one
    setMouseTracking(true);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    setStyleSheet(treeSheet);
    setItemDelegate(new KelvaLineDelegate({}, this, longestName, false));
    connect(header(), SIGNAL(sectionMoved(int, int, int)), this, SLOT(doSaveState()));
    connect(header(), SIGNAL(sectionResized(int, int, int)), this, SLOT(doSaveState()));
    connect(header(), SIGNAL(sortIndicatorChanged(int, Qt::SortOrder)), this, SLOT(doSaveState()));
    connect(this, SIGNAL(expanded(QModelIndex)), this, SLOT(itemExpanded(QModelIndex)));
    connect(this, SIGNAL(collapsed(QModelIndex)), this, SLOT(itemCollapsed(QModelIndex)));
    makeActions();
    makeSearchBar();
}

KelvaFolderView::~KelvaFolderView() = default;

void KelvaFolderView::setDialogMode(bool dialog)
{
    m_dialogMode = dialog;
    m_linkAction->setVisible(!dialog);
    header()->setStretchLastSection(!dialog);
}

bool KelvaFolderView::isIndexHidden(const QModelIndex &index) const
{
    if (index.model() != m_tree)
        return QTreeView::isIndexHidden(index);
    const QList<KelvaDocItem *> hidden = m_tree ? m_tree->getHiddenRows() : QList<KelvaDocItem *>();
    for (KelvaDocItem *node = item(index); node; node = node->parent())
        if (hidden.contains(node))
            return true;
    return false;
}

void KelvaFolderView::showAllColumns()
{
    for (int column = 0; column < 3; ++column)
        showColumn(column);
}

void KelvaFolderView::moveToFolder(const QString &oid)
{
    const KelvaDocItem *node = m_tree ? m_tree->findItem(oid) : nullptr;
    if (!node)
        return;
    setCurrentIndex(m_tree->indexFromItem(node));
    emit doubleClicked(QTreeView::currentIndex());
    emitCurrentIndexChanged();
}

void KelvaFolderView::setModel(QAbstractItemModel *tree)
{
    listenToCurrent(false);
    if (m_tree)
        disconnect(m_tree, SIGNAL(itemChanged(KelvaDocItem *)), this, SLOT(folderDataChange()));
    // Qt leaves the selection model of the model before behind.
    const std::unique_ptr<QItemSelectionModel> selectionBefore(selectionModel());
    m_indexBeforeSearch = QModelIndex();
    QTreeView::setModel(nullptr);
    const std::unique_ptr<QItemSelectionModel> selectionBetween(selectionModel());
    m_tree = qobject_cast<KelvaDocTree *>(tree);
    m_proxy->setSourceModel(m_tree);
    QTreeView::setModel(m_proxy);
    m_searchBar->setCompleter(m_tree ? m_tree->getCompleter() : nullptr);
    update();
    m_createAction->setVisible(m_tree && m_tree->getCanCreateFolder());
    if (m_tree)
        connect(m_tree, SIGNAL(itemChanged(KelvaDocItem *)), this, SLOT(folderDataChange()));
    listenToCurrent(true);
}

void KelvaFolderView::listenToCurrent(bool listen)
{
    if (!selectionModel())
        return;
    disconnect(selectionModel(), SIGNAL(currentChanged(QModelIndex, QModelIndex)), this,
               SLOT(emitCurrentIndexChanged()));
    if (listen)
        connect(selectionModel(), SIGNAL(currentChanged(QModelIndex, QModelIndex)), this,
                SLOT(emitCurrentIndexChanged()));
}

KelvaDocTree *KelvaFolderView::model() const
{
    return m_tree;
}

QModelIndex KelvaFolderView::currentIndex() const
{
    return m_proxy->mapToSource(QTreeView::currentIndex());
}

void KelvaFolderView::setCurrentIndex(const QModelIndex &index)
{
    const QModelIndex mapped = m_proxy->mapFromSource(index);
    if (mapped.isValid())
        QTreeView::setCurrentIndex(mapped);
}

KelvaDocItem *KelvaFolderView::item(const QModelIndex &index) const
{
    return m_tree ? m_tree->item(index) : nullptr;
}

KelvaDocItem *KelvaFolderView::currentItem() const
{
    return item(currentIndex());
}

QString KelvaFolderView::currentOid() const
{
    const KelvaDocItem *current = currentItem();
    return current ? current->getOid() : QString();
}

void KelvaFolderView::setRowHidden(const QModelIndex &index, bool hide)
{
    const QModelIndex mapped = m_proxy->mapFromSource(index);
    if (mapped.isValid())
        QTreeView::setRowHidden(mapped.row(), mapped.parent(), hide);
}

void KelvaFolderView::setSaveState(bool save, const QString &key)
{
    m_saveState = save;
    m_settingsKey = key;
}

void KelvaFolderView::setConnectionData(const QString &host, const QString &port, const QString &archive)
{
    m_host = host;
    m_port = port;
    m_archive = archive;
}

QString KelvaFolderView::settingsApplication() const
{
    return QCoreApplication::applicationName() + '_' + m_settingsKey;
}

void KelvaFolderView::doSaveState()
{
    // A header without sections, or one that is just being restored, would overwrite the good state.
    if (!m_saveState || m_restoring || !m_tree || header()->count() == 0)
        return;
    QSettings settings("Norbant GmbH", settingsApplication());
    settings.setValue("TreeSortOrder", header()->saveState());
    settings.setValue("TreeExpandedItems", m_expandedOids);
    settings.sync();
}

void KelvaFolderView::itemExpanded(const QModelIndex &index)
{
    const KelvaDocItem *node = item(m_proxy->mapToSource(index));
    if (!node)
        return;
    m_expandedOids.removeAll(node->getOid());
    m_expandedOids.append(node->getOid());
    doSaveState();
}

void KelvaFolderView::itemCollapsed(const QModelIndex &index)
{
    if (const KelvaDocItem *node = item(m_proxy->mapToSource(index)))
        m_expandedOids.removeAll(node->getOid());
    doSaveState();
}

void KelvaFolderView::update()
{
    if (m_saveState && m_tree) {
        const QScopedValueRollback<bool> restoring(m_restoring, true);
        const QSettings settings("Norbant GmbH", settingsApplication());
        {
            const QSignalBlocker headerBlocker(header());
            const QSignalBlocker viewBlocker(this);
            m_expandedOids = settings.value("TreeExpandedItems").toStringList();
            QTreeView::collapseAll();
            for (const QString &oid : qAsConst(m_expandedOids))
                if (const KelvaDocItem *node = m_tree->findItem(oid))
                    expand(m_proxy->mapFromSource(m_tree->indexFromItem(node)));
        }
        if (settings.contains("TreeSortOrder"))
            header()->restoreState(settings.value("TreeSortOrder").toByteArray());
        else
            header()->resizeSection(0, firstNameWidth);
        for (int column = 1; m_dialogMode && !settings.contains("TreeSortOrder") && column < 3; ++column)
            header()->resizeSection(column, besideNameWidth);
    }
    if (m_dialogMode)
        header()->setSectionResizeMode(0, QHeaderView::Stretch); // a restored state has its own mode
    viewport()->update();
}

void KelvaFolderView::emitCurrentIndexChanged()
{
    if (!m_tree)
        return;
    if (m_searchBar->isVisible() && hasFocus() && !m_searchBarOpen)
        m_searchBar->hide();
    m_tree->resetPrevItem();
    if (KelvaDocItem *current = currentItem())
        m_tree->setPrevItem(current);
    viewport()->update();
    emit curSelChanged();
}
