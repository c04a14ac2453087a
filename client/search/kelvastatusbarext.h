#pragma once

#include "search/timelinerange.h"

#include <QWidget>

#include <memory>

class KelvaTrashButton;
class kelvacalendarwidget;
class QCheckBox;
class QDateEdit;
class QSpinBox;

namespace Ui {
class kelvastatusbarext;
}

/// The right side of the status bar: time line, unread marks, size of the list, filter mark, trash. The time
/// line is kept for the next start under "FILTER..." in the settings.
class kelvastatusbarext final : public QWidget
{
    Q_OBJECT

public:
    explicit kelvastatusbarext(QWidget *parent = nullptr);
    /// Stores the time line, unless it never had its dates: after a failed login the settings stay untouched.
    ~kelvastatusbarext() override;

    /// Clause on the document date, empty while the date filter is off.
    QString getCurrentDateFilter() const;
    QSpinBox *getMaxSearchBox() const;
    QCheckBox *getTimeLineCheckBox() const;
    QCheckBox *getShowUnReadCheckBox() const;
    KelvaTrashButton *getTrashButton() const;
    void setFilterActive(bool active);
    /// Gives the time line its range, see TimelineRange::around(), and sets it to the whole of it. The first
    /// call restores the stored time line, with dynamic dates counted from today.
    void setMinMaxDates(const QStringList &dates);
    /// Switches the date filter off, without a signal.
    void resetTimeLine(bool reset);
    /// Offline there is no time line: it is switched off and hidden.
    void setOffline(bool offline);
    /// Shows whether a filter is active and enables the date fields with their check box.
    void checkFilter();

signals:
    void filterChanged();

private slots:
    void spanChanged(int lower, int upper);
    void dateChanged();
    void calendarChanged();
    void dateEdited();
    void timeLineFilterChanged();

private:
    void setUpField(QDateEdit *field, kelvacalendarwidget *calendar);
    TimelineRange range() const;
    void updateSlider();
    void restoreTimeLine();
    void saveTimeLine() const;

    const std::unique_ptr<Ui::kelvastatusbarext> m_ui;
    kelvacalendarwidget *m_fromCalendar;
    kelvacalendarwidget *m_toCalendar;
    bool m_filterActive = false;
    bool m_firstLoad = true;
    bool m_offline = false;
};
