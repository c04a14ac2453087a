#pragma once

#include <QColor>
#include <QDate>
#include <QFont>
#include <QStandardItem>
#include <QString>

#include <memory>

/// What all cells of one document row have in common. Their items share it, since there are tens of thousands
/// of them.
struct DocumentRowFacts
{
    Qt::ItemFlags flags; ///< of a cell that cannot be edited
    bool readOnly = false;
    bool unread = false;
    QFont unreadFont;
    QColor background; ///< invalid: none
    QString toolTip;
    bool retention = false;
    QDate retentionEnd; ///< invalid: none is known
};

/// A cell of the document table. The facts of its row cannot be set by role.
class DocumentCell final : public QStandardItem
{
public:
    DocumentCell(const QString &text, std::shared_ptr<const DocumentRowFacts> row, bool editable,
                 bool numeric)
        : m_text(text),
          m_row(std::move(row)),
          m_editable(editable),
          m_numeric(numeric)
    {
    }

    QVariant data(int role) const override;
    void setData(const QVariant &value, int role) override;

private:
    QString m_text; ///< here and not in the item's own list of values, which would be made for it alone
    const std::shared_ptr<const DocumentRowFacts> m_row;
    const bool m_editable;
    const bool m_numeric;
};
