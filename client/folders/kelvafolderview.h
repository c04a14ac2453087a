#pragma once

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

    /// Restores what setSaveState() keeps. Hides the base operation, which is not virtual.
    void update();
    using QTreeView::update;

public slots:
    void doSaveState();

signals:
    void kelvaItemChanged();
    void curSelChanged();
    void createNewFolder(QString parentOid);
    void escPressed();

private slots:
    void emitCurrentIndexChanged();
    void itemExpanded(const QModelIndex &index);
    void itemCollapsed(const QModelIndex &index);

private:
    QString settingsApplication() const;

    bool m_htmlMode = false;
    KelvaDocTree *m_tree = nullptr;
    MySortFilterProxyModel *m_proxy;
    QStringList m_expandedOids;
    bool m_saveState = false;
    bool m_restoring = false;
    QString m_settingsKey;
    QString m_host;
    QString m_port;
    QString m_archive;
};
