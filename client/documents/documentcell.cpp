#include "documents/documentcell.h"

#include "widgets/itemroles.h"

#include <QBrush>

namespace {

/// Where QStandardItem::flags() looks for what was set.
constexpr int flagsRole = Qt::UserRole - 1;

template<typename T>
QVariant given(bool is, const T &value)
{
    return is ? QVariant::fromValue(value) : QVariant();
}

} // namespace

void DocumentCell::setData(const QVariant &value, int role)
{
    if (role != Qt::DisplayRole && role != Qt::EditRole) {
        QStandardItem::setData(value, role);
    } else if (m_text != value.toString()) {
        m_text = value.toString();
        emitDataChanged();
    }
}

QVariant DocumentCell::data(int role) const
{
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return m_text;
    case flagsRole:
        return int(m_editable ? m_row->flags | Qt::ItemIsEditable : m_row->flags);
    case Qt::FontRole:
        return given(m_row->unread, m_row->unreadFont);
    case Qt::BackgroundRole:
        return given(m_row->background.isValid(), QBrush(m_row->background));
    case Qt::ToolTipRole:
        return given(!m_row->toolTip.isEmpty(), m_row->toolTip);
    case itemrole::readOnly:
        return m_row->readOnly ? 1 : 0;
    case itemrole::numeric:
        return given(m_numeric, true);
    case itemrole::retention:
        return given(m_row->retention, true);
    case itemrole::retentionEnd:
        return given(m_row->retentionEnd.isValid(), m_row->retentionEnd);
    default:
        return QStandardItem::data(role);
    }
}
