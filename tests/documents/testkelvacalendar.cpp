#include "support/dialogscript.h"
#include "support/kelvatest.h"
#include "support/onecelltable.h"

#include "documents/datemacro.h"
#include "documents/kelvacalendar.h"
#include "documents/kelvacalendardelegate.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

/// The window manager takes all windows away; the user means nothing by it.
static void showAnotherDesktop(QWidget *dialog)
{
    QApplication::setActiveWindow(nullptr);
    QHideEvent hide;
    QCoreApplication::sendEvent(dialog, &hide);
}

using Act = std::function<void(KelvaCalendar *)>;
Q_DECLARE_METATYPE(Act)

class TestKelvaCalendar : public QObject
{
    Q_OBJECT

private slots:
    void macros()
    {
        for (const auto &[stored, text] :
             {std::pair<const char *, QString>("[HEUTE+7]", "[HEUTE+7]:2014-08-21"),
              {"[HEUTE-0]", "[HEUTE+0]:2014-08-14"},
              {"[JAHR+1]", "[JAHR+1]:2015-08-14"},
              {"[HEUTE+7]:2001-01-01", "[HEUTE+7]:2014-08-21"}, // with the date of its choice
              {"[JAHR+99999999999]", "[JAHR+0]:2014-08-14"},
              {"[MONAT", "[MONAT+0]:2014-08-14"},
              {"2014-08-11", ""}}) {
            QCOMPARE(DateMacro::parse(stored).text(QDate(2014, 8, 14)), text);
            // The dialog shows what is stored and gives it back.
            KelvaCalendar dialog(nullptr, false, false, QDate(2014, 8, 14));
            dialog.setExtendedString(stored);
            QCOMPARE(dialog.getExtendedString(), text.section(':', 0, 0));
            QCOMPARE(dialog.selectedDate().toString("yyyy-MM-dd"),
                     text.isEmpty() ? QString("2014-08-14") : text.section(':', 1));
        }
    }

    void aMacroIsChosenAndCleared()
    {
        KelvaCalendar dialog(nullptr, false, false, QDate(2014, 8, 14));
        dialog.setExtended(true);
        auto *kind = dialog.findChild<QComboBox *>("m_kind");
        auto *sign = dialog.findChild<QComboBox *>("m_sign");
        auto *value = dialog.findChild<QSpinBox *>("m_value");
        dialog.setExtendedString("[MONAT-2]");
        value->setValue(3);
        QCOMPARE(dialog.getExtendedString(), QString("[MONAT-3]"));
        QCOMPARE(dialog.selectedDate(), QDate(2014, 5, 14));
        dialog.setExtendedString("2014-08-11"); // is no macro and takes none away
        QCOMPARE(dialog.getExtendedString(), QString("[MONAT-3]"));
        sign->setCurrentIndex(0);
        QCOMPARE(dialog.getExtendedString(), QString("[MONAT+3]"));
        dialog.findChild<QCalendarWidget *>("m_calendar")->setSelectedDate(QDate(2014, 8, 20));
        QCOMPARE(dialog.getExtendedString(), QString());
        QCOMPARE(kind->currentData().toString(), QString());
        QCOMPARE(dialog.selectedDate(), QDate(2014, 8, 20));
        // "Today" is a date, even where a macro stands for it already.
        dialog.setExtendedString("[HEUTE+0]");
        dialog.findChild<QPushButton *>("m_today")->click();
        QCOMPARE(dialog.getExtendedString(), QString());
        QCOMPARE(dialog.selectedDate(), QDate(2014, 8, 14));
    }

    void dates_data()
    {
        // kind: letters: m offers macros, n no date
        kelvatest::columns<QString, QString, QString, Act, QString>("kind", "text", "raw", "act", "outcome");
        const Act nothing = [](KelvaCalendar *dialog) { dialog->accept(); };
        const Act another = [](KelvaCalendar *dialog) {
            showAnotherDesktop(dialog);
            dialog->setSelectedDate(QDate(2031, 2, 3));
            dialog->accept();
        };
        const Act macro = [](KelvaCalendar *dialog) {
            dialog->setExtendedString("[JAHR-1]");
            QTest::keyClick(dialog->findChild<QSpinBox *>("m_value"), Qt::Key_Return);
        };
        const Act press = [](KelvaCalendar *dialog) { dialog->findChild<QPushButton *>("m_null")->click(); };
        kelvatest::row("another date is written once", "", "2024-03-05", "2024-03-05", another,
                       "2031-02-03|2024-03-05|1");
        kelvatest::row("the same date writes nothing", "", "2024-03-05", "2024-03-05", nothing,
                       "2024-03-05|2024-03-05|0");
        kelvatest::row("a cancelled dialog writes nothing", "", "2024-03-05", "",
                       Act([](KelvaCalendar *dialog) {
                           dialog->setSelectedDate(QDate(2031, 2, 3));
                           QTest::keyClick(dialog, Qt::Key_Escape);
                       }),
                       "2024-03-05||0");
        kelvatest::row("return in the calendar accepts", "", "2024-03-05", "", Act([](KelvaCalendar *dialog) {
                           QWidget *days = dialog->findChild<QWidget *>("qt_calendar_calendarview");
                           QTest::keyClick(days, Qt::Key_Right);
                           QTest::keyClick(days, Qt::Key_Return);
                       }),
                       "2024-03-06||1");
        kelvatest::row("a date is taken away", "n", "2024-03-05", "", press, "||1");
        kelvatest::row("a macro is written", "m", "2024-03-05", "", macro, "[JAHR-1]||1");
        kelvatest::row("a macro gives way to a date", "m", "[JAHR-1]", "", another, "2031-02-03||1");
    }

    void dates()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(QString, raw);
        QFETCH(Act, act);
        DialogScript script;
        OneCellTable table(new KelvaCalendarDelegate(nullptr, false, kind.contains('m'), kind.contains('n')));
        table.setCell(text, raw);
        script.expectDialog("Select date", false,
                            [&act](QWidget *dialog) { act(qobject_cast<KelvaCalendar *>(dialog)); });
        QVERIFY(table.edit());
        QTRY_VERIFY(!table.isEditing());
        QTEST(table.outcome(), "outcome");
    }

    void aTypedDateIsTheOneThatIsMeant()
    {
        KelvaCalendar calendar(nullptr, false, false, QDate(2024, 8, 14));
        calendar.show();
        auto *days = calendar.findChild<QCalendarWidget *>()->findChild<QAbstractItemView *>();
        const auto type = [&](const QString &text) {
            QTest::keyClick(days, text.at(0).toLatin1());
            auto *typed = calendar.findChild<QLineEdit *>("m_typed");
            QTest::keyClicks(typed, text.mid(1));
            QTest::keyClick(typed, Qt::Key_Return);
            return calendar.getIsOk();
        };
        for (const char *none : {"2026-02-31", "12", "31.12"}) {
            QVERIFY2(!type(none), none);
            QVERIFY(calendar.isVisible());
        }
        QVERIFY(type("31.12.2026"));
        QCOMPARE(calendar.selectedDate(), QDate(2026, 12, 31));
        QCOMPARE(KelvaCalendar::typedDate("2026-2-3"), QDate(2026, 2, 3));
    }
};

KELVA_TEST(TestKelvaCalendar)
#include "testkelvacalendar.moc"
