#include "search/extsearchfixture.h"
#include "support/dialogscript.h"
#include "support/kelvatest.h"

#include "contract/recordformat.h"
#include "documents/kelvacombodelegate.h"
#include "widgets/itemroles.h"

#include <QLocale>
#include <QScopeGuard>

namespace {

/// Answers the dialog for several values: keeps its table to these texts; their raw values are given after a
/// colon.
std::function<void(QWidget *)> chooseValues(const QStringList &values)
{
    return [values](QWidget *dialog) {
        auto *table = dialog->findChild<QTableWidget *>("m_extSelection");
        table->setRowCount(values.size());
        for (int i = 0; i < values.size(); ++i) {
            auto *item = new QTableWidgetItem(values.at(i).section(':', 0, 0));
            item->setData(itemrole::rawValue, values.at(i).section(':', 1));
            table->setItem(i, 0, item);
        }
    };
}

} // namespace

class TestKelvaExtSearch : public QObject
{
    Q_OBJECT

private slots:
    void aFieldDecidesWhatItsRowOffers()
    {
        const char *all = "is|is not|contains|not contains|greater then|smaller then|greater/equal then|"
                          "smaller/equal then";
        // Operators, and whether it takes several values.
        const std::tuple<QString, QString, bool> table[] = {
            {"Id", all, false},
            {"Status", "is|is not", true},
            {"Description", "is|is not|contains|not contains", true},
            {"Amount", all, true},
            {"Paid", "is", false},
            {"Date", all, true},
            {"full text", "search for", false},
        };
        for (const auto &[field, operators, several] : table) {
            ExtSearchFixture search;
            QVERIFY(search.choose(0, 0, "Status"));
            search.table()->item(0, 2)->setData(itemrole::rawValue, "2");
            QVERIFY(field == "Status" || search.choose(0, 0, field));
            QStringList offered;
            if (const QComboBox *box = search.editor(0, 1))
                for (int i = 0; i < box->count(); ++i)
                    offered << box->itemText(i);
            else
                offered << search.text(0, 1);
            QCOMPARE(offered.join('|'), operators);
            QCOMPARE(search.text(0, 1), offered.first());
            QCOMPARE(search.button(0, 3)->isEnabled(), several);
            // The status that was chosen before is no value of another field.
            QCOMPARE(search.table()->item(0, 2)->data(itemrole::rawValue).toString(),
                     field == "Status" ? QString("2") : QString());
        }
    }

    void rowsBecomeAClause()
    {
        ExtSearchFixture search;
        const auto reset = qScopeGuard([] { QLocale::setDefault(QLocale::c()); });
        QLocale::setDefault(QLocale(QLocale::German));
        search.fill("Amount", "greater then", "12,5");
        search.click("m_bAdd");
        search.fill("full text", QString(), "turpentine");
        search.click("m_bAdd"); // stays empty
        QCOMPARE(search.dialog->getFilter(), QString("attr1 > '12.5' AND  1 = 1 "));
        QCOMPARE(search.dialog->getFullText(), QString("turpentine "));
        search.button(1, 4)->click();
        QCOMPARE(search.dialog->getFilter(), QString("attr1 > '12.5' AND  1 = 1 "));
        QCOMPARE(search.dialog->getFullText(), QString());
    }

    void severalValuesAreOneGroup()
    {
        ExtSearchFixture search;
        search.fill("Status", "is not", "open", "1");
        search.click("m_bAdd");
        search.fill("Description", "contains", "x");
        DialogScript script;
        script.expectDialog("Multiple selection", true, chooseValues({"open:1", "waiting:2", "done:3"}));
        search.button(0, 3)->click();
        QCOMPARE(search.rows(), QString("Status/is not/open\nStatus/or is not/waiting\n"
                                        "Status/or is not/done\nDescription/contains/x"));
        QCOMPARE(search.dialog->getFilter(),
                 QString("(status != '1' OR status != '2' OR status != '3') AND bemerkung::varchar ilike "
                         "'%x%'::varchar AND  1 = 1 "));
        QVERIFY(!search.editor(0, 0) && !search.editor(0, 1)); // would no longer fit the rows below
        QVERIFY(!search.button(1, 4));

        script.expectDialog("Multiple selection", true, chooseValues({"done:3"}));
        search.button(0, 3)->click();
        QCOMPARE(search.rows(), QString("Status/is not/done\nDescription/contains/x"));

        script.expectDialog("Multiple selection", true, chooseValues({"a", "b"}));
        search.button(1, 3)->click();
        search.button(1, 4)->click(); // with its further values
        QCOMPARE(search.rows(), QString("Status/is not/done"));
        script.expectDialog("Multiple selection", true, chooseValues({}));
        search.button(0, 3)->click();
        QCOMPARE(search.table()->rowCount(), 0);
    }

    void resubmissionFilter()
    {
        ExtSearchFixture search;
        search.connectClient();
        search.click("m_bAdd");
        search.fill("Id", "is", "5");
        search.dialog->setResubmissionFilter(7);
        QCOMPARE(search.rows(), QString("Date/smaller/equal then/[HEUTE+7]\nStatus/is/waiting"));
        QCOMPARE(search.dialog->getFilter(),
                 QString("defdate::varchar <= '[HEUTE+7]'::varchar AND status = '2' AND  1 = 1 "));
    }

    void newStatusValuesAreTakenOver()
    {
        ExtSearchFixture search;
        search.fill("Status", "is not", "open", "1");
        KelvaComboDelegate fewer({QString("3") + recordformat::fieldSeparator + "finished"}, {}, nullptr,
                                 false, QIcon(), true, true);
        search.dialog->setDelegateLookup([&fewer](const QString &) { return &fewer; });
        search.dialog->updateStatusDelegates();
        QCOMPARE(search.rows(), QString("Status/is not/open"));
        search.table()->editItem(search.table()->item(0, 2));
        auto *box =
            qobject_cast<QComboBox *>(search.table()->indexWidget(search.table()->model()->index(0, 2)));
        QVERIFY(box);
        QCOMPARE(box->count(), 1);
        QCOMPARE(box->itemText(0), QString("finished"));
    }
};

KELVA_TEST(TestKelvaExtSearch)
#include "testkelvaextsearch.moc"
