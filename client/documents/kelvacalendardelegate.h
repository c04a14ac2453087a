#pragma once

#include "documents/kelvadelegate.h"

/// A date as "yyyy-MM-dd". The editor is a dialog.
class KelvaCalendarDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    /// minToday: no date before today. extended: date macros are offered. withNull: the date can be taken
    /// away.
    KelvaCalendarDelegate(QWidget *parent, bool minToday, bool extended, bool withNull);

    FieldKind kind() const override { return FieldKind::Date; }
    KelvaDelegate *clone(QWidget *parent) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

    void setExtended(bool extended) { m_extended = extended; }

private slots:
    void emitCommitted();
    void emitCloseEditor();

private:
    const bool m_minToday;
    bool m_extended;
    const bool m_withNull;
};
