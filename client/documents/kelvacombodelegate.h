#pragma once

#include "documents/kelvadelegate.h"

#include <QHash>
#include <QIcon>
#include <QStringList>

/// A field whose value is the key of an entry in a list: main folder, status, document type. A value that is
/// in no entry stays until the user chooses another one.
class KelvaComboDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    /// values: entries of key, display text and further fields, joined by recordformat::fieldSeparator.
    /// pics: PNG data, parallel to values. The bool after parent is reserved.
    KelvaComboDelegate(QStringList values, QList<QByteArray> pics, QObject *parent, bool reserved,
                       QIcon defaultIcon, bool commitOnActivate, bool closeOnChange);

    FieldKind kind() const override { return FieldKind::Choice; }
    KelvaDelegate *clone(QWidget *parent) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

    const QStringList &getValues() const { return m_values; }
    const QList<QByteArray> &getPics() const { return m_pics; }
    /// Key of the entry with this display text; "not assigned" when there is none.
    QString getValue(const QString &display) const;
    bool knows(const QString &key) const { return m_entries.contains(key); }
    /// Display text of the key's entry; "not assigned" when there is none.
    QString getData(const QString &key) const;
    /// A field of the key's entry, empty when entry or field is missing.
    QString getData(const QString &key, int field) const;
    /// The entry's picture, else the default icon.
    QIcon getIcon(const QString &key) const;

    /// Whether the list opens by itself with the editor.
    void setShowPopup(bool show) override { m_showPopup = show; }

private:
    const QStringList m_values;
    const QList<QByteArray> m_pics;
    QHash<QString, QStringList> m_entries;
    QHash<QString, QIcon> m_icons;
    const QIcon m_defaultIcon;
    const bool m_commitOnActivate;
    const bool m_closeOnChange;
    bool m_showPopup = true;
};
