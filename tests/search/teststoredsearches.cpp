#include "fakes/fakearchive.h"
#include "search/extsearchfixture.h"
#include "support/dialogscript.h"
#include "support/kelvatest.h"

#include "search/filtermodel.h"
#include "search/quserlistview.h"
#include "search/searchtemplate.h"
#include "widgets/itemroles.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QWheelEvent>

namespace {

QStringList rolesIn(const QUserListView *list)
{
    QStringList roles;
    for (int row = 0; row < list->rowCount(); ++row)
        roles << list->item(row)->text();
    roles.sort();
    return roles;
}

std::function<void(QWidget *)> typeName(const QString &name)
{
    return [name](QWidget *dialog) { dialog->findChild<QLineEdit *>()->setText(name); };
}

} // namespace

class TestStoredSearches : public QObject
{
    Q_OBJECT

private slots:
    void init() { FakeArchive::instance().reset(); }

    void separatorsDoNotGetIn()
    {
        const QString hostile = QString("a") + QChar(0xFEFF) + QChar(0xFFFD) + QChar(0xFFFC) + "b";
        QCOMPARE(writeTemplateRows({{"Kind", "=", hostile, QString()}}),
                 FakeArchive::searchContent("Kind/=/ab/"));
    }

    void whatIsTypedOverAStoredValueCounts()
    {
        // A choice that has become a text since it was stored.
        FakeArchive::instance().searches.insert(
            4, {"Mine", FakeArchive::searchContent("Description/=/shown/hidden"), "r_anna"});
        ExtSearchFixture search;
        search.connectClient();
        search.dialog->reloadSearch("Mine");
        QVERIFY(search.dialog->getFilter().contains("'hidden'"));
        search.table()->item(0, 2)->setText("typed");
        QVERIFY(search.dialog->getFilter().contains("'typed'"));
        search.choose(0, 0, "full text");
        QCOMPARE(search.rows(), QString("full text/search for/typed"));
        QWheelEvent wheel(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(search.editor(0, 0), &wheel);
        QCoreApplication::sendEvent(search.savedSearches(), &wheel);
        QCOMPARE(search.rows(), QString("full text/search for/typed"));
    }

    void aStoredSearchIsShown_data()
    {
        kelvatest::columns<QString, QString, QString, QString>("stored", "shown", "clause", "savedAgain");
        const auto row = [](const char *name, const char *stored, const char *shown, const char *clause,
                            const char *again = nullptr) {
            QTest::newRow(name) << stored << shown << clause << (again ? again : stored);
        };
        row("several values", "Status/=/open/1|Status/or =/done/3|Description/ilike/x/",
            "Status/is/open\nStatus/or is/done\nDescription/contains/x",
            "(status = '1' OR status = '3') AND bemerkung::varchar ilike '%x%'::varchar AND  1 = 1 ");
        row("written in another language", "Status/=/offen/1|Status/oder =/fertig/3",
            "Status/is/offen\nStatus/or is/fertig", "(status = '1' OR status = '3') AND  1 = 1 ",
            "Status/=/offen/1|Status/or =/fertig/3");
        row("rows of three fields", "Kind/!=/large", "Kind/is not/large",
            "attr4::varchar != 'large'::varchar AND  1 = 1 ", "Kind/!=/large/");
        row("words of files", "full text/suche/turpentine/", "full text/search for/turpentine", " 1 = 1 ",
            "full text/search for/turpentine/");
        row("operator that the field no longer has", "Status/</open/2|Kind/=/small/",
            "Status/</open\nKind/is/small", "status attr4::varchar = 'small'::varchar AND  1 = 1 ");
        row("field that is gone", "Colour/=/red/", "Colour/is/red", " 1 = 1 ");
    }

    void aStoredSearchIsShown()
    {
        QFETCH(QString, stored);
        QFETCH(QString, savedAgain);
        FakeArchive &archive = FakeArchive::instance();
        archive.searches.insert(4, {"Mine", FakeArchive::searchContent(stored), "r_anna"});
        ExtSearchFixture search;
        search.connectClient();
        search.savedSearches()->setCurrentText("Mine");
        QTEST(search.rows(), "shown");
        QTEST(search.dialog->getFilter(), "clause");
        search.click("m_bUpdateSearch");
        QCOMPARE(archive.searches.value(4),
                 QStringList({"Mine", FakeArchive::searchContent(savedAgain), "r_anna"}));
        QCOMPARE(search.savedSearches()->currentText(), QString("Mine"));
        search.savedSearches()->setCurrentIndex(0);
        QCOMPARE(search.table()->rowCount(), 0);
        QVERIFY(!search.dialog->getCurrentFilter());
    }

    void filtersStandInTheirGroup()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.rights.removeAll("kelvaADMIN");
        archive.searches.insert(1, {"b mine", FakeArchive::searchContent("Id/=/5/"), "r_anna"});
        archive.searches.insert(2,
                                {"a shared", FakeArchive::searchContent("Id/=/6/"), "r_anna", "kelvaUSER"});
        archive.searches.insert(3, {"of all", FakeArchive::searchContent("Id/=/7/"), "kelvaUSER"});
        ExtSearchFixture search;
        search.connectClient();
        QStringList tree;
        const FilterModel *model = search.dialog->filterModel();
        for (int group = 0; group < model->rowCount(); ++group)
            for (int row = 0; row < model->item(group)->rowCount(); ++row)
                tree << model->item(group)->text() + ": " + model->item(group)->child(row)->text();
        QCOMPARE(tree, QStringList({"personal filters: b mine", "global filters: a shared",
                                    "global filters: of all"}));
        // Who may change what.
        for (const auto &[name, changes] : {std::pair{"b mine", true}, {"a shared", false}, {"", false}}) {
            search.savedSearches()->setCurrentText(name);
            for (const char *button : {"m_bUpdateSearch", "m_bDeleteSearch"})
                QCOMPARE(search.dialog->findChild<QPushButton *>(button)->isEnabled(), changes);
        }
        QVERIFY(!search.dialog->findChild<QCheckBox *>("m_showAll")->isVisible());
        archive.rights << "kelvaADMIN";
        search.connectClient();
        search.savedSearches()->setCurrentText("a shared");
        QVERIFY(search.dialog->findChild<QPushButton *>("m_bDeleteSearch")->isEnabled());
        QCOMPARE(search.dialog->getCurrentFilter()->text(), QString("a shared"));
        search.click("m_bDeleteSearch");
        QVERIFY(!archive.searches.contains(2));
        QCOMPARE(search.savedSearches()->currentIndex(), 0);
        QCOMPARE(search.rows(), QString("Id/is/6")); // what was searched for may be stored anew
    }

    void aNewSearchIsItsMakers_data()
    {
        kelvatest::columns<bool, QStringList>("admin", "roles");
        kelvatest::row("administrator", true, QStringList{"kelvaCLASSIFY", "r_anna"});
        kelvatest::row("anybody", false, QStringList{"r_anna"});
    }

    void aNewSearchIsItsMakers()
    {
        QFETCH(bool, admin);
        QFETCH(QStringList, roles);
        FakeArchive &archive = FakeArchive::instance();
        if (!admin)
            archive.rights.removeAll("kelvaADMIN");
        ExtSearchFixture search;
        search.dialog->setUsers({"kelvaUSER", "kelvaCLASSIFY", "r_anna"});
        search.connectClient();
        DialogScript script;
        script.expectBox("Save search", "no search criterias defined!");
        search.click("m_bSaveSearch");
        search.click("m_bAdd");
        search.fill("Amount", "is", "5");
        script.expectDialog("Save search", true, typeName(QString()));
        search.click("m_bSaveSearch");
        archive.failNext("saveSearch", "<b>full</b>");
        script.expectDialog("Save search", true, typeName("Five"));
        script.expectBox("Error", "The search could not be saved: <b>full</b>");
        search.click("m_bSaveSearch");
        QVERIFY(archive.searches.isEmpty());
        if (admin) { // his own role moves out and is added all the same
            auto *assigned = search.dialog->findChild<QUserListView *>("m_bearbUsers");
            auto *available = search.dialog->findChild<QUserListView *>("m_Users");
            QCOMPARE(rolesIn(assigned), QStringList("r_anna"));
            assigned->selectAll();
            search.click("m_removeRoles");
            available->setCurrentIndex(available->model()->index(0, 0));
            QTest::keyClick(available, Qt::Key_Left);
            QCOMPARE(rolesIn(available), QStringList({"kelvaUSER", "r_anna"}));
        }
        script.expectDialog("Save search", true, typeName("Five"));
        search.click("m_bSaveSearch");
        QCOMPARE(archive.searches.value(1),
                 QStringList({"Five", FakeArchive::searchContent("Amount/=/5/")}) + roles);
        QCOMPARE(search.savedSearches()->currentText(), QString("Five"));
        // Another one of the same name is another one.
        search.fill("Amount", "is", "6");
        script.expectDialog("Save search", true, typeName("Five"));
        search.click("m_bSaveSearch");
        QCOMPARE(archive.searches.size(), 2);
        QCOMPARE(search.savedSearches()->currentData(itemrole::storedId).toString(), QString("2"));
    }

    void changedRolesAreAskedFor()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.searches.insert(1, {"Mine", FakeArchive::searchContent("Id/=/5/"), "r_anna"});
        ExtSearchFixture search;
        search.dialog->setUsers({"kelvaUSER", "r_anna"});
        search.connectClient();
        search.savedSearches()->setCurrentText("Mine");
        auto *everybody = search.dialog->findChild<QCheckBox *>("m_globalFilter");
        QVERIFY(!everybody->isChecked());
        {
            DialogScript script;
            search.dialog->reject();
            search.dialog->show();
            everybody->click();
            script.expectBox("Save", "The permissions for the filter has changed, save changes?",
                             QMessageBox::No);
            search.dialog->reject();
        }
        QCOMPARE(archive.searches.value(1).mid(2), QStringList("r_anna"));
        search.dialog->show();
        DialogScript script;
        archive.failNext("updateSearch", "no");
        script.expectBox("Save", "changed", QMessageBox::Yes);
        script.expectBox("Error", "The serach could not be saved: no");
        search.dialog->reject();
        script.expectBox("Save", "changed", QMessageBox::Yes);
        search.dialog->reject();
        QCOMPARE(archive.searches.value(1).mid(2), QStringList({"r_anna", "kelvaUSER"}));
        QVERIFY(everybody->isChecked());
        everybody->click();
        QCOMPARE(rolesIn(search.dialog->findChild<QUserListView *>("m_bearbUsers")), QStringList("r_anna"));
    }
};

KELVA_TEST(TestStoredSearches)
#include "teststoredsearches.moc"
