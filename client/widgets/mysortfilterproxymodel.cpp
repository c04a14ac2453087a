#include "widgets/mysortfilterproxymodel.h"

#include "widgets/itemroles.h"

#include <QLocale>

#include <limits>

namespace {

double toNumber(QString text, bool *isNumber)
{
    return text.replace(QLocale().decimalPoint(), '.').toDouble(isNumber);
}

} // namespace

MySortFilterProxyModel::MySortFilterProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent),
      m_sortedColumn(QColor(180, 215, 255))
{
}

QVariant MySortFilterProxyModel::data(const QModelIndex &index, int role) const
{
    // Stronger than the colours of resubmission and retention, which the sorted column does not show.
    if (role == Qt::BackgroundRole && index.isValid() && index.column() == sortColumn())
        return m_sortedColumn;
    return QSortFilterProxyModel::data(index, role);
}

bool MySortFilterProxyModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const QString leftText = left.data(Qt::DisplayRole).toString();
    const QString rightText = right.data(Qt::DisplayRole).toString();
    bool leftIsNumber = false;
    bool rightIsNumber = false;
    double leftNumber = toNumber(leftText, &leftIsNumber);
    double rightNumber = toNumber(rightText, &rightIsNumber);
    if (left.data(itemrole::numeric).toBool()) {
        const double empty = sortOrder() == Qt::AscendingOrder ? std::numeric_limits<double>::max() : 0.0;
        if (leftText.isEmpty()) {
            leftNumber = empty;
            leftIsNumber = true;
        }
        if (rightText.isEmpty()) {
            rightNumber = empty;
            rightIsNumber = true;
        }
        if (leftIsNumber || rightIsNumber)
            return leftNumber < rightNumber;
    } else if (leftIsNumber && rightIsNumber) {
        return leftNumber < rightNumber;
    }
    return QString::localeAwareCompare(leftText, rightText) < 0;
}
