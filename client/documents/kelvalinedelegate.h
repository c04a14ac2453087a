#pragma once

#include "documents/kelvadelegate.h"

#include <QStringList>

class QStandardItemModel;

/// Free text, with completions, or a number.
class KelvaLineDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    KelvaLineDelegate(const QStringList &completions, QObject *parent, int maxLength, bool numeric);

    KelvaDelegate *clone(QWidget *parent) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

    bool getIsNumeric() const { return m_numeric; }
    int getMaxLength() const { return m_maxLength; }
    /// Replaces the completions.
    void setCompletor(const QStringList &completions);
    /// Whether a text is drawn, and with Control opened, as a link.
    static bool isURL(const QString &text);

private:
    QStandardItemModel *m_completions;
    const int m_maxLength;
    const bool m_numeric;
};
