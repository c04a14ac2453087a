#include "support/kelvatest.h"

#include "documents/documentrow.h"

using Clock = DocumentRowLook::Clock;

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
    void resubmissionClasses()
    {
        const QColor red(255, 116, 119);
        const QColor yellow(239, 238, 172);
        const QColor green(172, 239, 182);
        const std::tuple<QString, Clock, QColor> table[] = {
            {"2024-03-06", Clock::Red, red},
            {"2024-03-07", Clock::Yellow, yellow},
            {"2024-03-08", Clock::Yellow, yellow},
            {"2024-03-09", Clock::Green, green},
            {"2024-03-12", Clock::Green, green},
            {"2024-03-13", Clock::Plain, QColor()},
            {"soon", Clock::Red, red},
        };
        for (const auto &[date, clock, brush] : table) {
            const DocumentRowLook look = documentRowLook(row("2", date, "W"), writableSession());
            QCOMPARE(look.clock, clock);
            QCOMPARE(look.background, brush);
            QCOMPARE(look.toolTip, "Resubmit on: " + date);
            QVERIFY(!look.redPage);
        }
    }

    void marks()
    {
        const std::tuple<QString, QString, bool, QString> table[] = {
            {"1", "W", false, ""},
            {"1", "", false, "red key readonly "},
            {"1", "N", false, "red note key readonly "},
            {"1", "WN", true, "red note key readonly "},
            {"2", "", false, "key readonly "}, // a resubmission keeps its page
            {"2", "W", true, "key readonly "},
        };
        for (const auto &[status, rights, noEdit, marks] : table) {
            DocumentRowContext context = writableSession();
            context.noEdit = noEdit;
            const DocumentRowLook look = documentRowLook(row(status, "2024-06-01", rights), context);
            QCOMPARE(QString(look.redPage ? "red " : "") + (look.note ? "note " : "") +
                         (look.key ? "key " : "") + (look.readOnly ? "readonly " : ""),
                     marks);
        }
        const DocumentRowLook nothing = documentRowLook({}, writableSession());
        QVERIFY(nothing.readOnly);
        QCOMPARE(nothing.classificationId, QString());
    }

    void retention()
    {
        const std::tuple<bool, QString, bool, QDate> table[] = {
            {true, "4;1;2", true, QDate(2024, 3, 31)}, // from the document's date
            {false, "4;1;2", false, QDate()},          // only in the trash
            {true, "", true, QDate()},                 // without a date
        };
        for (const auto &[trash, period, marked, end] : table) {
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
    }

    void cellFlags()
    {
        const QList<int> editable{2, 3, 5, 6, 8, 10, 11, 12};
        for (int column = 0; column <= 12; ++column) {
            const Qt::ItemFlags flags = documentCellFlags(column, false, false);
            QCOMPARE(flags.testFlag(Qt::ItemIsEditable), editable.contains(column));
            QVERIFY(flags.testFlag(Qt::ItemIsDragEnabled));
            QVERIFY(!documentCellFlags(column, true, false).testFlag(Qt::ItemIsEditable));
            const Qt::ItemFlags trashed = documentCellFlags(column, false, true);
            QVERIFY(!trashed.testFlag(Qt::ItemIsEditable) && !trashed.testFlag(Qt::ItemIsDragEnabled));
            QVERIFY(trashed.testFlag(Qt::ItemIsSelectable));
        }
    }

    void numbers()
    {
        for (const auto &[stored, shown] :
             {std::pair("1234.50", "1234,50"), {"12.00", "12,"}, {"1200", "1200"}})
            QCOMPARE(numericCellText(stored, ','), QString(shown));
    }
};

KELVA_TEST(TestDocumentRow)
#include "testdocumentrow.moc"
