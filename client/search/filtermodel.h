#pragma once

#include "search/searchtemplate.h"

#include <QHash>
#include <QStandardItemModel>

/// The stored searches in two groups, "personal filters" and "global filters". Groups have "1" under
/// itemrole::rawValue, "-1" under itemrole::storedId and their number under itemrole::filterGroup; searches
/// have 0 and their id.
class FilterModel final : public QStandardItemModel
{
    Q_OBJECT

public:
    explicit FilterModel(QObject *parent = nullptr) : QStandardItemModel(parent) {}

    /// Replaces all items; the former ones are gone.
    void setSearches(const QList<SearchTemplate> &searches, const QString &personalRole);
    /// Null when there is no such search.
    QStandardItem *searchItem(const QString &id) const { return m_items.value(id); }
    static bool isGroup(const QStandardItem *item);

private:
    QHash<QString, QStandardItem *> m_items; ///< by id
};
