#include "documents/celldata.h"

#include "widgets/itemroles.h"

#include <QAbstractProxyModel>
#include <QSignalBlocker>

void setCellValue(QAbstractItemModel *model, const QModelIndex &index, const QString &text, const QIcon &icon,
                  const QVariant &rawValue)
{
    QModelIndex cell = index;
    while (auto *proxy = qobject_cast<QAbstractProxyModel *>(model)) {
        cell = proxy->mapToSource(cell);
        model = proxy->sourceModel();
    }
    {
        // Every change that is heard of starts an edit of its own.
        const QSignalBlocker blocker(model);
        model->setData(cell, text, Qt::EditRole);
        model->setData(cell, icon, Qt::DecorationRole);
    }
    model->setData(cell, rawValue, itemrole::rawValue);
}
