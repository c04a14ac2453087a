#pragma once

#include "documents/datemacro.h"

#include <QDialog>

#include <memory>

namespace Ui {
class KelvaCalendar;
}

/// Lets the user choose a date, and, where it says so, a date macro or no date at all.
class KelvaCalendar final : public QDialog
{
    Q_OBJECT

public:
    /// minToday: no date before today can be chosen. withNull: no date can be chosen. Without setExtended()
    /// the macros are offered.
    KelvaCalendar(QWidget *parent, bool minToday, bool withNull, const QDate &today = QDate::currentDate());
    ~KelvaCalendar() override;

    void setExtended(bool extended);
    QDate selectedDate() const;
    /// An invalid date is ignored, one out of the calendar's range becomes the nearest.
    void setSelectedDate(const QDate &date);
    /// The chosen macro, such as "[HEUTE+7]"; empty when a plain date is chosen.
    QString getExtendedString() const;
    /// Chooses a macro; a text that is none leaves the dialog as it is.
    void setExtendedString(const QString &text);
    /// A date as it is shown, or as people write one: "2026-12-31", "31.12.2026". Invalid for anything else.
    static QDate typedDate(const QString &text);
    /// The user chose to have no date.
    bool isNULL() const { return m_null; }
    bool getIsOk() const { return m_ok; }

public slots:
    void accept() override;
    void setToday();
    void setNULL();

private slots:
    void plChanged();
    void dateSelectionChanged();
    void checkTyped();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    DateMacro macro() const;
    bool takeTyped();

    const std::unique_ptr<Ui::KelvaCalendar> m_ui;
    const QDate m_today;
    bool m_null = false;
    bool m_ok = false;
};
