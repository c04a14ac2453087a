#pragma once

#include "documents/fieldkind.h"

#include <QStyledItemDelegate>

/// Base of all cell delegates. They are made for a column of the document table, and clones of them serve the
/// search bar and the extended search.
class KelvaDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit KelvaDelegate(QObject *parent = nullptr) : QStyledItemDelegate(parent) {}

    virtual FieldKind kind() const { return FieldKind::Plain; }
    /// Whether a list of choices opens by itself with the editor.
    virtual void setShowPopup(bool) {}
    /// The one column this delegate edits; -1, the default, means any.
    void setDelegateColumn(int column) { delegateColumn = column; }
    /// A new delegate of the same kind and configuration, a child of parent.
    virtual KelvaDelegate *clone(QWidget *parent) const = 0;

    /// An editor that is a window of its own ends by its own buttons: losing the focus or being hidden must
    /// not end the editing, and it stays where it opened.
    static bool isWindow(QObject *editor);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
    /// The whole text of a cell that is too narrow for it, unless the cell has a tip of its own.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

signals:
    void requestKeyboard();

protected slots:
    /// For an editor's own signals: writes what the sending editor holds.
    void emitCommitData();
    /// The same, and ends the editing.
    void doCloseEditor();
    /// Ends the editing; what the sending editor holds is dropped.
    void doGiveUp();

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
    /// A thin frame in place of the style's, which is a veil over the text.
    static void paintFocus(QPainter *painter, const QStyleOptionViewItem &option);
    bool eventFilter(QObject *editor, QEvent *event) override;

    bool serves(const QModelIndex &index) const
    {
        return delegateColumn < 0 || delegateColumn == index.column();
    }

    int delegateColumn = -1;
};
