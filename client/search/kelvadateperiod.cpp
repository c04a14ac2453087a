#include "search/kelvadateperiod.h"

#include "ui_kelvadateperiod.h"

#include <QKeyEvent>
#include <QSignalBlocker>

namespace {

const char plus[] = "+";
const char minus[] = "-";

} // namespace

kelvadateperiod::kelvadateperiod(QWidget *parent)
    : QGroupBox(parent),
      m_ui(std::make_unique<Ui::kelvadateperiod>())
{
    m_ui->setupUi(this);
    m_ui->m_sign->addItem(plus);
    m_ui->m_sign->addItem(minus);
    connect(m_ui->m_active, SIGNAL(toggled(bool)), this, SLOT(activeToggled(bool)));
    connect(m_ui->m_sign, SIGNAL(currentIndexChanged(int)), this, SLOT(checkDate()));
    for (QSpinBox *box : {m_ui->m_days, m_ui->m_months, m_ui->m_years}) {
        box->setMaximum(DateInterval::maximum);
        connect(box, SIGNAL(valueChanged(int)), this, SLOT(checkDate()));
    }
    activeToggled(false);
}

kelvadateperiod::~kelvadateperiod() = default;

DateInterval kelvadateperiod::interval() const
{
    DateInterval interval;
    interval.isBack = m_ui->m_sign->currentText() == minus;
    interval.days = m_ui->m_days->value();
    interval.months = m_ui->m_months->value();
    interval.years = m_ui->m_years->value();
    interval.isActive = getIsDynamic();
    return interval;
}

QString kelvadateperiod::getInterval() const
{
    return interval().text();
}

void kelvadateperiod::setInterval(const QString &text)
{
    const auto stored = DateInterval::parse(text);
    if (!stored)
        return;
    {
        // Parts of an interval give dates that nobody asked for.
        const QSignalBlocker blocker(this);
        m_ui->m_sign->setCurrentIndex(m_ui->m_sign->findText(stored->isBack ? minus : plus));
        m_ui->m_days->setValue(stored->days);
        m_ui->m_months->setValue(stored->months);
        m_ui->m_years->setValue(stored->years);
        setDynamic(stored->isActive);
    }
    emit activated(stored->isActive);
}

bool kelvadateperiod::getIsDynamic() const
{
    return m_ui->m_active->isChecked();
}

void kelvadateperiod::setDynamic(bool dynamic)
{
    m_ui->m_active->setChecked(dynamic);
}

void kelvadateperiod::checkDate()
{
    emit dateChanged(interval().date(QDate::currentDate()));
}

void kelvadateperiod::activeToggled(bool active)
{
    for (QWidget *part :
         std::initializer_list<QWidget *>{m_ui->m_sign, m_ui->m_days, m_ui->m_months, m_ui->m_years})
        part->setEnabled(active);
    emit activated(active);
    if (active)
        checkDate();
}

void kelvadateperiod::keyPressEvent(QKeyEvent *event)
{
    // Return that picks from the open list of the combo box arrives here as well.
    const bool done = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (done && !m_ui->m_sign->hasFocus())
        emit commit();
    else
        QGroupBox::keyPressEvent(event);
}
