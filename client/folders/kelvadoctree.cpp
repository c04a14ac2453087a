#include "folders/kelvadoctree.h"

#include "contract/folderoid.h"
#include "contract/recordformat.h"
#include "folders/kelvadocitem.h"
#include "widgets/recordpicture.h"

#include <QBrush>
#include <QCompleter>
#include <QCryptographicHash>
#include <QFont>
#include <QPixmapCache>
#include <QSignalBlocker>

namespace {

/// Fields of a folder record.
enum Field {
    oidField,
    nameField,
    flagField,
    keyField,
    parentField,
    changedField,
    lockField,
    emptyField,
    wordsField
};

constexpr int fieldsWithMarkers = 8;
constexpr int fieldsWithKey = 4;
constexpr int fieldsWithFlag = 3;

} // namespace

KelvaDocTree::KelvaDocTree(const QString &title, bool withTopNode, const QString &topName,
                           const QString &topOid, QObject *parent)
    : QAbstractItemModel(parent),
      m_root(
          new KelvaDocItem(folderoid::all, title, QPixmap(), QString(), tr("Key"), tr("Keywords"), nullptr)),
      m_top(m_root.get())
{
    m_index.insert(folderoid::all, m_root.get());
    if (withTopNode) {
        m_top = topName.isEmpty()
                    ? new KelvaDocItem(folderoid::all, tr("All folders"), QPixmap(":/icons/allfolders.png"),
                                       QString(), QString(), QString(), m_root.get())
                    : new KelvaDocItem(topOid, topName, QPixmap(":/icons/folder.png"), QString(), QString(),
                                       QString(), m_root.get());
        m_top->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        m_root->appendChild(m_top);
    }
    m_index.insert(m_top->getOid(), m_top);
}

KelvaDocTree::~KelvaDocTree() = default;

int KelvaDocTree::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    return parent.isValid() ? item(parent)->childCount() : m_root->childCount();
}

int KelvaDocTree::columnCount(const QModelIndex &) const
{
    return m_root->columnCount();
}

QModelIndex KelvaDocTree::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    KelvaDocItem *node = (parent.isValid() ? item(parent) : m_root.get())->child(row);
    return node ? createIndex(row, column, node) : QModelIndex();
}

QModelIndex KelvaDocTree::parent(const QModelIndex &index) const
{
    return index.isValid() ? indexFromItem(item(index)->parent()) : QModelIndex();
}

Qt::ItemFlags KelvaDocTree::flags(const QModelIndex &index) const
{
    return index.isValid() ? item(index)->getFlags() : Qt::NoItemFlags;
}

QVariant KelvaDocTree::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const KelvaDocItem *node = item(index);
    switch (role) {
    case Qt::DisplayRole:
        return node->data(index.column());
    case Qt::DecorationRole:
        return index.column() == 0 ? QVariant(node->icon()) : QVariant();
    case Qt::ForegroundRole:
        return node->isItemChecked() ? QVariant(QBrush(QColor(255, 0, 0))) : QVariant();
    case Qt::FontRole:
        if (node->isItemChecked()) {
            QFont font = qvariant_cast<QFont>(node->QStandardItem::data(Qt::FontRole));
            font.setWeight(QFont::Bold);
            return font;
        }
        return QVariant();
    default:
        return QVariant();
    }
}

bool KelvaDocTree::setData(const QModelIndex &index, const QVariant &value, int)
{
    if (!index.isValid())
        return false;
    KelvaDocItem *node = item(index);
    switch (index.column()) {
    case 0:
        node->setName(value.toString());
        break;
    case 1:
        node->setExtKey(value.toString());
        break;
    default:
        node->setBuzzWords(value.toString());
        break;
    }
    emit dataChanged(index, index);
    emit itemChanged(node);
    return true;
}

QVariant KelvaDocTree::headerData(int section, Qt::Orientation orientation, int role) const
{
    // The root is never shown; its fields are the titles.
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 &&
        section < m_root->columnCount())
        return m_root->data(section);
    return QVariant();
}

KelvaDocItem *KelvaDocTree::item(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<KelvaDocItem *>(index.internalPointer()) : nullptr;
}

QModelIndex KelvaDocTree::indexFromItem(const KelvaDocItem *item) const
{
    if (!item || item == m_root.get())
        return QModelIndex();
    return createIndex(item->row(), 0, const_cast<KelvaDocItem *>(item));
}

void KelvaDocTree::setPrevItem(KelvaDocItem *item)
{
    m_previous = item;
    if (item)
        item->setChecked(true);
}

void KelvaDocTree::resetPrevItem()
{
    if (m_previous)
        m_previous->setChecked(false);
    m_previous = nullptr;
}

void KelvaDocTree::updateAll()
{
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

void KelvaDocTree::loadFromStringList(const QStringList &rows, const QList<QByteArray> &pictures, bool clear)
{
    m_hiddenRows.clear();
    m_emptyRows.clear();
    m_completerStrings.clear();
    if (m_completer)
        m_completer->deleteLater();
    const QSignalBlocker blocker(this);
    if (clear) {
        m_index.clear();
        m_previous = nullptr;
        QList<KelvaDocItem *> removed;
        for (int i = m_top->childCount() - 1; i >= 0; --i)
            m_top->removeChild(m_top->child(i), removed);
        m_index.insert(m_root->getOid(), m_root.get());
        m_index.insert(m_top->getOid(), m_top);
    }
    for (int i = 0; i < rows.size(); ++i)
        loadRow(rows.at(i).split(recordformat::fieldSeparator, Qt::KeepEmptyParts), pictures.value(i));
    m_completerStrings.removeDuplicates();
    m_completer = new QCompleter(m_completerStrings, this);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
}

void KelvaDocTree::loadRow(const QStringList &fields, const QByteArray &picture)
{
    if (!folderoid::isPath(fields.value(oidField)))
        return; // would pass for another folder, and enter a clause
    const bool hasMarkers = fields.size() >= fieldsWithMarkers;
    KelvaDocItem *node = insertItem(fields.value(oidField), fields.value(nameField), picture,
                                    fields.size() >= fieldsWithFlag ? fields.value(flagField) : QString(),
                                    fields.size() >= fieldsWithKey ? fields.value(keyField) : QString(),
                                    fields.value(wordsField));
    if (node->getFlag().contains('I'))
        m_hiddenRows.append(node);
    if (hasMarkers && fields.at(lockField).contains('L'))
        node->setFlags(Qt::NoItemFlags);
    if (hasMarkers && fields.at(emptyField).contains('E'))
        m_emptyRows.append(node);
    if (hasMarkers)
        addCompletions(fields);
    node->setChanged(false);
}

void KelvaDocTree::addCompletions(const QStringList &fields)
{
    if (fields.size() > wordsField) {
        m_completerStrings << fields.at(wordsField).split(' ', Qt::SkipEmptyParts);
        m_completerStrings << fields.at(wordsField);
    }
    m_completerStrings << fields.at(nameField).split(' ') << fields.at(keyField).split(' ')
                       << fields.at(nameField) << fields.at(keyField);
}

KelvaDocItem *KelvaDocTree::insertItem(const QString &oid, const QString &name, const QByteArray &picture,
                                       const QString &flag, const QString &extKey, const QString &buzzWords)
{
    QPixmap pixmap;
    if (picture.isEmpty()) {
        // Loaded once: even for a resource, Qt looks for its variants on each load.
        const QString key = QStringLiteral("kelva default folder");
        if (!QPixmapCache::find(key, &pixmap)) {
            pixmap = QPixmap(":/icons/folder.png");
            QPixmapCache::insert(key, pixmap);
        }
    } else {
        // Folders with like pictures share one pixmap.
        const QString key = QCryptographicHash::hash(picture, QCryptographicHash::Md5).toBase64();
        if (!QPixmapCache::find(key, &pixmap)) {
            pixmap = recordPicture(picture);
            QPixmapCache::insert(key, pixmap);
        }
    }
    const QString parentOid = folderoid::parent(oid);
    KelvaDocItem *parentItem = parentOid.isEmpty() ? m_top : m_index.value(parentOid, m_top);
    if (parentItem == m_root.get())
        parentItem = m_top;
    auto *node = new KelvaDocItem(oid, name, pixmap, flag, extKey, buzzWords, parentItem);
    const int row = parentItem->childCount();
    beginInsertRows(indexFromItem(parentItem), row, row);
    parentItem->appendChild(node);
    endInsertRows();
    node->setChanged(true);
    m_index.insert(oid, node);
    return node;
}
