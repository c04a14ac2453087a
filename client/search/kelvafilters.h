#pragma once

#include <QTreeView>

/// The stored filters, in groups.
class KelvaFilters final : public QTreeView
{
    Q_OBJECT

public:
    explicit KelvaFilters(QWidget *parent = nullptr) : QTreeView(parent) { setHeaderHidden(true); }
};
