#pragma once

#include <QStyledItemDelegate>

/// Base of all cell delegates. They are made for a column of the document table, and clones of them serve the
/// search bar and the extended search.
class KelvaDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit KelvaDelegate(QObject *parent = nullptr) : QStyledItemDelegate(parent) {}

    /// The one column this delegate edits; -1, the default, means any.
    void setDelegateColumn(int column) { delegateColumn = column; }
    /// A new delegate of the same kind and configuration, a child of parent.
    virtual KelvaDelegate *clone(QWidget *parent) const = 0;

signals:
    void requestKeyboard();

protected:
    bool serves(const QModelIndex &index) const
    {
        return delegateColumn < 0 || delegateColumn == index.column();
    }

    int delegateColumn = -1;
};
