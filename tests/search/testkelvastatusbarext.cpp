#include "support/kelvatest.h"

#include "search/kelvacalendarwidget.h"
#include "search/kelvastatusbarext.h"
#include "search/qxtspanslider.h"
#include "search/timelinerange.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>

namespace {

/// 2010-03-04 to 2014-08-14, offered as 2005-03-04 to 2019-08-14: 5276 days.
const QStringList archiveDates{"2010-03-04", "2014-08-14"};

QSettings settings()
{
    return QSettings("Norbant GmbH", QCoreApplication::applicationName());
}

/// The bar with what a test reads of it.
struct Bar
{
    kelvastatusbarext widget;
    QCheckBox *box = widget.getTimeLineCheckBox();
    QDateEdit *from = widget.findChild<QDateEdit *>("m_fromDate");
    QDateEdit *to = widget.findChild<QDateEdit *>("m_toDate");
    QxtSpanSlider *slider = widget.findChild<QxtSpanSlider *>("m_spanslider");
    QLabel *mark = widget.findChild<QLabel *>("m_statusFilter");
    QSignalSpy changes{&widget, SIGNAL(filterChanged())};

    kelvastatusbarext *operator->() { return &widget; }
    kelvacalendarwidget *calendar(QDateEdit *field) const
    {
        return qobject_cast<kelvacalendarwidget *>(field->calendarWidget());
    }
    /// "from to lower-upper"
    QString state() const
    {
        return QString("%1 %2 %3-%4")
            .arg(from->date().toString("yyyy-MM-dd"), to->date().toString("yyyy-MM-dd"))
            .arg(slider->lowerValue())
            .arg(slider->upperValue());
    }
};

} // namespace

class TestKelvaStatusBarExt : public QObject
{
    Q_OBJECT

private slots:
    void init() { settings().clear(); }

    void ranges()
    {
        const QString ofToday = "2019-02-28 2029-02-28 3653"; // today being 2024-02-29
        const QPair<QStringList, QString> table[] = {
            {archiveDates, "2005-03-04 2019-08-14 5276"},
            {{"2010-03-04", "2010-03-04"}, "2005-03-04 2015-03-04 3652"},
            {{"", ""}, ofToday},
            {{}, ofToday},
            {{"2010-03-04"}, ofToday},
            {{"2010-02-30", "2014-08-14"}, ofToday},
            {{"0001-01-01", "9999-01-01"}, "0001-01-02 9999-12-31 3652057"}, // four digits to a year
            {{"2014-08-14", "2010-03-04"}, "2005-03-04 2019-08-14 5276"},
        };
        for (const auto &[dates, expected] : table) {
            const TimelineRange range = TimelineRange::around(dates, QDate(2024, 2, 29));
            QCOMPARE(range.first.toString("yyyy-MM-dd ") + range.last.toString("yyyy-MM-dd ") +
                         QString::number(range.days()),
                     expected);
        }
    }

    void theSliderSetsTheDates()
    {
        Bar bar;
        bar->setMinMaxDates(archiveDates);
        QCOMPARE(bar.state(), QString("2005-03-04 2019-08-14 0-5276"));
        QCOMPARE(bar.changes.size(), 0);
        bar.slider->setSpan(5276, 5276); // from stays a day short of to
        QCOMPARE(bar.state(), QString("2019-08-13 2019-08-14 5276-5276"));
        bar.slider->setSpan(0, 0);
        QCOMPARE(bar.state(), QString("2005-03-04 2005-03-04 0-0"));
        bar.slider->setSpan(1826, 3653);
        QCOMPARE(bar.state(), QString("2010-03-04 2015-03-05 1826-3653"));
        QCOMPARE(bar.changes.size(), 3);
        QCOMPARE(bar->getCurrentDateFilter(), QString());
        bar.box->setChecked(true);
        QCOMPARE(bar->getCurrentDateFilter(), QString("cdate >= '2010-03-04' AND cdate <= '2015-03-05'"));
        QCOMPARE(bar.changes.size(), 4);
    }

    void typedDatesTurnTheSlider()
    {
        Bar bar;
        bar->setMinMaxDates(archiveDates);
        bar.box->setChecked(true);
        bar.changes.clear();
        QSignalSpy slides(bar.slider, SIGNAL(spanChanged(int, int)));
        const auto type = [](QDateEdit *field, const QString &text) {
            auto *line = field->findChild<QLineEdit *>();
            line->setText(text);
            QTest::keyClick(line, Qt::Key_Return);
        };
        type(bar.from, "2010-03-04");
        type(bar.to, "2015-03-05");
        QCOMPARE(bar.state(), QString("2010-03-04 2015-03-05 1826-3653"));
        QCOMPARE(slides.size(), 0);
        QCOMPARE(bar.changes.size(), 2);
        type(bar.from, "2016-03-04"); // behind the other: it is the user's word, the list will be empty
        QCOMPARE(bar->getCurrentDateFilter(), QString("cdate >= '2016-03-04' AND cdate <= '2015-03-05'"));
        QCOMPARE(bar.slider->lowerValue(), 3653);
    }

    void theMarkFollowsBoxAndSearch()
    {
        Bar bar;
        QCOMPARE(bar.mark->text(), QString("Filter inactive"));
        QVERIFY(!bar.from->isEnabled() && !bar.to->isEnabled() && !bar.slider->isEnabled());
        bar.box->setChecked(true);
        QVERIFY(bar.from->isEnabled() && bar.to->isEnabled() && bar.slider->isEnabled());
        QCOMPARE(bar.mark->text(), QString("<font color=\"red\"><b>Filter active</b></font>"));
        bar.changes.clear();
        bar->setFilterActive(true);
        bar->resetTimeLine(true);
        QCOMPARE(bar.mark->text(), QString("<font color=\"red\"><b>Filter active</b></font>"));
        QVERIFY(!bar.box->isChecked() && !bar.slider->isEnabled());
        bar->setFilterActive(false);
        QCOMPARE(bar.mark->text(), QString("Filter inactive"));
        QCOMPARE(bar.changes.size(), 0);
    }

    void aSpanReturnsOnce()
    {
        {
            Bar bar;
            bar->setMinMaxDates(archiveDates);
            bar.box->setChecked(true);
            bar.slider->setSpan(1826, 3653);
        }
        QCOMPARE(settings().value("FILTERDATEENABLED").toInt(), 2);
        Bar bar;
        bar->setMinMaxDates({"2010-03-04", "2020-08-14"}); // there are newer documents now
        QCOMPARE(bar.state(), QString("2010-03-04 2015-03-05 1826-3653"));
        QVERIFY(bar.box->isChecked() && bar.slider->isEnabled());
        QCOMPARE(bar.changes.size(), 0);
        bar->setMinMaxDates(archiveDates);
        QCOMPARE(bar.state(), QString("2005-03-04 2019-08-14 0-5276"));
    }

    void offlineThereIsNoTimeLineAndNothingIsStored()
    {
        {
            Bar bar;
            bar.box->setChecked(true);
            bar->setOffline(true);
            bar->show();
            QVERIFY(bar->getCurrentDateFilter().isEmpty());
            QVERIFY(!bar.box->isVisible() && !bar.from->isVisible() && !bar.to->isVisible());
            QVERIFY(!bar.slider->isVisible() && bar.mark->isVisible());
        }
        QCOMPARE(settings().allKeys(), QStringList());
    }

    void storedTimeLines_data()
    {
        // stored: enabled|from date|to date|from interval|to interval
        // state: dates as days from today, where dynamic: d; x when checked
        kelvatest::columns<QString, QString>("stored", "state");
        kelvatest::row("nothing", "", "-1826 1826 ");
        kelvatest::row("all at its place", "2|-100|200|+;0;0;0;0|+;0;0;0;0", "-100 200 x");
        kelvatest::row("a dynamic date counts from today", "2|-100|200|-;7;0;0;1|+;0;0;0;0", "-7d 200 x");
        kelvatest::row("both dynamic", "2|-100|200|-;7;0;0;1|+;3;0;0;1", "-7d 3d x");
        kelvatest::row("dates out of the range", "2|-9999|9999||", "-1826 1826 x");
        kelvatest::row("without a switch", "|-100|200|-;7;0;0;1|", "-1826 1826 ");
        kelvatest::row("rubbish", "yes|2014-13-99|%1' OR 1=1|-;x;0;0;1|1;2;3;4;5;6", "-1826 1826 ");
    }

    void storedTimeLines()
    {
        QFETCH(QString, stored);
        const QDate today = QDate::currentDate();
        const char *const keys[] = {"FILTERDATEENABLED", "FILTERFROMDATE", "FILTERTODATE",
                                    "FILTERFROMINTERVAL", "FILTERTOINTERVAL"};
        const QStringList values = stored.split('|');
        QSettings file = settings();
        for (int i = 0; i < values.size(); ++i) {
            bool isOffset = false;
            const int offset = values.at(i).toInt(&isOffset);
            const bool isDate = i == 1 || i == 2;
            if (!values.at(i).isEmpty())
                file.setValue(keys[i], isDate && isOffset ? today.addDays(offset).toString("yyyy-MM-dd")
                                                          : values.at(i));
        }
        file.sync();
        Bar bar;
        bar->setMinMaxDates({});
        // Five years are a day longer or shorter with the leap years in them.
        const auto text = [&](QDateEdit *field) {
            const bool isFirst = field->date() == today.addYears(-5);
            const bool isLast = field->date() == today.addYears(5);
            const qint64 days = isFirst ? -1826 : isLast ? 1826 : today.daysTo(field->date());
            return QString::number(days) + (bar.calendar(field)->getIsDynamicDate() ? "d" : "");
        };
        QTEST(text(bar.from) + ' ' + text(bar.to) + ' ' + (bar.box->isChecked() ? "x" : ""), "state");
        QCOMPARE(bar.slider->lowerValue(), int(bar.from->minimumDate().daysTo(bar.from->date())));
    }

    void aDateThatIsSetByHandIsDynamicNoMore()
    {
        Bar bar;
        bar->setMinMaxDates({});
        const auto dynamic = [&] {
            return QString(bar.calendar(bar.from)->getIsDynamicDate() ? "f" : "") +
                   (bar.calendar(bar.to)->getIsDynamicDate() ? "t" : "");
        };
        const auto makeDynamic = [&] {
            bar.calendar(bar.from)->setInterval("-;7;0;0;1");
            bar.calendar(bar.to)->setInterval("+;7;0;0;1");
        };
        makeDynamic();
        bar.slider->setUpperValue(bar.slider->maximum() - 100);
        QCOMPARE(dynamic(), QString("f"));
        makeDynamic();
        bar.slider->setLowerValue(50);
        QCOMPARE(dynamic(), QString("t"));
        makeDynamic();
        bar.from->findChild<QLineEdit *>()->setText(QDate::currentDate().toString("yyyy-MM-dd"));
        QCOMPARE(dynamic(), QString("t"));
        makeDynamic();
        bar->setMinMaxDates({}); // a service that could not answer
        QCOMPARE(dynamic(), QString("ft"));
        bar->setMinMaxDates(archiveDates);
        QCOMPARE(dynamic(), QString());
    }

    void anOpenCalendarHoldsTheFilterBack()
    {
        Bar bar;
        bar->setMinMaxDates({});
        bar.box->setChecked(true);
        bar->show();
        bar.changes.clear();
        QTest::mouseClick(bar.from, Qt::LeftButton, {},
                          QPoint(bar.from->width() - 6, bar.from->height() / 2));
        kelvacalendarwidget *calendar = bar.calendar(bar.from);
        QTRY_VERIFY(calendar->isVisible());
        calendar->findChild<QCheckBox *>("m_active")->setChecked(true);
        QSpinBox *days = calendar->findChild<QSpinBox *>("m_days");
        days->setValue(5);
        QCOMPARE(bar.from->date(), QDate::currentDate().addDays(5));
        QCOMPARE(bar.slider->lowerValue(), int(bar.from->minimumDate().daysTo(bar.from->date())));
        QCOMPARE(bar.changes.size(), 0);
        QTest::keyClick(days, Qt::Key_Return);
        QCOMPARE(bar.changes.size(), 1);
        QVERIFY(calendar->getIsDynamicDate());
    }
};

KELVA_TEST(TestKelvaStatusBarExt)
#include "testkelvastatusbarext.moc"
