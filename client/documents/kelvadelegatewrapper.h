#pragma once

#include <QMap>
#include <QPair>
#include <QStyledItemDelegate>

/// For tables whose cells have different delegates within one column: forwards to the delegate of the cell.
/// Delegates that are added become the wrapper's.
class KelvaDelegateWrapper final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit KelvaDelegateWrapper(QObject *parent = nullptr) : QStyledItemDelegate(parent) {}

    /// Replaces, and deletes, a delegate that the cell has.
    void addDelegate(int row, int column, QStyledItemDelegate *delegate);
    /// Shifts the delegates of this row and the ones below down by a row first.
    void insertDelegate(int row, int column, QStyledItemDelegate *delegate);
    void removeDelegate(int row, int column);
    /// Moves the delegates of the rows below up by a row.
    void removeAllRowDelegates(int row);
    /// Null when the cell has none.
    QStyledItemDelegate *getDelegate(int row, int column) const;
    /// A wrapper, a child of parent, with clones of all delegates that can be cloned.
    KelvaDelegateWrapper *clone(QWidget *parent) const;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

protected:
    bool eventFilter(QObject *editor, QEvent *event) override;

private slots:
    void emitCommitData(QWidget *editor);
    void emitCloseEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint);

private:
    using Cell = QPair<int, int>; // row, column

    void shiftRows(int firstRow, int by);

    QMap<Cell, QStyledItemDelegate *> m_delegates;
};
