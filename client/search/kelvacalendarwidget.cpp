#include "search/kelvacalendarwidget.h"

#include "search/kelvadateperiod.h"

#include <QLayout>

kelvacalendarwidget::kelvacalendarwidget(QWidget *parent)
    : QCalendarWidget(parent),
      m_period(new kelvadateperiod(this))
{
    setAccessibleName(tr("Calendar"));
    setFirstDayOfWeek(Qt::Monday);
    setGridVisible(true);
    layout()->addWidget(m_period);
    connect(m_period, SIGNAL(dateChanged(QDate)), this, SLOT(selectDate(QDate)));
    connect(m_period, SIGNAL(activated(bool)), this, SLOT(setDaysFixed(bool)));
    connect(m_period, SIGNAL(commit()), this, SLOT(closePopup()));
}

bool kelvacalendarwidget::getIsDynamicDate() const
{
    return m_period->getIsDynamic();
}

void kelvacalendarwidget::setIsDynamicDate(bool dynamic)
{
    m_period->setDynamic(dynamic);
}

QString kelvacalendarwidget::getInterval() const
{
    return m_period->getInterval();
}

void kelvacalendarwidget::setInterval(const QString &text)
{
    m_period->setInterval(text);
}

// The calendar's own hints know nothing of what else is in its layout.
QSize kelvacalendarwidget::sizeHint() const
{
    return minimumSizeHint();
}

QSize kelvacalendarwidget::minimumSizeHint() const
{
    const QSize calendar = QCalendarWidget::minimumSizeHint();
    const QSize panel = m_period->minimumSizeHint();
    return {qMax(calendar.width(), panel.width()), calendar.height() + panel.height()};
}

void kelvacalendarwidget::hideEvent(QHideEvent *event)
{
    QCalendarWidget::hideEvent(event);
    emit closed();
}

void kelvacalendarwidget::selectDate(QDate date)
{
    setSelectedDate(date);
}

void kelvacalendarwidget::setDaysFixed(bool fixed)
{
    setSelectionMode(fixed ? NoSelection : SingleSelection);
}

void kelvacalendarwidget::closePopup()
{
    if (window()->windowType() == Qt::Popup)
        window()->close();
}
