#pragma once

#include "documents/kelvadelegate.h"

#include <QStringList>

/// A field whose value is one of a list of texts. A text that is not in the list stays until the user chooses
/// another one.
class KelvaSimpleComboDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    KelvaSimpleComboDelegate(QStringList values, QObject *parent, bool commitOnActivate, bool closeOnChange,
                             bool sorted, bool showPopup);

    FieldKind kind() const override { return FieldKind::Values; }
    KelvaDelegate *clone(QWidget *parent) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

    /// Whether the list opens by itself with the editor.
    void setShowPopup(bool show) override { m_showPopup = show; }

private:
    const QStringList m_values;
    const bool m_commitOnActivate;
    const bool m_closeOnChange;
    const bool m_sorted;
    bool m_showPopup;
};
