#pragma once

#include "documents/kelvadelegate.h"

#include <QStringList>

class QStandardItemModel;

/// Free text, with completions, or a number.
class KelvaLineDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    /// Stands among the values of an attribute that is a number. It is no completion.
    static constexpr char numericMark[] = "type:Numeric";

    KelvaLineDelegate(const QStringList &completions, QObject *parent, int maxLength, bool numeric);

    FieldKind kind() const override { return m_numeric ? FieldKind::Number : FieldKind::Text; }
    KelvaDelegate *clone(QWidget *parent) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    /// A text that is new becomes a completion for the next time.
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

    /// Moments such as "2024-03-05T10:00:00" are shown as the locale writes them.
    void setShowsLocalTime(bool shows) { m_showsLocalTime = shows; }
    QString displayText(const QVariant &value, const QLocale &locale) const override;

    bool getIsNumeric() const { return m_numeric; }
    int getMaxLength() const { return m_maxLength; }
    /// Replaces the completions.
    void setCompletor(const QStringList &completions);
    /// Whether a text is drawn, and with Control opened, as a link.
    static bool isURL(const QString &text);

protected:
    bool eventFilter(QObject *editor, QEvent *event) override;

private:
    QStandardItemModel *m_completions;
    const int m_maxLength;
    const bool m_numeric;
    bool m_showsLocalTime = false;
};
