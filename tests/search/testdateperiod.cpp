#include "support/kelvatest.h"

#include "search/dateinterval.h"
#include "search/kelvacalendarwidget.h"
#include "search/kelvadateperiod.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QSignalSpy>
#include <QSpinBox>

class TestDatePeriod : public QObject
{
    Q_OBJECT

private slots:
    void intervals()
    {
        const QDate today(2024, 1, 31);
        // Text and date, empty when it is no interval.
        QList<QPair<QString, QString>> table{
            {"+;0;0;0;0", "+;0;0;0;0 2024-01-31"},
            {"+;30;0;0;1", "+;30;0;0;1 2024-03-01"},
            {"+;0;1;0;1", "+;0;1;0;1 2024-02-29"},
            {"+;1;1;0;1", "+;1;1;0;1 2024-03-01"}, // days before months
            {"+;0;1;1;1", "+;0;1;1;1 2025-02-28"}, // months before years
            {"-;31;11;23;0", "-;31;11;23;0 2000-01-31"},
            {"-;9999;9999;0;1", "-;9999;9999;0;1 1163-06-15"},
            {"+;007;0;0;1", "+;7;0;0;1 2024-02-07"},
        };
        for (const char *bad :
             {"", "+;1;2;3", "+;1;2;3;1;", "*;1;2;3;1", ";1;2;3;1", "+;-1;2;3;1", "+;1;2;3;2",
              "+;1;2;99999;1", "+;1.5;2;3;1", "+;1;;3;1", "+;1;2;3;1\n", "+;%1;%2;%3;1"})
            table << qMakePair(QString(bad), QString());
        for (const auto &[text, outcome] : qAsConst(table)) {
            const auto interval = DateInterval::parse(text);
            QCOMPARE(interval ? interval->text() + interval->date(today).toString(" yyyy-MM-dd") : "",
                     outcome);
            // The panel takes what the rule takes, and keeps what it has otherwise.
            kelvadateperiod panel;
            panel.setInterval("-;4;5;6;0");
            QSignalSpy dates(&panel, SIGNAL(dateChanged(QDate)));
            panel.setInterval(text);
            QCOMPARE(panel.getInterval(), interval ? interval->text() : QString("-;4;5;6;0"));
            QCOMPARE(dates.size(), 0);
        }
    }

    void thePopupOfADateField()
    {
        QDateEdit field;
        field.setCalendarPopup(true);
        auto *calendar = new kelvacalendarwidget;
        field.setCalendarWidget(calendar);
        const QDate today = QDate::currentDate();
        field.setDateRange(today.addDays(-10), today.addDays(10));
        field.setDate(today);
        QSignalSpy closed(calendar, SIGNAL(closed()));
        field.show();
        QTest::mouseClick(&field, Qt::LeftButton, {}, QPoint(field.width() - 6, field.height() / 2));
        QTRY_VERIFY(calendar->isVisible());
        auto *active = calendar->findChild<QCheckBox *>("m_active");
        auto *days = calendar->findChild<QSpinBox *>("m_days");
        // Nothing is cut off the panel below the days.
        QVERIFY(calendar->rect().contains(QRect(days->mapTo(calendar, QPoint()), days->size())));

        active->setChecked(true);
        auto *sign = calendar->findChild<QComboBox *>("m_sign");
        sign->setFocus();
        sign->setCurrentText("-");
        QTest::keyClick(sign, Qt::Key_Return); // what is left of the key that picked the sign
        QVERIFY(calendar->isVisible());
        days->setValue(4);
        QCOMPARE(field.date(), today.addDays(-4));
        QWidget *grid = calendar->findChild<QWidget *>("qt_calendar_calendarview");
        QTest::keyClick(grid, Qt::Key_Right);
        QCOMPARE(field.date(), today.addDays(-4)); // the days say what the panel says
        days->setValue(400);
        QCOMPARE(field.date(), today.addDays(-10));
        days->setFocus();
        QTest::keyClick(days, Qt::Key_Return);
        QVERIFY(!calendar->isVisible());
        QCOMPARE(closed.size(), 1);
        QCOMPARE(calendar->getInterval(), QString("-;400;0;0;1"));

        calendar->setIsDynamicDate(false);
        QTest::keyClick(grid, Qt::Key_Right);
        QCOMPARE(calendar->selectedDate(), today.addDays(-9));
        QCOMPARE(calendar->getInterval(), QString("-;400;0;0;0"));
    }
};

KELVA_TEST(TestDatePeriod)
#include "testdateperiod.moc"
