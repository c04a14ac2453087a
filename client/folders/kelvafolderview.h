#pragma once

#include <QPointer>
#include <QStringList>
#include <QTreeView>

class KelvaDocItem;
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
    void setDialogMode(bool dialog) { m_dialogMode = dialog; }
    /// Whether the user chose a folder since the last show().
    bool getSaved() const { return m_picked; }
    /// Hides the base operation, which is not virtual; a dialog that shows the view does not call it.
    void show();

    /// Restores what setSaveState() keeps. Hides the base operation, which is not virtual.
    void update();
    using QTreeView::update;

public slots:
    void doSaveState();
    /// Chooses the current folder: doubleClicked() tells the dialog.
    void doSearchSelection();

signals:
    void kelvaItemChanged();
    void curSelChanged();
    void createNewFolder(QString parentOid);
    void escPressed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private slots:
    void emitCurrentIndexChanged();
    void itemExpanded(const QModelIndex &index);
    void itemCollapsed(const QModelIndex &index);

private:
    QString settingsApplication() const;
    bool isSelectable(const QModelIndex &proxyIndex) const;

    bool m_htmlMode = false;
    QPointer<KelvaDocTree> m_tree;
    MySortFilterProxyModel *m_proxy;
    QStringList m_expandedOids;
    bool m_saveState = false;
    bool m_restoring = false;
    bool m_picked = false;
    bool m_dialogMode = false;
    QString m_settingsKey;
    QString m_host;
    QString m_port;
    QString m_archive;
};
