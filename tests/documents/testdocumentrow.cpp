#include "support/kelvatest.h"

#include "documents/documentrow.h"

using Clock = DocumentRowLook::Clock;
Q_DECLARE_METATYPE(Clock)

namespace {

const QDate today(2024, 3, 5);

QStringList row(const QString &status, const QString &resubmission, const QString &rights)
{
    return {"101#7",      "1.1", "Invoice", status,       "1_3",
            "1.1.2",      "5",   "anna",    "2020-02-29", "2024-03-01T10:00:00",
            resubmission, rights};
}

DocumentRowContext writableSession()
{
    DocumentRowContext context;
    context.today = today;
    context.noEdit = false;
    context.retention.insert("5", "4;1;2");
    return context;
}

} // namespace

class TestDocumentRow : public QObject
{
    Q_OBJECT

private slots:
    void resubmissionClasses_data()
    {
        QTest::addColumn<QString>("date");
        QTest::addColumn<Clock>("clock");
        QTest::addColumn<QColor>("brush");
        const QColor red(255, 116, 119);
        const QColor yellow(239, 238, 172);
        const QColor green(172, 239, 182);
        kelvatest::row("tomorrow", "2024-03-06", Clock::Red, red);
        kelvatest::row("in two days", "2024-03-07", Clock::Yellow, yellow);
        kelvatest::row("in three days", "2024-03-08", Clock::Yellow, yellow);
        kelvatest::row("in four days", "2024-03-09", Clock::Green, green);
        kelvatest::row("in seven days", "2024-03-12", Clock::Green, green);
        kelvatest::row("in eight days", "2024-03-13", Clock::Plain, QColor());
        kelvatest::row("no date at all", "soon", Clock::Red, red);
    }

    void resubmissionClasses()
    {
        QFETCH(QString, date);
        QFETCH(Clock, clock);
        QFETCH(QColor, brush);
        const DocumentRowLook look = documentRowLook(row("2", date, "W"), writableSession());
        QCOMPARE(look.clock, clock);
        QCOMPARE(look.background, brush);
        QCOMPARE(look.toolTip, "Resubmit on: " + date);
        QVERIFY(!look.redPage);
    }

    void marks_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("rights");
        QTest::addColumn<bool>("noEdit");
        QTest::addColumn<QString>("marks");
        kelvatest::row("writable", "1", "W", false, "");
        kelvatest::row("no right to write", "1", "", false, "red key readonly");
        kelvatest::row("note and no right to write", "1", "N", false, "red note key readonly");
        kelvatest::row("read-only session", "1", "WN", true, "red note key readonly");
        kelvatest::row("resubmission keeps its page", "2", "", false, "key readonly");
        kelvatest::row("resubmission in a read-only session", "2", "W", true, "key readonly");
    }

    void marks()
    {
        QFETCH(QString, status);
        QFETCH(QString, rights);
        QFETCH(bool, noEdit);
        DocumentRowContext context = writableSession();
        context.noEdit = noEdit;
        const DocumentRowLook look = documentRowLook(row(status, "2024-06-01", rights), context);
        QStringList marks;
        if (look.redPage)
            marks << "red";
        if (look.note)
            marks << "note";
        if (look.key)
            marks << "key";
        if (look.readOnly)
            marks << "readonly";
        QTEST(marks.join(' '), "marks");
    }

    void retention_data()
    {
        QTest::addColumn<bool>("trash");
        QTest::addColumn<QString>("period");
        QTest::addColumn<bool>("marked");
        QTest::addColumn<QDate>("end");
        kelvatest::row("runs on from the document date", true, "4;1;2", true, QDate(2024, 3, 31));
        kelvatest::row("only in the trash", false, "4;1;2", false, QDate());
        kelvatest::row("unknown period is marked without a date", true, "", true, QDate());
    }

    void retention()
    {
        QFETCH(bool, trash);
        QFETCH(QString, period);
        QFETCH(bool, marked);
        QFETCH(QDate, end);
        DocumentRowContext context = writableSession();
        context.trash = trash;
        context.retention.insert("5", period);
        const DocumentRowLook look = documentRowLook(row("1", "", "WF"), context);
        QCOMPARE(look.retention, marked);
        QCOMPARE(look.background, marked ? QColor(41, 171, 226) : QColor());
        QCOMPARE(look.retentionEnd, end);
        QCOMPARE(look.toolTip,
                 end.isValid() ? "Resubmission Period until: " + end.toString("yyyy-MM-dd") : QString());
    }

    void cellFlags()
    {
        const QList<int> editable{2, 3, 5, 6, 8, 10, 11, 40};
        for (const int column : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 40}) {
            const Qt::ItemFlags flags = documentCellFlags(column, false, false);
            QCOMPARE(flags.testFlag(Qt::ItemIsEditable), editable.contains(column));
            QVERIFY(flags.testFlag(Qt::ItemIsDragEnabled));
            QVERIFY(!documentCellFlags(column, true, false).testFlag(Qt::ItemIsEditable));
            const Qt::ItemFlags trashed = documentCellFlags(column, false, true);
            QVERIFY(!trashed.testFlag(Qt::ItemIsEditable) && !trashed.testFlag(Qt::ItemIsDragEnabled));
            QVERIFY(trashed.testFlag(Qt::ItemIsSelectable));
        }
    }

    void numbers_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("shown");
        kelvatest::row("both decimals", "1234.50", "1234,50");
        kelvatest::row("the point stays behind", "12.00", "12,");
        kelvatest::row("ends with zeros before the point", "1200", "1200");
    }

    void numbers()
    {
        QFETCH(QString, stored);
        QTEST(numericCellText(stored, ','), "shown");
    }

    void aRowOfNothingIsHarmless()
    {
        const DocumentRowLook look = documentRowLook({}, writableSession());
        QVERIFY(look.readOnly);
        QCOMPARE(look.classificationId, QString());
    }
};

KELVA_TEST(TestDocumentRow)
#include "testdocumentrow.moc"
