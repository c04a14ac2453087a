#pragma once

#include <QCalendarWidget>

class kelvadateperiod;

/// The calendar of a date field, with a panel for a date that moves along with today.
class kelvacalendarwidget final : public QCalendarWidget
{
    Q_OBJECT

public:
    explicit kelvacalendarwidget(QWidget *parent = nullptr);

    bool getIsDynamicDate() const;
    void setIsDynamicDate(bool dynamic);
    /// In the form of DateInterval::text(); a text of another form changes nothing.
    QString getInterval() const;
    /// Does not select the date of the interval.
    void setInterval(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The popup that shows the calendar was closed, in whatever way.
    void closed();

protected:
    void hideEvent(QHideEvent *event) override;

private slots:
    void selectDate(QDate date);
    void setDaysFixed(bool fixed);
    void closePopup();

private:
    kelvadateperiod *m_period;
};
