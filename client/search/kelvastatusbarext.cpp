#include "search/kelvastatusbarext.h"

#include "ui_kelvastatusbarext.h"

#include <QSignalBlocker>

namespace {

const char dateFormat[] = "yyyy-MM-dd";
constexpr int marginYears = 5;

} // namespace

kelvastatusbarext::kelvastatusbarext(QWidget *parent)
    : QWidget(parent),
      m_ui(std::make_unique<Ui::kelvastatusbarext>())
{
    m_ui->setupUi(this);
    connect(m_ui->m_timeLine, SIGNAL(stateChanged(int)), this, SLOT(timeLineFilterChanged()));
    connect(m_ui->m_fromDate, SIGNAL(editingFinished()), this, SLOT(dateChanged()));
    connect(m_ui->m_toDate, SIGNAL(editingFinished()), this, SLOT(dateChanged()));
    checkFilter();
}

kelvastatusbarext::~kelvastatusbarext() = default;

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
    QDate first = QDate::fromString(dates.value(0), dateFormat);
    QDate last = QDate::fromString(dates.value(1), dateFormat);
    if (!first.isValid() || !last.isValid())
        first = last = QDate::currentDate();
    first = first.addYears(-marginYears);
    last = last.addYears(marginYears);
    m_ui->m_fromDate->setDateRange(first, last.addDays(-1));
    m_ui->m_toDate->setDateRange(first.addDays(1), last);
    m_ui->m_fromDate->setDate(first);
    m_ui->m_toDate->setDate(last);
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
    resetTimeLine(false);
    for (QWidget *widget : {static_cast<QWidget *>(m_ui->m_timeLine),
                            static_cast<QWidget *>(m_ui->m_fromDate), static_cast<QWidget *>(m_ui->m_toDate)})
        widget->setVisible(!offline);
}

void kelvastatusbarext::checkFilter()
{
    const bool dated = m_ui->m_timeLine->isChecked();
    m_ui->m_fromDate->setEnabled(dated);
    m_ui->m_toDate->setEnabled(dated);
    m_ui->m_statusFilter->setText(m_filterActive || dated
                                      ? "<font color=\"red\"><b>" + tr("Filter active") + "</b></font>"
                                      : tr("Filter inactive"));
}

void kelvastatusbarext::dateChanged()
{
    emit filterChanged();
}

void kelvastatusbarext::timeLineFilterChanged()
{
    checkFilter();
    emit filterChanged();
}
