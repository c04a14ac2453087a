#include "search/filtermodel.h"

#include "widgets/itemroles.h"

void FilterModel::setSearches(const QList<SearchTemplate> &searches, const QString &personalRole)
{
    clear();
    m_items.clear();
    const QString titles[] = {tr("personal filters"), tr("global filters")};
    for (int group = 0; group < 2; ++group) {
        auto *item = new QStandardItem(titles[group]);
        item->setData(QStringLiteral("1"), itemrole::rawValue);
        item->setData(QStringLiteral("-1"), itemrole::storedId);
        item->setData(group, itemrole::filterGroup);
        item->setFlags(Qt::ItemIsEnabled);
        appendRow(item);
    }
    for (const SearchTemplate &search : searches) {
        auto *child = new QStandardItem(search.name);
        child->setData(0, itemrole::rawValue);
        child->setData(search.id, itemrole::storedId);
        child->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item(search.isPersonal(personalRole) ? 0 : 1)->appendRow(child);
        m_items.insert(search.id, child);
    }
}

bool FilterModel::isGroup(const QStandardItem *item)
{
    return item->data(itemrole::rawValue).toInt() == 1;
}
