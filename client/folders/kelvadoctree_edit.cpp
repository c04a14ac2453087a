#include "folders/kelvadoctree.h"

#include "contract/folderoid.h"
#include "contract/recordformat.h"
#include "documents/documentmime.h"
#include "folders/kelvadocitem.h"
#include "widgets/plainbox.h"

#include <QBuffer>
#include <QPixmap>
#include <QSet>

namespace {

void dump(const KelvaDocItem &node, QStringList &rows, QList<QByteArray> &pictures)
{
    if (node.getOid() != QLatin1String(folderoid::all)) {
        const QStringList fields{node.getOid(),
                                 node.getName(),
                                 node.getFlag(),
                                 node.getExtKey(),
                                 node.parent() ? node.parent()->getOid() : QString(),
                                 node.hasChange() ? QStringLiteral("1") : QStringLiteral("0")};
        rows << fields.join(recordformat::fieldSeparator);
        pictures << node.getPicture();
    }
    for (int i = 0; i < node.childCount(); ++i)
        dump(*node.child(i), rows, pictures);
}

bool matches(const KelvaDocItem &node, const QStringList &words)
{
    for (const QString &word : words)
        if (!node.getName().contains(word, Qt::CaseInsensitive) &&
            !node.getExtKey().contains(word, Qt::CaseInsensitive) &&
            !node.getBuzzWords().contains(word, Qt::CaseInsensitive))
            return false;
    return true;
}

} // namespace

Qt::DropActions KelvaDocTree::supportedDropActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

QStringList KelvaDocTree::mimeTypes() const
{
    return {documentmime::type()};
}

bool KelvaDocTree::dropMimeData(const QMimeData *data, Qt::DropAction, int, int, const QModelIndex &parent)
{
    const QStringList ids = documentmime::documentIds(data);
    if (ids.isEmpty() || !parent.isValid())
        return false;
    emit newDocumentFolders(ids, item(parent)->getOid());
    return true;
}

KelvaDocItem *KelvaDocTree::insertNew(const QString &oid)
{
    QByteArray picture;
    QBuffer buffer(&picture);
    buffer.open(QIODevice::WriteOnly);
    QPixmap(":/icons/folder.png").save(&buffer, "PNG");
    KelvaDocItem *node =
        insertItem(oid, tr("New folder"), picture, QStringLiteral("0"), QString(), QString());
    node->setChanged(true);
    return node;
}

QString KelvaDocTree::newItem(KelvaDocItem *parent)
{
    const bool main = !parent || parent->getOid() == QLatin1String(folderoid::all);
    return insertNew(main ? getNextRootNumber() : parent->nextChildNum())->getOid();
}

KelvaDocItem *KelvaDocTree::newItem2(KelvaDocItem *parent)
{
    return insertNew(parent ? parent->nextChildNum() : getNextRootNumber());
}

KelvaDocItem *KelvaDocTree::newItem(const QString &oid)
{
    KelvaDocItem *node = insertNew(oid);
    updateAll();
    return node;
}

QList<KelvaDocItem *> KelvaDocTree::removeItem(KelvaDocItem *node, bool check)
{
    if (check && node->childCount() > 0) {
        plainbox::information(nullptr, tr("Delete"),
                              tr("The folder could not be deleted. The folder contains sub folders!"));
        return {};
    }
    if (!node->parent()) {
        plainbox::information(nullptr, tr("Delete"), tr("The root-folder cannot be deleted!"));
        return {};
    }
    QList<KelvaDocItem *> removed;
    const int row = node->row();
    beginRemoveRows(indexFromItem(node->parent()), row, row);
    node->parent()->removeChild(node, removed);
    endRemoveRows();
    for (KelvaDocItem *gone : qAsConst(removed)) {
        m_index.remove(gone->getOid());
        m_hiddenRows.removeAll(gone);
        m_emptyRows.removeAll(gone);
        if (m_previous == gone)
            m_previous = nullptr;
    }
    updateAll();
    return removed;
}

QString KelvaDocTree::getNextRootNumber() const
{
    return QString::number(m_root->childCount());
}

void KelvaDocTree::getModelData(QStringList &rows, QList<QByteArray> &pictures) const
{
    rows.clear();
    pictures.clear();
    dump(*m_root, rows, pictures);
}

void KelvaDocTree::setItemHidden(KelvaDocItem *node)
{
    if (!m_hiddenRows.contains(node))
        m_hiddenRows.append(node);
    for (int i = 0; i < node->childCount(); ++i)
        setItemHidden(node->child(i));
}

KelvaDocItem *KelvaDocTree::searchItem(const QString &text, int &pos, bool includeHidden) const
{
    QStringList words = text.split(' ');
    for (QString &word : words)
        word = word.trimmed();
    const QSet<KelvaDocItem *> hidden(m_hiddenRows.cbegin(), m_hiddenRows.cend());
    const QList<KelvaDocItem *> items = getAllItems();
    while (pos < items.size()) {
        KelvaDocItem *node = items.at(pos++);
        if (node->getOid() != QLatin1String(folderoid::all) && (includeHidden || !hidden.contains(node)) &&
            matches(*node, words))
            return node;
    }
    return nullptr;
}

int KelvaDocTree::getCurrentSearchIndex(const KelvaDocItem *node) const
{
    return node ? qMax(0, getAllItems().indexOf(const_cast<KelvaDocItem *>(node))) : 0;
}
