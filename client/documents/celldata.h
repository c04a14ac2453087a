#pragma once

#include <QIcon>
#include <QVariant>

class QAbstractItemModel;
class QModelIndex;

/// Gives a cell its text, its icon and the raw value they stand for. The model below all proxies tells of it
/// once, and only when the raw value is another one. What hears of it may remove the row: use index no more.
void setCellValue(QAbstractItemModel *model, const QModelIndex &index, const QString &text, const QIcon &icon,
                  const QVariant &rawValue);
