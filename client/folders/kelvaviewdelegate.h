#pragma once

#include "documents/kelvadelegate.h"

#include <QPointer>

class KelvaDocTree;

/// The folder column: its value is the oid of a folder of the tree, which is lent. The editor is a dialog.
class KelvaViewDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    KelvaViewDelegate(KelvaDocTree *tree, QWidget *parent);

    FieldKind kind() const override { return FieldKind::Folder; }
    KelvaDelegate *clone(QWidget *parent) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

    /// The dialog opens with a search for this; it keeps what was last searched for.
    void setSearchText(const QString &text) { m_searchText = text; }
    /// Null once the tree is gone.
    KelvaDocTree *getTree() const;
    /// Oid of the first folder of this name, in the text order of oids; empty when there is none.
    QString getValue(const QString &name) const;

private slots:
    void emitCloseEditor(int result);

private:
    QPointer<KelvaDocTree> m_tree;
    QString m_searchText;
};
