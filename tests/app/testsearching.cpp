#include "app/workplace.h"
#include "support/dialogscript.h"
#include "support/kelvatest.h"

#include "search/kelvafilters.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

namespace {

/// Answers the extended search with one row on the description.
void searchDescription(QWidget *dialog, const QString &field, const QString &value)
{
    auto *table = dialog->findChild<QTableWidget *>("m_extSearchTable");
    if (table->rowCount() == 0)
        dialog->findChild<QPushButton *>("m_bAdd")->click();
    table->item(0, 0)->setText(field);
    table->item(0, 2)->setText(value);
}

} // namespace

/// Extended search and stored filters in the main window: which filter list leaves it, and what a user sees.
class TestSearching : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        Workplace::prepare();
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Invoice");
        archive.addDocument("Letter");
        archive.searches.insert(1,
                                {"Mine", FakeArchive::searchContent("Description/ilike/letter/"), "r_anna"});
        archive.searches.insert(
            2, {"Ours", FakeArchive::searchContent("Status/=/open/1|full text/search for/invoice/"),
                "kelvaUSER"});
        m_workplace = std::make_unique<Workplace>();
        QVERIFY(m_workplace->start());
        archive.queries.clear();
    }

    void cleanup() { m_workplace.reset(); }

    void theExtendedSearchIsAColumnOfTheCombo()
    {
        DialogScript script;
        script.expectDialog("Extended search", true,
                            [](QWidget *dialog) { searchDescription(dialog, "Description", "letter"); });
        chooseColumn("ExtendedSearch");
        QCOMPARE(lastQuery(),
                 QStringList({"bemerkung::varchar = 'letter'::varchar AND  1 = 1 ", "OPT:LIMIT;100"}));
        QVERIFY(!cell()->isEnabled());
        QVERIFY(button("m_bClearSuchen")->isEnabled());
        script.expectDialog("Extended search", true,
                            [](QWidget *dialog) { searchDescription(dialog, "full text", "letter"); });
        button("m_bSuchen")->click();
        QCOMPARE(lastQuery(), QStringList({"OPT:SELECTION;102", " 1 = 1 ", "OPT:LIMIT;100"}));
        // Repeated in the other way, without the dialog.
        m_workplace->action("actionErweitererte_Volltextsuche")->setChecked(true);
        QCOMPARE(lastQuery().first(), QString("OPT:SELECTION;-1"));
        const int queries = FakeArchive::instance().queries.size();
        script.expectDialog("Extended search", true,
                            [](QWidget *dialog) { searchDescription(dialog, "full text", "le"); });
        script.expectBox("full text search", "A minimum of 3 characters");
        button("m_bSuchen")->click();
        QCOMPARE(FakeArchive::instance().queries.size(), queries);
        script.expectDialog("Extended search", false);
        button("m_bSuchen")->click();
        QCOMPARE(lastQuery(), QStringList({"1=1", "OPT:LIMIT;100"}));
        QVERIFY(!button("m_bClearSuchen")->isEnabled());
        QVERIFY(!cell()->isEnabled());
        chooseColumn("bemerkung");
        QVERIFY(cell()->isEnabled());
    }

    void aFilterOfTheTreeIsApplied()
    {
        activate("personal filters", "Mine");
        QCOMPARE(lastQuery(),
                 QStringList({"bemerkung::varchar ilike '%letter%'::varchar AND  1 = 1 ", "OPT:LIMIT;100"}));
        QCOMPARE(active(), QStringList("Mine"));
        activate("global filters", "Ours");
        QCOMPARE(lastQuery(),
                 QStringList({"OPT:SELECTION;101", "status = '1' AND  1 = 1 ", "OPT:LIMIT;100"}));
        QCOMPARE(active(), QStringList("Ours"));
        activate("personal filters", "Mine"); // and the words of the other one are gone
        QCOMPARE(lastQuery().size(), 2);
        activate("global filters", QString());
        QCOMPARE(lastQuery(), QStringList({"1=1", "OPT:LIMIT;100"}));
        QCOMPARE(active(), QStringList());
    }

    void ofTwoFiltersOfOneNameTheChosenOneIsApplied()
    {
        FakeArchive::instance().searches.insert(
            3, {"Mine", FakeArchive::searchContent("Description/ilike/invoice/"), "kelvaUSER"});
        m_workplace->action("action_ReloadAll")->trigger();
        activate("global filters", "Mine");
        QCOMPARE(lastQuery().first(), QString("bemerkung::varchar ilike '%invoice%'::varchar AND  1 = 1 "));
        activate("personal filters", "Mine");
        QCOMPARE(lastQuery().first(), QString("bemerkung::varchar ilike '%letter%'::varchar AND  1 = 1 "));
    }

    void aSearchThatFailsFindsNothing()
    {
        FakeArchive::instance().failNext("searchDocuments", "no");
        activate("global filters", "Ours");
        QCOMPARE(lastQuery().first(), QString("OPT:SELECTION;-1"));
        QVERIFY(button("m_bClearSuchen")->isEnabled());
    }

    void theSearchButtonTakesWhatIsBeingTyped()
    {
        chooseColumn("bemerkung");
        QVERIFY(QTest::qWaitForWindowActive(m_workplace->window.get()));
        cell()->editItem(cell()->item(0, 0));
        auto *editor = cell()->findChild<QLineEdit *>();
        QVERIFY(editor);
        editor->setFocus();
        QTest::keyClicks(editor, "letter");
        const int queries = FakeArchive::instance().queries.size();
        button("m_bSuchen")->click();
        QCOMPARE(lastQuery().first(), QString("to_tsvector(bemerkung) @@ to_tsquery('letter')"));
        QCOMPARE(FakeArchive::instance().queries.size(), queries + 1);
    }

    void theFirstEntryOfAListCanBeChosen()
    {
        chooseColumn("status");
        const int queries = FakeArchive::instance().queries.size();
        auto *choices = cell()->findChild<QComboBox *>();
        QVERIFY(choices);
        QTest::keyClick(choices, Qt::Key_Home);
        emit choices->activated(0); // what stands there already
        Workplace::settle();
        QCOMPARE(lastQuery().first(), QString("status = 1"));
        QCOMPARE(FakeArchive::instance().queries.size(), queries + 1);
    }

    void aBoxIsTickedInTheSearchLine()
    {
        chooseColumn("attr2");
        const QModelIndex box = cell()->model()->index(0, 0);
        QTest::mouseClick(cell()->viewport(), Qt::LeftButton, {}, cell()->visualRect(box).center());
        QTRY_COMPARE(lastQuery().first(), QString("attr2 = 2::varchar"));
        QTest::mouseClick(cell()->viewport(), Qt::LeftButton, {}, cell()->visualRect(box).center());
        QTRY_COMPARE(lastQuery().first(), QString("(attr2 != 2::varchar OR attr2 IS NULL)"));
    }

    void editingStartsFromTheActiveFilter()
    {
        activate("personal filters", "Mine");
        DialogScript script;
        script.expectDialog("Extended search", true, [](QWidget *dialog) {
            QCOMPARE(dialog->findChild<QComboBox *>("m_SavedSearch")->currentText(), QString("Mine"));
            searchDescription(dialog, "Description", "invoice");
        });
        button("m_bFilterBearbeiten")->click();
        QCOMPARE(lastQuery().first(), QString("bemerkung::varchar ilike '%invoice%'::varchar AND  1 = 1 "));
        QCOMPARE(active(), QStringList("Mine"));
        m_workplace->action("actionReset_Filters")->trigger();
        QCOMPARE(lastQuery(), QStringList({"1=1", "OPT:LIMIT;100"}));
        QCOMPARE(active(), QStringList());
    }

    void theTreeSurvivesAReload()
    {
        tree()->expand(group("global filters"));
        tree()->expand(group("personal filters"));
        tree()->collapse(group("personal filters"));
        activate("global filters", "Ours");
        FakeArchive::instance().searches.remove(2);
        m_workplace->action("action_ReloadAll")->trigger();
        QCOMPARE(active(), QStringList());
        QVERIFY(tree()->isExpanded(group("global filters")));
        QVERIFY(!tree()->isExpanded(group("personal filters")));
        QCOMPARE(tree()->model()->rowCount(group("global filters")), 0);
        FakeArchive::instance().queries.clear();
        activate("personal filters", "Mine");
        QCOMPARE(FakeArchive::instance().queries.size(), 1); // connected once
    }

private:
    KelvaFilters *tree() const { return m_workplace->window->findChild<KelvaFilters *>("m_treeSearch"); }
    QTableWidget *cell() const { return m_workplace->window->findChild<QTableWidget *>("m_SearchString"); }
    QPushButton *button(const char *name) const
    {
        return m_workplace->window->findChild<QPushButton *>(name);
    }
    static QStringList lastQuery() { return FakeArchive::instance().queries.last(); }

    void chooseColumn(const QString &key)
    {
        auto *combo = m_workplace->window->findChild<QComboBox *>("m_SearchCombo");
        combo->setCurrentIndex(combo->findData(key));
        emit combo->activated(combo->currentIndex());
    }

    QModelIndex group(const QString &title) const
    {
        return tree()->model()->match(tree()->model()->index(0, 0), Qt::DisplayRole, title).value(0);
    }

    /// As a double click on a filter does; without a name on the group.
    void activate(const QString &title, const QString &name)
    {
        QModelIndex index = group(title);
        for (int row = 0; !name.isEmpty() && row < tree()->model()->rowCount(group(title)); ++row)
            if (tree()->model()->index(row, 0, group(title)).data() == name)
                index = tree()->model()->index(row, 0, group(title));
        tree()->setCurrentIndex(index);
        QTest::keyClick(tree(), Qt::Key_Return);
    }

    /// Names of the filters that are red.
    QStringList active() const
    {
        QStringList names;
        for (int i = 0; i < tree()->model()->rowCount(); ++i) {
            const QModelIndex parent = tree()->model()->index(i, 0);
            for (int row = 0; row < tree()->model()->rowCount(parent); ++row) {
                const QModelIndex filter = tree()->model()->index(row, 0, parent);
                if (filter.data(Qt::ForegroundRole).value<QBrush>().color() == QColor(255, 0, 0))
                    names << filter.data().toString();
            }
        }
        return names;
    }

    std::unique_ptr<Workplace> m_workplace;
};

KELVA_TEST(TestSearching)
#include "testsearching.moc"
