#include "app/workplace.h"
#include "support/dialogscript.h"
#include "support/kelvatest.h"

#include "folders/kelvadoctree.h"
#include "folders/kelvafolderview.h"
#include "widgets/itemroles.h"

#include <QCalendarWidget>
#include <QLineEdit>
#include <QStandardItem>

/// A cell is changed as its editor would change it; what the archive holds afterwards is what counts.
class TestEditing : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        Workplace::prepare();
        FakeArchive::instance().addDocument("Invoice", "1.1.1", "1");
    }

    void edits_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("role");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>(
            "record"); // main folder, description, status, folder, type, date, resubmission, 11, 12
        QTest::addColumn<QString>("readFailure");
        QTest::addColumn<QString>("saveFailure");
        const int text = Qt::DisplayRole;
        const int raw = itemrole::rawValue;
        kelvatest::row("description", 2, text, "Reminder", "1.1|Reminder|1|1.1.1|1|2024-03-05|||0",
                       "The document data could not be read!", "The description could not be saved!");
        kelvatest::row("status", 3, raw, "3", "1.1|Invoice|3|1.1.1|1|2024-03-05|||0",
                       "The status could not be changed! (no)", "The status could not be changed!");
        kelvatest::row("folder under another main folder", 5, raw, "1.2",
                       "1.2|Invoice|1|1.2|1|2024-03-05|||0", "The document cannot be moved.",
                       "The document cannot be moved!");
        kelvatest::row("status node of the folder tree", 5, raw, "0.3",
                       "1.1|Invoice|3|1.1.1|1|2024-03-05|||0", "The status could not be changed! (no)",
                       "The status could not be changed!");
        kelvatest::row("type", 6, raw, "2", "1.1|Invoice|1|1.1.1|2|2024-03-05|||0",
                       "The document type could not be changed!", "The document type could not be changed!");
        kelvatest::row("date", 8, text, "2023-12-24", "1.1|Invoice|1|1.1.1|1|2023-12-24|||0",
                       "The date could not be changed!", "The date could not be changed!");
        kelvatest::row(
            "resubmission date", 10, text, "2030-01-01", "1.1|Invoice|2|1.1.1|1|2024-03-05|2030-01-01||0",
            "The document could not be classified: no", "The document could not be classified: no");
        kelvatest::row("number", 11, text, "12.5", "1.1|Invoice|1|1.1.1|1|2024-03-05||12.5|0",
                       "The document could not be classified: no",
                       "The document could not be classified: no");
        kelvatest::row("check box", 12, text, "2", "1.1|Invoice|1|1.1.1|1|2024-03-05|||2",
                       "The document could not be classified: no",
                       "The document could not be classified: no");
        kelvatest::row("main folder", 1, raw, "1.2", "1.2|Invoice|1|1.2|1|2024-03-05|||0",
                       "The main folder could not be changed!", "The main folder could not be changed!");
        kelvatest::row("column that is no field of a user's", 7, text, "me", unchanged(), "", "");
    }

    void edits()
    {
        QFETCH(QString, record);
        QFETCH(QString, readFailure);
        QFETCH(QString, saveFailure);
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        const int queries = archive.queries.size();
        change(workplace);
        QCOMPARE(stored(), record);
        QCOMPARE(archive.queries.size(), queries + 1); // one refresh
        if (readFailure.isEmpty())
            return;

        archive.reset();
        archive.addDocument("Invoice", "1.1.1", "1");
        workplace.action("action_Neuladen")->trigger();
        for (const QString &operation : {QString("getDocument"), QString("saveDocument")}) {
            archive.failNext(operation, "no");
            DialogScript script;
            script.expectBox("Error", operation == "getDocument" ? readFailure : saveFailure);
            change(workplace);
            QCOMPARE(stored(), unchanged());
            QCOMPARE(workplace.column(2), QStringList("Invoice"));
        }
    }

    void aRecordThatSomebodyElseChanged_data() { edits_data(); }

    void aRecordThatSomebodyElseChanged()
    {
        QFETCH(QString, readFailure);
        if (readFailure.isEmpty())
            return; // nothing is read for it
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        archive.meanwhile("getDocument", [&archive] {
            archive.documents[1].fields[2] = "Theirs";
            archive.documents[1].fields[4] = "1_99";
        });
        DialogScript script;
        script.expectBox("Warning", "Classify not possible, the entry has been processed in the meantime!");
        if (QString(QTest::currentDataTag()) == "main folder") // alone in having a second box
            script.expectBox("Error", "The main folder could not be changed!");
        change(workplace);
        QCOMPARE(stored(), "1.1|Theirs|1|1.1.1|1|2024-03-05|||0");
        QCOMPARE(workplace.column(2), QStringList("Theirs"));
    }

    void resubmissionAsksForItsDate()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        const QDate date = QDate::currentDate().addDays(9);
        {
            DialogScript script;
            script.expectDialog("1 wiedervorlegen am...", true, [date](QWidget *dialog) {
                dialog->findChild<QCalendarWidget *>()->setSelectedDate(date);
            });
            set(workplace, 3, itemrole::rawValue, "2");
        }
        QCOMPARE(stored(), "1.1|Invoice|2|1.1.1|1|2024-03-05|" + date.toString("yyyy-MM-dd") + "||0");
        // Given up, nothing is saved and nothing refreshed.
        FakeArchive &archive = FakeArchive::instance();
        archive.calls.clear();
        DialogScript script;
        script.expectDialog("1 wiedervorlegen am...", false);
        set(workplace, 3, itemrole::rawValue, "3");
        archive.calls.clear();
        set(workplace, 3, itemrole::rawValue, "2");
        QCOMPARE(archive.calls, QStringList("getDocument 1"));
    }

    void theEditorsWriteThroughTheTable()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        KelvaInfoView *table = workplace.table();
        const QModelIndex cell = table->model()->index(0, 2);
        table->setFocus();
        table->QTableView::setCurrentIndex(cell);
        QTest::keyClick(table, Qt::Key_Return);
        auto *editor = table->findChild<QLineEdit *>();
        QVERIFY(editor);
        editor->setText("  Typed  ");
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(stored(), QString("1.1|Typed|1|1.1.1|1|2024-03-05|||0"));
        QCOMPARE(workplace.column(2), QStringList("Typed"));
        QTRY_VERIFY(!table->findChild<QLineEdit *>());
    }

    void theKeyThatStartsAnEditIsTheFirstOneTyped()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        KelvaInfoView *table = workplace.table();
        table->setFocus();
        table->QTableView::setCurrentIndex(table->model()->index(0, 11));
        QTest::keyClick(table, '1');
        auto *editor = table->findChild<QLineEdit *>();
        QVERIFY(editor);
        QTest::keyClicks(editor, "500");
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(stored(), QString("1.1|Invoice|1|1.1.1|1|2024-03-05||1500|0"));
    }

    void spaceTicksABoxWhoseRowIsReplaced()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        KelvaInfoView *table = workplace.table();
        table->setFocus();
        table->QTableView::setCurrentIndex(table->model()->index(0, 12));
        const QPersistentModelIndex edited = table->QTableView::currentIndex();
        QTest::keyClick(table, Qt::Key_Space);
        QVERIFY(edited.isValid()); // the view goes on with it after the tick
        QTRY_COMPARE(stored(), QString("1.1|Invoice|1|1.1.1|1|2024-03-05|||2"));
        QVERIFY(table->hasFocus());
    }

    void whatIsAskedForDuringAnEditWaits_data()
    {
        QTest::addColumn<QString>("operation"); // lets events run
        QTest::addColumn<QString>("action");
        for (const char *operation : {"getDocument", "saveDocument", "getDocuments"})
            for (const char *action : {"action_Neuladen", "action_ReloadAll", "actionReset_Filters"})
                QTest::addRow("%s in %s", action, operation) << operation << action;
    }

    void whatIsAskedForDuringAnEditWaits()
    {
        QFETCH(QString, operation);
        QFETCH(QString, action);
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        const int queries = archive.queries.size();
        int atOnce = -1;
        archive.meanwhile(operation, [&] {
            const int before = archive.queries.size();
            workplace.action(action)->trigger();
            QCoreApplication::processEvents();
            atOnce = archive.queries.size() - before;
            if (operation != "getDocument")
                return;
            // A second edit, of a row that the first is about to replace.
            const QModelIndex description = workplace.table()->model()->index(0, 2);
            workplace.table()->QTableView::setCurrentIndex(description);
            workplace.table()->model()->setData(description, "Second");
        });
        set(workplace, 8, Qt::DisplayRole, "2023-12-24");
        QTRY_VERIFY(archive.queries.size() > queries);
        Workplace::settle();
        QCOMPARE(atOnce, 0);
        QCOMPARE(stored().section('|', 5, 5), QString("2023-12-24"));
        QCOMPARE(workplace.column(8), QStringList("2023-12-24"));
        QCOMPARE(stored().section('|', 1, 1), QString(operation == "getDocument" ? "Second" : "Invoice"));
        QCOMPARE(workplace.manager.requests.contains("RELOADPROFILE#7"), action == "action_ReloadAll");
    }

    void attributesThatTheVocabularyDoesNotKnowAreReadOnly()
    {
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        KelvaInfoView *table = workplace.table();
        archive.headerTitles.swapItemsAt(11, 12);
        workplace.action("action_Neuladen")->trigger();
        QVERIFY(workplace.message().contains("Reload the workbench"));
        QVERIFY(!(table->item(0, 12)->flags() & Qt::ItemIsEditable));
        QVERIFY(table->item(0, 2)->flags() & Qt::ItemIsEditable);
        const QModelIndex box = table->model()->index(0, 12);
        table->scrollTo(box);
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(box).center());
        Workplace::settle();
        QCOMPARE(stored(), unchanged());
        archive.headerTitles.swapItemsAt(11, 12);
        workplace.action("action_Neuladen")->trigger();
        QCOMPARE(workplace.message(), QString("1 documents"));
        set(workplace, 11, Qt::DisplayRole, "12.5");
        QCOMPARE(stored(), QString("1.1|Invoice|1|1.1.1|1|2024-03-05||12.5|0"));
    }

    void aRecordOfAnotherLengthIsNotChanged()
    {
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        archive.meanwhile("getDocument", [&archive] { archive.documents[1].fields.removeLast(); });
        const QStringList before = archive.documents.value(1).fields;
        DialogScript script;
        script.expectBox("Error", "The document could not be classified: ");
        set(workplace, 12, Qt::DisplayRole, "2");
        QCOMPARE(archive.documents.value(1).fields, before.mid(0, before.size() - 1));
    }

    void aNewFolderWaitsForTheCalendar()
    {
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        archive.queries.clear();
        int whileItWasOpen = -1;
        DialogScript script;
        script.expectDialog("1 wiedervorlegen am...", false, [&](QWidget *) {
            workplace.window->selChanged();
            whileItWasOpen = archive.queries.size();
        });
        set(workplace, 3, itemrole::rawValue, "2");
        QCOMPARE(whileItWasOpen, 0);
        QTRY_COMPARE(archive.queries.size(), 1);
        QCOMPARE(workplace.column(3), QStringList("open"));
    }

    void aClickTicksABox()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        KelvaInfoView *table = workplace.table();
        const auto click = [table] {
            const QModelIndex box = table->model()->index(0, 12);
            table->scrollTo(box);
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(box).center());
            Workplace::settle();
        };
        table->QTableView::setCurrentIndex(table->model()->index(0, 11)); // another cell than the one clicked
        click();
        QCOMPARE(stored(), QString("1.1|Invoice|1|1.1.1|1|2024-03-05|||2"));
        table->QTableView::setCurrentIndex(QModelIndex());
        click();
        QCOMPARE(stored(), unchanged());
    }

    void documentsAreDroppedOnFoldersAndStatusValues_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("first"); // what becomes of the first, and of the read-only second
        kelvatest::row("folder", "1.2", "1.2|Invoice|1|1.2|1|2024-03-05|||0");
        kelvatest::row("status", "0.3", "1.1|Invoice|3|1.1.1|1|2024-03-05|||0");
        kelvatest::row("resubmission", "0.2", "1.1|Invoice|2|1.1.1|1|2024-03-05|2030-01-01||0");
        kelvatest::row("resubmission without a date", "0.2", unchanged());
        kelvatest::row("resubmission of what was changed", "0.2", "1.1|Theirs|1|1.1.1|1|2024-03-05|||0");
    }

    void documentsAreDroppedOnFoldersAndStatusValues()
    {
        QFETCH(QString, target);
        const QString tag = QTest::currentDataTag();
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Letter", "1.1.1", "1");
        archive.documents[2].rights.clear();
        const QStringList readOnly = archive.documents[2].fields;
        Workplace workplace;
        QVERIFY(workplace.start());
        DialogScript script;
        if (target == "0.2")
            script.expectDialog("Resubmit documents at...", !tag.endsWith("without a date"),
                                [](QWidget *dialog) {
                                    dialog->findChild<QCalendarWidget *>()->setSelectedDate({2030, 1, 1});
                                });
        if (tag.endsWith("was changed")) {
            archive.documents[1].fields[2] = "Theirs";
            archive.documents[1].fields[4] = "1_99";
            script.expectBox("Warning", "processed in the meantime");
            script.expectBox("Error", "Resubmission could not be set");
        }
        const char *signal = target.startsWith('0') ? "updateStatus" : "newDocumentFolders";
        QObject *sender = workplace.window->findChild<QObject *>("m_twStatus");
        if (!target.startsWith('0'))
            sender = workplace.window->findChild<KelvaFolderView *>("m_tWOrdner")->model();
        QVERIFY(QMetaObject::invokeMethod(sender, signal, Q_ARG(QStringList, QStringList({"1", "2"})),
                                          Q_ARG(QString, target)));
        QCOMPARE(script.problems(), QString());
        QTEST(stored(), "first");
        QCOMPARE(archive.documents[2].fields, readOnly);
        QTRY_VERIFY(workplace.column(2).contains(stored().section('|', 1, 1))); // refreshed
    }

    void aRefreshKeepsWhatIsBeingTyped()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        KelvaInfoView *table = workplace.table();
        for (const QString &action : {QString("action_Neuladen"), QString("action_ReloadAll")}) {
            table->QTableView::setCurrentIndex(table->model()->index(0, 2));
            QTest::keyClick(table, Qt::Key_Return);
            auto *editor = table->findChild<QLineEdit *>();
            QVERIFY(editor);
            editor->setText("Typed before " + action);
            QTest::keyClick(editor, Qt::Key_Down); // no reason to leave the cell
            QCOMPARE(table->currentIndex().column(), 2);
            workplace.action(action)->trigger();
            QTRY_COMPARE(stored(), QString("1.1|Typed before %1|1|1.1.1|1|2024-03-05|||0").arg(action));
            QTRY_VERIFY(!table->findChild<QLineEdit *>());
        }
    }

private:
    static QString unchanged() { return "1.1|Invoice|1|1.1.1|1|2024-03-05|||0"; }

    static QString stored()
    {
        const QStringList fields = FakeArchive::instance().documents.value(1).fields;
        QStringList kept;
        for (const int column : {1, 2, 3, 5, 6, 8, 10, 11, 12})
            kept << fields.value(column);
        return kept.join('|');
    }

    static void set(Workplace &workplace, int column, int role, const QString &value)
    {
        KelvaInfoView *table = workplace.table();
        table->QTableView::setCurrentIndex(table->model()->index(0, column));
        table->model()->setData(table->model()->index(0, column), value, role);
        Workplace::settle();
    }

    static void change(Workplace &workplace)
    {
        QFETCH(int, column);
        QFETCH(int, role);
        QFETCH(QString, value);
        set(workplace, column, role, value);
    }
};

KELVA_TEST(TestEditing)
#include "testediting.moc"
