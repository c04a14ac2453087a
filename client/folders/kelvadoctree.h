#pragma once

#include <QAbstractItemModel>
#include <QMap>
#include <QStringList>

#include <memory>

class KelvaDocItem;
class QCompleter;

/// The folders as a tree with the columns name, key and keywords.
class KelvaDocTree final : public QAbstractItemModel
{
    Q_OBJECT

public:
    /// With a top node every folder without a parent in the tree hangs below it: "All folders" with oid "-1",
    /// or topName with topOid when a name is given.
    KelvaDocTree(const QString &title, bool withTopNode, const QString &topName, const QString &topOid,
                 QObject *parent);
    ~KelvaDocTree() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    using QObject::parent;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Display, decoration, foreground and font, and no other role.
    QVariant data(const QModelIndex &index, int role) const override;
    /// The role is not looked at.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    KelvaDocItem *item(const QModelIndex &index) const;
    QModelIndex indexFromItem(const KelvaDocItem *item) const;
    /// Null when no folder has this oid.
    KelvaDocItem *findItem(const QString &oid) const { return m_index.value(oid); }
    KelvaDocItem *getRootItem() const { return m_root.get(); }
    /// All nodes in the text order of their oids.
    QList<KelvaDocItem *> getAllItems() const { return m_index.values(); }
    QCompleter *getCompleter() const { return m_completer; }
    QStringList getCompleterStringList() const { return m_completerStrings; }
    QList<KelvaDocItem *> getHiddenRows() const { return m_hiddenRows; }
    QList<KelvaDocItem *> getEmptyRows() const { return m_emptyRows; }
    void setCanCreateFolder(bool can) { m_canCreateFolder = can; }
    bool getCanCreateFolder() const { return m_canCreateFolder; }
    void createNewFolder(const QString &parentOid) { emit doCreateFolder(parentOid); }
    /// Marks the current folder; null marks none.
    void setPrevItem(KelvaDocItem *item);
    void resetPrevItem();
    /// Tells the views to lay out anew.
    void updateAll();

    /// Fills the tree from folder records and their pictures; parents stand before their children. Without
    /// clear what is there stays, for a new tree. Load before a view shows the tree.
    void loadFromStringList(const QStringList &rows, const QList<QByteArray> &pictures, bool clear);
    KelvaDocItem *insertItem(const QString &oid, const QString &name, const QByteArray &picture,
                             const QString &flag, const QString &extKey, const QString &buzzWords);

    Qt::DropActions supportedDropActions() const override;
    /// Documents of this process alone.
    QStringList mimeTypes() const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    // folders/kelvadoctree_edit.cpp
    /// A new folder below parent, or a main folder without one. Returns its oid.
    QString newItem(KelvaDocItem *parent);
    KelvaDocItem *newItem2(KelvaDocItem *parent);
    KelvaDocItem *newItem(const QString &oid);
    /// Takes the folder and everything below it out of the tree and returns them, the folder last; they stay
    /// readable as long as their former parent lives. Nothing, after a word to the user, for a folder with
    /// sub folders when check is set, and for the root.
    QList<KelvaDocItem *> removeItem(KelvaDocItem *node, bool check);
    /// Child count of the root, as decimal text.
    QString getNextRootNumber() const;
    /// Records of oid, name, flag, key, parent oid and "1" for a changed folder, depth first, with their
    /// pictures.
    void getModelData(QStringList &rows, QList<QByteArray> &pictures) const;
    /// Hides the folder and everything below it from the search.
    void setItemHidden(KelvaDocItem *node);
    /// The next folder from position pos on, in the text order of the oids, in which every word occurs; pos
    /// ends up behind it. Null, with pos at the end, when there is none.
    KelvaDocItem *searchItem(const QString &text, int &pos, bool includeHidden) const;
    /// Position of the folder in that order; 0 for none.
    int getCurrentSearchIndex(const KelvaDocItem *node) const;

signals:
    void newDocumentFolder(QString docId, QString folder);
    void newDocumentFolders(QStringList docIds, QString folder);
    void updateDocuments();
    void itemChanged(KelvaDocItem *item);
    void doCreateFolder(QString parentOid);

private:
    void loadRow(const QStringList &fields, const QByteArray &picture);
    void addCompletions(const QStringList &fields);
    KelvaDocItem *insertNew(const QString &oid);

    std::unique_ptr<KelvaDocItem> m_root;
    KelvaDocItem *m_top;
    KelvaDocItem *m_previous = nullptr;
    QMap<QString, KelvaDocItem *> m_index;
    QList<KelvaDocItem *> m_hiddenRows;
    QList<KelvaDocItem *> m_emptyRows;
    QCompleter *m_completer = nullptr;
    bool m_canCreateFolder = false;
    QStringList m_completerStrings;
};
