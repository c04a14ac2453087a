#pragma once

#include <QPersistentModelIndex>
#include <QPointer>
#include <QStringList>
#include <QTreeView>

class KelvaDocItem;
class KelvaSearchDlg;
class KelvaDocTree;
class MySortFilterProxyModel;

/// The tree through which the user walks the folders. Indexes of its operations are the tree model's; Qt's
/// own signals carry the proxy's.
class KelvaFolderView final : public QTreeView
{
    Q_OBJECT

public:
    explicit KelvaFolderView(QWidget *parent = nullptr);
    ~KelvaFolderView() override;

    /// Shows the tree, which stays its owner's.
    void setModel(QAbstractItemModel *tree) override;
    KelvaDocTree *model() const;
    QModelIndex currentIndex() const;
    /// An index that the proxy does not know is ignored.
    void setCurrentIndex(const QModelIndex &index);
    KelvaDocItem *item(const QModelIndex &index) const;
    /// Null when nothing is current.
    KelvaDocItem *currentItem() const;
    /// Empty when nothing is current.
    QString currentOid() const;
    void setRowHidden(const QModelIndex &index, bool hide);

    /// Keeps header and expanded folders in a settings file of its own.
    void setSaveState(bool save, const QString &key);
    /// Folder links lead to the local web service.
    void setHtmlMode(bool html) { m_htmlMode = html; }
    void setConnectionData(const QString &host, const QString &port, const QString &archive);

    /// In a dialog the view is for choosing a folder: Return, Enter or a double click choose, Escape gives
    /// up.
    void setDialogMode(bool dialog);
    /// A press clears the selection first and takes the mark off the current folder after.
    void setSpecialMouseHandle(bool special) { m_specialMouse = special; }
    /// For a tree index: the item or an item above it is hidden in the tree. Qt asks with the proxy's indexes
    /// and is told what the view hides.
    bool isIndexHidden(const QModelIndex &index) const override;
    void showAllColumns();
    /// What was last searched for.
    QString searchText() const { return m_searchText; }
    /// Goes to the folder as if the user had chosen it.
    void moveToFolder(const QString &oid);
    /// Whether the user chose a folder since the last show().
    bool getSaved() const { return m_picked; }
    /// Hides the base operation, which is not virtual; a dialog that shows the view does not call it.
    void show();

    /// Restores what setSaveState() keeps. Hides the base operation, which is not virtual.
    void update();
    using QTreeView::hideColumn;
    using QTreeView::update;

public slots:
    void doSaveState();
    /// Chooses the current folder: doubleClicked() tells the dialog.
    void doSearchSelection();
    void folderDataChange() { emit kelvaItemChanged(); }

    // folders/kelvafolderview_menu.cpp
    /// The column menu of the header.
    void hideColumn();
    void expandItems();
    void collapseItems();
    /// Of all folders. Not kept for the next start. Hide the base operations, which are not virtual.
    void expandAll();
    void collapseAll();
    void doEmitNewFolder();
    void doSendFolderLinkClipboard();
    void doSendFolderLinkMail();

    // folders/kelvafolderview_search.cpp
    /// key is a letter or digit to search for, or 0.
    void showSearchDlg(int key = 0);
    void showSearchDlg(const QString &text);
    void hideSearchDlg();
    void doPartialSearch(const QString &text);
    void updateSearch();
    void searchAgain(bool fromStart = false);
    void resetFolder();

signals:
    void kelvaItemChanged();
    void curSelChanged();
    void createNewFolder(QString parentOid);
    void escPressed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private slots:
    void emitCurrentIndexChanged();
    void itemExpanded(const QModelIndex &index);
    void itemCollapsed(const QModelIndex &index);

private:
    QString settingsApplication() const;
    bool isSelectable(const QModelIndex &proxyIndex) const;
    void makeActions();
    void makeSearchBar();
    void placeSearchBar();
    const KelvaDocItem *nextHit();
    void setExpandedBelowCurrent(bool expand);
    QString folderLink();
    void listenToCurrent(bool listen);

    bool m_htmlMode = false;
    QPointer<KelvaDocTree> m_tree;
    MySortFilterProxyModel *m_proxy;
    QStringList m_expandedOids;
    bool m_saveState = false;
    bool m_restoring = false;
    bool m_picked = false;
    bool m_dialogMode = false;
    bool m_specialMouse = false;
    bool m_searchBarOpen = false; ///< the user asked for the search bar
    KelvaSearchDlg *m_searchBar = nullptr;
    QAction *m_createAction = nullptr;
    QAction *m_linkAction = nullptr;
    QString m_searchText;
    int m_searchPosition = 0;
    QPersistentModelIndex m_indexBeforeSearch;
    QString m_settingsKey;
    QString m_host;
    QString m_port;
    QString m_archive;
};
