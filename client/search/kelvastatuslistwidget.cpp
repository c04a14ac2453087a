#include "search/kelvastatuslistwidget.h"

#include "contract/recordformat.h"
#include "documents/documentcolumns.h"
#include "documents/documentmime.h"
#include "widgets/itemroles.h"
#include "widgets/recordpicture.h"

#include <QDropEvent>
#include <QMimeData>
#include <QSignalBlocker>

KelvaStatusListWidget::KelvaStatusListWidget(QWidget *parent) : QListWidget(parent)
{
    setDragDropMode(DropOnly);
    setDragDropOverwriteMode(true); // a drop is on an entry, never between two
}

void KelvaStatusListWidget::setStatusList(const QStringList &records, const QList<QByteArray> &pictures)
{
    const QSignalBlocker blocker(this);
    clear();
    auto *all = new QListWidgetItem(QIcon(":/icons/allestatus.png"), tr("All"), this);
    all->setData(itemrole::rawValue, documentstatus::all);
    all->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    for (int i = 0; i < records.size(); ++i) {
        const QStringList fields = records.at(i).split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        auto *entry = new QListWidgetItem(QIcon(recordPicture(pictures.value(i))), fields.value(1), this);
        entry->setData(itemrole::rawValue, fields.value(0));
        entry->setFlags(Qt::ItemIsSelectable | Qt::ItemIsDropEnabled | Qt::ItemIsEnabled);
    }
    setCurrentRow(0);
}

QString KelvaStatusListWidget::currentStatus() const
{
    return currentItem() ? currentItem()->data(itemrole::rawValue).toString() : QString();
}

QStringList KelvaStatusListWidget::mimeTypes() const
{
    return {documentmime::type()};
}

/// The entry under the pointer if documents may be dropped on it, otherwise null.
QListWidgetItem *KelvaStatusListWidget::dropTarget(const QDropEvent *event) const
{
    QListWidgetItem *entry = itemAt(event->pos());
    const bool takes = entry && entry->flags().testFlag(Qt::ItemIsDropEnabled) &&
                       event->mimeData()->hasFormat(documentmime::type());
    return takes ? entry : nullptr;
}

void KelvaStatusListWidget::dragMoveEvent(QDragMoveEvent *event)
{
    QListWidget::dragMoveEvent(event); // scrolls and marks the entry
    event->setAccepted(dropTarget(event) != nullptr);
}

void KelvaStatusListWidget::dropEvent(QDropEvent *event)
{
    stopAutoScroll();
    setState(NoState);
    viewport()->update();
    const QListWidgetItem *entry = dropTarget(event);
    const QStringList ids = entry ? documentmime::documentIds(event->mimeData()) : QStringList();
    if (ids.isEmpty()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    emit updateStatus(ids, "0." + entry->data(itemrole::rawValue).toString());
}
