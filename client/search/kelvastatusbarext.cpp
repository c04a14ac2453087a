#include "search/kelvastatusbarext.h"

#include "search/kelvacalendarwidget.h"
#include "ui_kelvastatusbarext.h"

#include <QSettings>
#include <QSignalBlocker>

namespace {

const char dateFormat[] = "yyyy-MM-dd";

QSettings mainSettings()
{
    return QSettings("Norbant GmbH", QCoreApplication::applicationName());
}

} // namespace

kelvastatusbarext::kelvastatusbarext(QWidget *parent)
    : QWidget(parent),
      m_ui(std::make_unique<Ui::kelvastatusbarext>()),
      m_fromCalendar(new kelvacalendarwidget),
      m_toCalendar(new kelvacalendarwidget)
{
    m_ui->setupUi(this);
    connect(m_ui->m_timeLine, SIGNAL(stateChanged(int)), this, SLOT(timeLineFilterChanged()));
    connect(m_ui->m_spanslider, SIGNAL(spanChanged(int, int)), this, SLOT(spanChanged(int, int)));
    setUpField(m_ui->m_fromDate, m_fromCalendar);
    setUpField(m_ui->m_toDate, m_toCalendar);
    checkFilter();
}

void kelvastatusbarext::setUpField(QDateEdit *field, kelvacalendarwidget *calendar)
{
    field->setCalendarWidget(calendar); // the field's from now on
    connect(field, SIGNAL(editingFinished()), this, SLOT(dateChanged()));
    connect(field, SIGNAL(dateChanged(QDate)), this, SLOT(dateEdited()));
    connect(calendar, SIGNAL(selectionChanged()), this, SLOT(calendarChanged()));
    connect(calendar, SIGNAL(closed()), this, SLOT(dateChanged()));
}

kelvastatusbarext::~kelvastatusbarext()
{
    if (!m_firstLoad)
        saveTimeLine();
}

QString kelvastatusbarext::getCurrentDateFilter() const
{
    if (!m_ui->m_timeLine->isChecked())
        return QString();
    return QStringLiteral("cdate >= '%1' AND cdate <= '%2'")
        .arg(m_ui->m_fromDate->date().toString(dateFormat), m_ui->m_toDate->date().toString(dateFormat));
}

QSpinBox *kelvastatusbarext::getMaxSearchBox() const
{
    return m_ui->m_maxSearchBox;
}

QCheckBox *kelvastatusbarext::getTimeLineCheckBox() const
{
    return m_ui->m_timeLine;
}

QCheckBox *kelvastatusbarext::getShowUnReadCheckBox() const
{
    return m_ui->m_showUnread;
}

KelvaTrashButton *kelvastatusbarext::getTrashButton() const
{
    return m_ui->m_bTrash;
}

void kelvastatusbarext::setFilterActive(bool active)
{
    m_filterActive = active;
    checkFilter();
}

void kelvastatusbarext::setMinMaxDates(const QStringList &dates)
{
    if (dates.isEmpty() && !m_firstLoad)
        return; // a service that could not answer; what the user chose stays
    const QSignalBlocker from(m_ui->m_fromDate);
    const QSignalBlocker to(m_ui->m_toDate);
    const QSignalBlocker slider(m_ui->m_spanslider);
    const QSignalBlocker box(m_ui->m_timeLine);
    const TimelineRange offered = TimelineRange::around(dates, QDate::currentDate());
    m_ui->m_fromDate->setDateRange(offered.first, offered.lastFrom());
    // One day more than the slider reaches, as it has always been.
    m_ui->m_toDate->setDateRange(offered.first.addDays(-1), offered.last);
    m_ui->m_fromDate->setDate(offered.first);
    m_ui->m_toDate->setDate(offered.last);
    m_ui->m_spanslider->setRange(0, offered.days());
    m_ui->m_spanslider->setSpan(0, offered.days());
    m_fromCalendar->setIsDynamicDate(false);
    m_toCalendar->setIsDynamicDate(false);
    if (m_firstLoad)
        restoreTimeLine();
    m_firstLoad = false;
}

TimelineRange kelvastatusbarext::range() const
{
    return {m_ui->m_fromDate->minimumDate(), m_ui->m_toDate->maximumDate()};
}

void kelvastatusbarext::restoreTimeLine()
{
    const QSettings settings = mainSettings();
    if (!settings.contains("FILTERDATEENABLED"))
        return;
    const QDate today = QDate::currentDate();
    const auto restore = [&](QDateEdit *field, kelvacalendarwidget *calendar, const char *dateKey,
                             const char *intervalKey) {
        const QString interval = settings.value(intervalKey).toString();
        calendar->setInterval(interval);
        const QDate date = restoredDate(settings.value(dateKey).toString(), interval, today);
        if (date.isValid())
            field->setDate(qBound(field->minimumDate(), date, field->maximumDate()));
    };
    restore(m_ui->m_fromDate, m_fromCalendar, "FILTERFROMDATE", "FILTERFROMINTERVAL");
    restore(m_ui->m_toDate, m_toCalendar, "FILTERTODATE", "FILTERTOINTERVAL");
    updateSlider();
    m_ui->m_timeLine->setChecked(settings.value("FILTERDATEENABLED").toInt() == Qt::Checked);
    checkFilter();
}

void kelvastatusbarext::saveTimeLine() const
{
    QSettings settings = mainSettings();
    settings.setValue("FILTERFROMDATE", m_ui->m_fromDate->date().toString(dateFormat));
    settings.setValue("FILTERTODATE", m_ui->m_toDate->date().toString(dateFormat));
    settings.setValue("FILTERDATEENABLED", int(m_ui->m_timeLine->checkState()));
    settings.setValue("FILTERFROMINTERVAL", m_fromCalendar->getInterval());
    settings.setValue("FILTERTOINTERVAL", m_toCalendar->getInterval());
}

void kelvastatusbarext::resetTimeLine(bool)
{
    {
        const QSignalBlocker blocker(m_ui->m_timeLine);
        m_ui->m_timeLine->setChecked(false);
    }
    checkFilter();
}

void kelvastatusbarext::setOffline(bool offline)
{
    m_offline = offline;
    resetTimeLine(false);
    for (QWidget *widget : std::initializer_list<QWidget *>{m_ui->m_timeLine, m_ui->m_fromDate,
                                                            m_ui->m_spanslider, m_ui->m_toDate})
        widget->setVisible(!m_offline);
}

void kelvastatusbarext::checkFilter()
{
    const bool dated = m_ui->m_timeLine->isChecked();
    m_ui->m_fromDate->setEnabled(dated);
    m_ui->m_spanslider->setEnabled(dated);
    m_ui->m_toDate->setEnabled(dated);
    m_ui->m_statusFilter->setText(m_filterActive || dated
                                      ? "<font color=\"red\"><b>" + tr("Filter active") + "</b></font>"
                                      : tr("Filter inactive"));
}

void kelvastatusbarext::spanChanged(int lower, int upper)
{
    const TimelineRange offered = range();
    const auto set = [](QDateEdit *field, kelvacalendarwidget *calendar, const QDate &date) {
        const QSignalBlocker blocker(field);
        const QDate former = field->date();
        field->setDate(qBound(field->minimumDate(), date, field->maximumDate()));
        if (field->date() != former)
            calendar->setIsDynamicDate(false);
    };
    set(m_ui->m_fromDate, m_fromCalendar, offered.from(lower));
    set(m_ui->m_toDate, m_toCalendar, offered.to(upper));
    emit filterChanged();
}

void kelvastatusbarext::updateSlider()
{
    const QSignalBlocker blocker(m_ui->m_spanslider);
    const Span span = range().span(m_ui->m_fromDate->date(), m_ui->m_toDate->date());
    m_ui->m_spanslider->setSpan(span.lower, span.upper);
}

void kelvastatusbarext::calendarChanged()
{
    // A hidden calendar follows its field, whoever has set that.
    if (m_fromCalendar->isVisible() || m_toCalendar->isVisible())
        dateChanged();
}

void kelvastatusbarext::dateEdited()
{
    // A date that is typed is meant as it stands; one from an open calendar keeps what the calendar says.
    kelvacalendarwidget *calendar = sender() == m_ui->m_fromDate ? m_fromCalendar : m_toCalendar;
    if (!calendar->isVisible())
        calendar->setIsDynamicDate(false);
}

void kelvastatusbarext::dateChanged()
{
    updateSlider();
    if (!m_fromCalendar->isVisible() && !m_toCalendar->isVisible())
        emit filterChanged();
}

void kelvastatusbarext::timeLineFilterChanged()
{
    checkFilter();
    emit filterChanged();
}
