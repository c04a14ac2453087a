#include "search/kelvastatuslistwidget.h"

#include "documents/documentcolumns.h"
#include "documents/itemroles.h"
#include "server/recordformat.h"

#include <QSignalBlocker>

void KelvaStatusListWidget::setStatusList(const QStringList &records, const QList<QByteArray> &pictures)
{
    const QSignalBlocker blocker(this);
    clear();
    auto *all = new QListWidgetItem(QIcon(":/icons/allestatus.png"), tr("All"), this);
    all->setData(itemrole::rawValue, documentstatus::all);
    all->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    for (int i = 0; i < records.size(); ++i) {
        const QStringList fields = records.at(i).split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        QPixmap picture;
        picture.loadFromData(pictures.value(i));
        auto *entry = new QListWidgetItem(QIcon(picture), fields.value(1), this);
        entry->setData(itemrole::rawValue, fields.value(0));
        entry->setFlags(Qt::ItemIsSelectable | Qt::ItemIsDropEnabled | Qt::ItemIsEnabled);
    }
    setCurrentRow(0);
}

QString KelvaStatusListWidget::currentStatus() const
{
    return currentItem() ? currentItem()->data(itemrole::rawValue).toString() : QString();
}
