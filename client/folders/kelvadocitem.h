#pragma once

#include <QIcon>
#include <QStandardItem>

/// One folder in a KelvaDocTree. Not an item of a QStandardItemModel: several operations of the base class
/// are hidden by others with the tree's meaning, so never pass one around as a QStandardItem.
class KelvaDocItem final : public QStandardItem
{
public:
    /// Does not enter itself into the parent's children; the creator calls appendChild().
    KelvaDocItem(const QString &oid, const QString &name, const QPixmap &picture, const QString &flag,
                 const QString &extKey, const QString &buzzWords, KelvaDocItem *parent);
    ~KelvaDocItem() override;

    const QString &getOid() const { return m_oid; }
    const QString &getName() const { return m_name; }
    const QString &getBuzzWords() const { return m_buzzWords; }
    const QIcon &icon() const { return m_icon; }
    QString getFlag() const { return m_flag; }
    QString getExtKey() const { return m_extKey; }

    void setOid(const QString &oid) { m_oid = oid; }
    void setBuzzWords(const QString &buzzWords) { m_buzzWords = buzzWords; }
    void setFlag(const QString &flag) { m_flag = flag; }
    void setExtKey(const QString &extKey) { m_extKey = extKey; }
    /// Name and icon mark the folder as changed; the other fields are tracked by who edits them.
    void setName(const QString &name);
    void setIcon(const QIcon &icon);

    void setChanged(bool changed) { m_changed = changed; }
    bool hasChange() const { return m_changed; }
    /// The current folder of a view, drawn bold and red.
    void setChecked(bool checked) { m_checked = checked; }
    bool isItemChecked() const { return m_checked; }
    Qt::ItemFlags getFlags() const { return m_itemFlags; }
    void setFlags(Qt::ItemFlags flags) { m_itemFlags = flags; }

    KelvaDocItem *parent() const { return m_parent; }
    /// Null outside 0 to childCount() - 1.
    KelvaDocItem *child(int index) const { return m_children.value(index); }
    int childCount() const { return m_children.size(); }
    /// Index among the parent's children; 0 without a parent.
    int row() const;
    int columnCount() const { return 3; }
    /// The argument is a column: 0 name, 1 external key, 2 keywords. Anything else is a role of the base
    /// class.
    QVariant data(int column) const override;
    /// A plain folder, made by a client.
    bool isDeleteable() const { return m_flag == "0"; }

    void appendChild(KelvaDocItem *item) { m_children.append(item); }
    /// Takes the item and everything below it out of the tree and appends them to list, the item last. They
    /// stay readable until their former parents die.
    void removeChild(KelvaDocItem *item, QList<KelvaDocItem *> &list);
    /// Oid for a new child: one above the largest number in use.
    QString nextChildNum() const;
    /// The icon as PNG, 32 x 32.
    QByteArray getPicture() const;

private:
    QString m_name;
    QString m_oid;
    QList<KelvaDocItem *> m_removedChildren;
    KelvaDocItem *m_parent;
    QList<KelvaDocItem *> m_children;
    QString m_flag;
    QString m_extKey;
    QString m_buzzWords;
    QIcon m_icon;
    bool m_changed = false;
    bool m_checked = false;
    Qt::ItemFlags m_itemFlags =
        Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDropEnabled | Qt::ItemIsEnabled;
    mutable int m_row = 0; ///< where row() found the item last
};
