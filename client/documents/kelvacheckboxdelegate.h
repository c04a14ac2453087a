#pragma once

#include "documents/kelvadelegate.h"

/// A box in the middle of the cell: "2" when ticked, "0" when not.
class KelvaCheckBoxDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    /// The bool is reserved.
    KelvaCheckBoxDelegate(bool reserved, QObject *parent);

    FieldKind kind() const override { return FieldKind::CheckBox; }
    KelvaDelegate *clone(QWidget *parent) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

    /// A click on the box, Space and Select turn it over.
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

    /// Place of the box within a cell.
    static QRect CheckBoxRect(const QStyleOptionViewItem &option);
};
