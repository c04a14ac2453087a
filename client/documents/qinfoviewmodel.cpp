#include "documents/qinfoviewmodel.h"

#include <QSignalBlocker>

QInfoViewModel::QInfoViewModel(QObject *parent) : QStandardItemModel(parent) {}

bool QInfoViewModel::dropMimeData(const QMimeData *, Qt::DropAction, int, int, const QModelIndex &)
{
    return false;
}

void QInfoViewModel::updateLayout()
{
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

void QInfoViewModel::replaceRows(const QList<QList<QStandardItem *>> &rows)
{
    beginResetModel();
    {
        // One reset instead of a signal per cell, each of which would make the proxy sort anew.
        const QSignalBlocker blocker(this);
        setRowCount(0);
        setRowCount(rows.size());
        for (int row = 0; row < rows.size(); ++row)
            for (int column = 0; column < rows.at(row).size(); ++column)
                setItem(row, column, rows.at(row).at(column));
    }
    endResetModel();
}
