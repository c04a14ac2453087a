#pragma once

#include "widgets/mysortfilterproxymodel.h"

#include <QStandardItemModel>
#include <QTableView>

class KelvaDelegate;

/// A table of one cell behind the proxy of the document table, to edit the cell with one delegate.
class OneCellTable : public QObject
{
    Q_OBJECT

public:
    /// The delegate becomes the table's.
    explicit OneCellTable(KelvaDelegate *delegate);

    QStandardItem *cell() const { return m_model.item(0, 0); }
    void setCell(const QString &text, const QString &rawValue = QString());
    QTableView &view() { return m_view; }
    QModelIndex index() const { return m_proxy.index(0, 0); }

    /// Opens the editor as a key press would; null when the cell gets none.
    QWidget *edit();
    /// Lets the delegate write what the editor holds, as Return in it would, and closes it.
    void commit();
    bool isEditing() const { return m_view.indexWidget(index()) != nullptr; }
    /// Text and raw value of the cell, and how often the model told of a change since the editor opened:
    /// "text|raw|changes".
    QString outcome() const;

private slots:
    void countChange() { ++m_changes; }

private:
    QStandardItemModel m_model;
    MySortFilterProxyModel m_proxy;
    QTableView m_view;
    int m_changes = 0;
};
