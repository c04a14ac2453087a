#pragma once

#include <QDialog>
#include <QList>

#include <memory>

class KelvaDelegate;
class QTableWidgetItem;

namespace Ui {
class KelvaMultiSelection;
}

/// Collects several values of one field, each edited as in the field's column.
class KelvaMultiSelection final : public QDialog
{
    Q_OBJECT

public:
    /// Works on a clone of the delegate and on copies of the items.
    KelvaMultiSelection(const KelvaDelegate *delegate, const QList<QTableWidgetItem *> &items,
                        QWidget *parent);
    ~KelvaMultiSelection() override;

    /// After accepting: the rows that hold a value.
    int getRows() const;
    /// Stays the dialog's; null for a row that is not there.
    QTableWidgetItem *getItem(int row) const;

public slots:
    void accept() override;
    void addLine();
    /// Removes the current row.
    void removeLine();

private:
    void initialize(const QList<QTableWidgetItem *> &items);
    void addLineMan(QTableWidgetItem *item);

    const std::unique_ptr<Ui::KelvaMultiSelection> m_ui;
};
