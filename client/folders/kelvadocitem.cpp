#include "folders/kelvadocitem.h"

#include <QBuffer>
#include <QPixmap>

KelvaDocItem::KelvaDocItem(const QString &oid, const QString &name, const QPixmap &picture,
                           const QString &flag, const QString &extKey, const QString &buzzWords,
                           KelvaDocItem *parent)
    : m_name(name),
      m_oid(oid),
      m_parent(parent),
      m_flag(flag),
      m_extKey(extKey),
      m_buzzWords(buzzWords),
      m_icon(picture)
{
    setDropEnabled(true);
}

KelvaDocItem::~KelvaDocItem()
{
    qDeleteAll(m_children);
    qDeleteAll(m_removedChildren);
}

void KelvaDocItem::setName(const QString &name)
{
    m_name = name;
    m_changed = true;
}

void KelvaDocItem::setIcon(const QIcon &icon)
{
    m_icon = icon;
    m_changed = true;
}

int KelvaDocItem::row() const
{
    if (!m_parent)
        return 0;
    // Proxies ask for the row of every item they map: searching all siblings each time would be quadratic.
    if (m_parent->m_children.value(m_row) != this)
        m_row = m_parent->m_children.indexOf(const_cast<KelvaDocItem *>(this));
    return m_row;
}

QVariant KelvaDocItem::data(int column) const
{
    switch (column) {
    case 0:
        return m_name;
    case 1:
        return m_extKey;
    case 2:
        return m_buzzWords;
    default:
        return QStandardItem::data(column);
    }
}

void KelvaDocItem::removeChild(KelvaDocItem *item, QList<KelvaDocItem *> &list)
{
    for (int i = item->childCount() - 1; i >= 0; --i)
        item->removeChild(item->child(i), list);
    list.append(item);
    m_removedChildren.append(item);
    m_children.removeOne(item);
}

QString KelvaDocItem::nextChildNum() const
{
    int largest = 0;
    for (const KelvaDocItem *item : m_children)
        largest = qMax(largest, item->m_oid.midRef(item->m_oid.lastIndexOf('.') + 1).toInt());
    return m_oid + '.' + QString::number(largest + 1);
}

QByteArray KelvaDocItem::getPicture() const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    m_icon.pixmap(32, 32, QIcon::Normal, QIcon::Off).save(&buffer, "PNG");
    return bytes;
}
