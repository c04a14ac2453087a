#pragma once

#include <QWidget>

#include <memory>

class KelvaTrashButton;
class QCheckBox;
class QSpinBox;

namespace Ui {
class kelvastatusbarext;
}

/// The right side of the status bar: date filter, unread marks, size of the list, filter mark, trash.
class kelvastatusbarext final : public QWidget
{
    Q_OBJECT

public:
    explicit kelvastatusbarext(QWidget *parent = nullptr);
    ~kelvastatusbarext() override;

    /// Clause on the document date, empty while the date filter is off.
    QString getCurrentDateFilter() const;
    QSpinBox *getMaxSearchBox() const;
    QCheckBox *getTimeLineCheckBox() const;
    QCheckBox *getShowUnReadCheckBox() const;
    KelvaTrashButton *getTrashButton() const;
    void setFilterActive(bool active);
    /// Oldest and newest document date, "yyyy-MM-dd"; with fewer than two valid dates both are today.
    void setMinMaxDates(const QStringList &dates);
    /// Switches the date filter off.
    void resetTimeLine(bool reset);
    void setOffline(bool offline);
    /// Shows whether a filter is active and enables the date fields with their check box.
    void checkFilter();

signals:
    void filterChanged();

private slots:
    void dateChanged();
    void timeLineFilterChanged();

private:
    const std::unique_ptr<Ui::kelvastatusbarext> m_ui;
    bool m_filterActive = false;
};
