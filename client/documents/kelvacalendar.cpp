#include "documents/kelvacalendar.h"

#include "ui_kelvacalendar.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolTip>

namespace {

constexpr int focusDelayMs = 100;
constexpr char minus[] = "-";

} // namespace

KelvaCalendar::KelvaCalendar(QWidget *parent, bool minToday, bool withNull, const QDate &today)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::KelvaCalendar>()),
      m_today(today)
{
    m_ui->setupUi(this);
    m_ui->m_kind->addItem(QString(), QString());
    m_ui->m_kind->addItem(tr("Today"), DateMacro::nameOf(DateMacro::Kind::Day));
    m_ui->m_kind->addItem(tr("This month"), DateMacro::nameOf(DateMacro::Kind::Month));
    m_ui->m_kind->addItem(tr("This year"), DateMacro::nameOf(DateMacro::Kind::Year));
    m_ui->m_sign->addItem("+");
    m_ui->m_sign->addItem(minus);
    m_ui->m_null->setVisible(withNull);
    if (minToday)
        m_ui->m_calendar->setMinimumDate(m_today);
    m_ui->m_calendar->setSelectedDate(m_today);
    connect(m_ui->m_calendar, SIGNAL(activated(QDate)), this, SLOT(accept()));
    connect(m_ui->m_calendar, SIGNAL(selectionChanged()), this, SLOT(dateSelectionChanged()));
    connect(m_ui->m_today, SIGNAL(clicked()), this, SLOT(setToday()));
    connect(m_ui->m_null, SIGNAL(clicked()), this, SLOT(setNULL()));
    connect(m_ui->m_kind, SIGNAL(currentIndexChanged(int)), this, SLOT(plChanged()));
    connect(m_ui->m_sign, SIGNAL(currentIndexChanged(int)), this, SLOT(plChanged()));
    connect(m_ui->m_value, SIGNAL(valueChanged(int)), this, SLOT(plChanged()));
    // The calendar's own way to take a typed date reads it in the order of the locale, whatever was meant.
    m_ui->m_calendar->setDateEditEnabled(false);
    for (QObject *part : m_ui->m_calendar->findChildren<QAbstractItemView *>())
        part->installEventFilter(this);
    m_ui->m_typed->hide();
    connect(m_ui->m_typed, SIGNAL(textChanged(QString)), this, SLOT(checkTyped()));
    QTimer::singleShot(focusDelayMs, this, [this] {
        activateWindow(); // a click that opened the dialog may have activated the window behind it again
        if (!m_ui->m_typed->isVisible())
            m_ui->m_calendar->setFocus();
    });
}

KelvaCalendar::~KelvaCalendar() = default;

void KelvaCalendar::setExtended(bool extended)
{
    for (QWidget *part : QList<QWidget *>{m_ui->m_kind, m_ui->m_sign, m_ui->m_value, m_ui->m_macro})
        part->setVisible(extended);
    adjustSize();
}

QDate KelvaCalendar::selectedDate() const
{
    return m_ui->m_calendar->selectedDate();
}

void KelvaCalendar::setSelectedDate(const QDate &date)
{
    // The calendar would take an invalid date for its first one.
    if (date.isValid())
        m_ui->m_calendar->setSelectedDate(date);
}

DateMacro KelvaCalendar::macro() const
{
    DateMacro chosen;
    chosen.kind = DateMacro::kindOf(m_ui->m_kind->currentData().toString());
    chosen.offset = m_ui->m_sign->currentText() == minus ? -m_ui->m_value->value() : m_ui->m_value->value();
    return chosen;
}

QString KelvaCalendar::getExtendedString() const
{
    const QString text = m_ui->m_macro->text();
    return text.contains(':') ? text.section(':', 0, 0) : QString();
}

void KelvaCalendar::setExtendedString(const QString &text)
{
    const DateMacro stored = DateMacro::parse(text);
    if (stored.kind == DateMacro::Kind::None)
        return;
    {
        const QSignalBlocker kind(m_ui->m_kind);
        const QSignalBlocker sign(m_ui->m_sign);
        const QSignalBlocker value(m_ui->m_value);
        m_ui->m_kind->setCurrentIndex(m_ui->m_kind->findData(DateMacro::nameOf(stored.kind)));
        m_ui->m_sign->setCurrentIndex(stored.offset < 0 ? 1 : 0);
        m_ui->m_value->setValue(qAbs(stored.offset));
    }
    plChanged();
}

void KelvaCalendar::plChanged()
{
    const DateMacro chosen = macro();
    m_ui->m_macro->setText(chosen.text(m_today));
    if (chosen.kind == DateMacro::Kind::None)
        return;
    const QSignalBlocker blocker(m_ui->m_calendar);
    setSelectedDate(chosen.date(m_today));
}

void KelvaCalendar::dateSelectionChanged()
{
    if (typedDate(m_ui->m_typed->text()) != selectedDate())
        m_ui->m_typed->hide(); // the calendar has been used after all
    m_ui->m_kind->setCurrentIndex(0);
}

void KelvaCalendar::setToday()
{
    m_ui->m_calendar->setSelectedDate(m_today);
    dateSelectionChanged(); // today may have been selected already, by a macro
}

void KelvaCalendar::setNULL()
{
    m_null = true;
    accept();
}

QDate KelvaCalendar::typedDate(const QString &text)
{
    for (const char *format : {"yyyy-MM-dd", "yyyy-M-d", "d.M.yyyy"})
        if (const QDate date = QDate::fromString(text.trimmed(), format); date.isValid())
            return date;
    return QDate();
}

bool KelvaCalendar::eventFilter(QObject *watched, QEvent *event)
{
    const auto *key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent *>(event) : nullptr;
    if (!key || key->text().isEmpty() || !key->text().at(0).isDigit())
        return QDialog::eventFilter(watched, event);
    m_ui->m_typed->show();
    m_ui->m_typed->setFocus();
    m_ui->m_typed->setText(key->text());
    return true;
}

void KelvaCalendar::checkTyped()
{
    const QDate date = typedDate(m_ui->m_typed->text());
    m_ui->m_typed->setStyleSheet(date.isValid() ? QString() : "QLineEdit { color: red; }");
    setSelectedDate(date);
}

/// False, with a word, when what was typed is no date that can be chosen.
bool KelvaCalendar::takeTyped()
{
    if (!m_ui->m_typed->isVisible() || typedDate(m_ui->m_typed->text()) == selectedDate())
        return true;
    QToolTip::showText(m_ui->m_typed->mapToGlobal(m_ui->m_typed->rect().bottomLeft()),
                       tr("This is not a date that can be chosen. Write it as in 2026-12-31."),
                       m_ui->m_typed);
    m_ui->m_typed->setFocus();
    return false;
}

void KelvaCalendar::accept()
{
    if (!m_null && !takeTyped())
        return;
    m_ok = true;
    QDialog::accept();
}
