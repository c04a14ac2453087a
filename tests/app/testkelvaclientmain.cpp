#include "app/workplace.h"
#include "support/dialogscript.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStandardItem>
#include <QTemporaryDir>

class TestKelvaClientMain : public QObject
{
    Q_OBJECT

private slots:
    void init() { Workplace::prepare(); }

    void aLoginListsTheDocuments()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Invoice", "1.1.1");
        archive.addDocument("Letter", "9.9");
        archive.addDocument("Old", "1.3"); // an inactive folder, which no panel shows
        archive.documents[3].fields[1] = "1.3";
        Workplace workplace;
        QVERIFY(workplace.start());
        QCOMPARE(workplace.window->windowTitle(), QString("Kelva - First line - Main archive"));
        QCOMPARE(archive.queries, QList<QStringList>({{"1=1", "OPT:LIMIT;100"}}));
        QCOMPARE(workplace.column(0), QStringList({"101", "102", "103"}));
        QCOMPARE(workplace.column(1), QStringList({"Customers", "Customers", "Closed"}));
        QCOMPARE(workplace.column(3), QStringList({"open", "open", "open"}));
        QCOMPARE(workplace.column(5), QStringList({"Müller & Söhne", "not assigned", "Closed"}));
        QCOMPARE(workplace.column(6), QStringList({"Invoice", "Invoice", "Invoice"}));
        QCOMPARE(workplace.message(), QString("3 documents"));
        QVERIFY(!workplace.action("action_Exportieren")->isEnabled());
        workplace.table()->selectRow(0);
        QVERIFY(workplace.action("action_Exportieren")->isEnabled());
    }

    void loginsThatFail_data()
    {
        QTest::addColumn<QString>("failure"); // of the service; null: none
        QTest::addColumn<int>("profile");
        QTest::addColumn<QString>("archive");
        QTest::addColumn<QString>("box");
        const QString archive = QString("Main archive") + recordformat::fieldSeparator + "1";
        const QString unknown = QString("Gone") + recordformat::fieldSeparator + "3";
        const QString none;
        kelvatest::row("wrong password", "Wrong user name.", 7, archive,
                       "Error: The connection to the server could not be established: Wrong user name.");
        kelvatest::row(
            "a password that the profile has wrong", "Wrong username or password!", 7, archive,
            "Error: The connection to the server could not be established: Wrong username or password!");
        kelvatest::row("another version", "WRONGVERSION", 7, archive,
                       "Error: Version mismatch. Your client and server components has different versions.");
        kelvatest::row("nearly another version", "WRONGVERSION 2", 7, archive,
                       "Error: The connection to the server could not be established: WRONGVERSION 2");
        kelvatest::row(
            "a profile without a block", none, 8, archive,
            "Error: The connection to the Connection Manager could not be established, please restart "
            "Kelva!");
        kelvatest::row(
            "the archive is gone", none, 7, unknown,
            "Information: The configured archive was not found. Check the settings in the Connection "
            "Manager !");
        kelvatest::row("an archive without a key", none, 7, "no separator",
                       "Information: The archive information can not be read. Check the settings in the "
                       "Connection Manager!");
    }

    void loginsThatFail()
    {
        QFETCH(QString, failure);
        QFETCH(int, profile);
        QFETCH(QString, archive);
        QFETCH(QString, box);
        if (!failure.isNull())
            FakeArchive::instance().failNext("connectClient", failure);
        Workplace workplace;
        workplace.manager.listAnswer =
            FakeManager::profileList({FakeManager::profileRecord(profile, "Office", archive)});
        DialogScript script;
        script.expectBox(box.section(": ", 0, 0), box.section(": ", 1));
        QVERIFY(!workplace.start());
        QVERIFY(!workplace.window->isVisible());
        // A service of another version is not spoken to again.
        QCOMPARE(FakeArchive::instance().calls.contains("disconnectClient"),
                 !failure.isNull() && failure != "WRONGVERSION");
        workplace.end();
        QVERIFY(!Workplace::settings().contains("DockSettings")); // a failed login writes no layout
    }

    void anExpiredPasswordIsChanged()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.failNext("connectClient", "Password expired yesterday");
        {
            Workplace workplace;
            DialogScript script;
            script.expectDialog("Change password", true, [](QWidget *dialog) {
                dialog->findChild<QLineEdit *>("m_oldPass")->setText("secret");
                dialog->findChild<QLineEdit *>("m_newPass1")->setText("new");
                dialog->findChild<QLineEdit *>("m_newPass2")->setText("new");
            });
            script.expectBox("Password changed", "Password changed successfully!");
            QVERIFY(workplace.start());
            QCOMPARE(archive.password, QString("new"));
            QCOMPARE(workplace.manager.requests.filter("PASSWORD").size(), 1); // the profile takes it, too
        }
        // Left alone, the login ends without a further word.
        archive.reset();
        archive.failNext("connectClient", "Password expired");
        Workplace workplace;
        DialogScript script;
        script.expectDialog("Change password", false);
        QVERIFY(!workplace.start());
    }

    void offlineNeedsNoProfile()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.connectionMode = "Offline mode";
        archive.login.clear();
        archive.password.clear();
        archive.addDocument("Invoice");
        const WorkbenchFixture block("kelva___00", WorkbenchFixture::block(WorkbenchFixture::vocabulary()));
        QVERIFY(block.isReady());
        Workplace workplace;
        QVERIFY(workplace.start());
        QCOMPARE(workplace.manager.requests, QStringList());
        QCOMPARE(workplace.column(0), QStringList("101"));
        QVERIFY(!workplace.window->findChild<QDockWidget *>("m_dockSearch")->isVisible());
        QVERIFY(!workplace.action("action_History")->isVisible());
        workplace.end();

        archive.subArchives.clear();
        Workplace empty;
        DialogScript script;
        script.expectBox("Information", "The archive information could not be read. Archive corrupt?");
        QVERIFY(!empty.start());
    }

    void rightsHideActions()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Invoice");
        archive.rights = QStringList{"kelvaadmin"}; // rights are case-sensitive
        Workplace workplace;
        QVERIFY(workplace.start());
        workplace.table()->selectRow(0);
        for (const char *name : {"action_Einstellungen", "action_Benutzer", "action_Plugins",
                                 "action_Archivieren", "action_Zurueckstellen", "action_MoveToArchive",
                                 "action_History", "action_Print", "action_Loeschen"})
            QVERIFY2(!workplace.action(name)->isVisible() && !workplace.action(name)->isEnabled(), name);
        QVERIFY(workplace.action("action_Anzeigen")->isEnabled());
        QVERIFY(!workplace.window->findChild<QToolBar *>("Einstellungen"));
        QCOMPARE(workplace.table()->item(0, 2)->data(268).toInt(), 1);
    }

    void theSelectionSurvivesARefresh()
    {
        FakeArchive &archive = FakeArchive::instance();
        for (int i = 0; i < 30; ++i)
            archive.addDocument(QString("Document %1").arg(i, 2, 10, QChar('0')));
        Workplace workplace;
        QVERIFY(workplace.start());
        KelvaInfoView *table = workplace.table();
        table->sortByColumn(2, Qt::DescendingOrder);
        table->selectRow(3);
        const QStringList selected = table->getCurrentDocIds(false, false);
        QCOMPARE(selected, QStringList("27"));
        archive.documents.remove(30);
        workplace.action("action_Neuladen")->trigger();
        QCOMPARE(table->getCurrentDocIds(false, false), selected);
        QCOMPARE(table->selectionModel()->selectedRows().first().row(), 2);
        QVERIFY(workplace.action("action_Anzeigen")->isEnabled());
        archive.documents.remove(27);
        workplace.action("action_Neuladen")->trigger();
        QCOMPARE(table->getCurrentDocIds(false, false), QStringList());
        QVERIFY(!workplace.action("action_Anzeigen")->isEnabled());
    }

    void theListIsExactlyAsLongAsTheLimit()
    {
        for (int i = 0; i < 3; ++i)
            FakeArchive::instance().addDocument("Invoice");
        Workplace workplace;
        QVERIFY(workplace.start());
        workplace.window->findChild<QSpinBox *>("m_maxSearchBox")->setValue(3);
        QCOMPARE(workplace.message(),
                 QString("More than 3 documents found. Limit your search using filters!"));
        workplace.window->findChild<QSpinBox *>("m_maxSearchBox")->setValue(4);
        QCOMPARE(workplace.message(), QString("3 documents"));
        // A query that fails clears the table.
        FakeArchive::instance().failNext("getDocuments", "no");
        workplace.action("action_Neuladen")->trigger();
        QCOMPARE(workplace.message(), QString("0 documents"));
    }

    void quickMovesThroughFoldersRefreshOnce()
    {
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        QTest::qWait(0);
        archive.queries.clear();
        auto *tree = workplace.window->findChild<QTreeView *>("m_tWOrdner");
        tree->expandAll();
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(tree, Qt::Key_Down);
        QTRY_COMPARE(archive.queries.size(), 1);
        QCOMPARE(archive.queries.first().first(), QString("(folder = '1.1.1' OR folder like '1.1.1.%')"));
        auto *status = workplace.window->findChild<QListWidget *>("m_twStatus");
        status->setCurrentRow(1);
        QCOMPARE(archive.queries.last(),
                 QStringList({"(folder = '1.1.1' OR folder like '1.1.1.%')", "(status = 1)", "1=1",
                              "OPT:DEFDATE;2", "OPT:LIMIT;100"}));
        workplace.action("actionReset_Filters")->trigger();
        QCOMPARE(archive.queries.last(), QStringList({"1=1", "OPT:LIMIT;100"}));
    }

    void aRefreshDuringARefreshRunsAfterwards()
    {
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        archive.queries.clear();
        archive.meanwhile("getDocuments", [&] { workplace.action("action_Neuladen")->trigger(); });
        workplace.action("action_Neuladen")->trigger();
        QCOMPARE(archive.queries.size(), 1);
        QTRY_COMPARE(archive.queries.size(), 2);
    }

    void unreadDocumentsAreBold()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("opened");
        archive.addDocument("new");
        archive.openedDocuments = QStringList("101");
        Workplace workplace;
        QVERIFY(workplace.start());
        const auto bold = [&workplace](int row) { return workplace.table()->item(row, 2)->font().bold(); };
        QVERIFY(!bold(0) && !bold(1));
        workplace.window->findChild<QCheckBox *>("m_showUnread")->click();
        QVERIFY(!bold(0));
        QVERIFY(bold(1));
        // Without the list of opened documents nothing is marked.
        archive.failNext("getDocumentActions", "no");
        workplace.action("action_Neuladen")->trigger();
        QVERIFY(!bold(0) && !bold(1));
    }

    void aReloadKeepsOneConnection()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Invoice", "1.1.1");
        Workplace workplace;
        QVERIFY(workplace.start());
        const QAction *reload = workplace.action("action_ReloadAll");
        const auto timers = [&workplace] {
            return workplace.window->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly).size();
        };
        workplace.window->handleServerRequest("something else");
        QCOMPARE(timers(), 0);
        workplace.window->handleServerRequest("DORELOADALL");
        workplace.window->handleServerRequest("DORELOADALL");
        QCOMPARE(timers(), 1);
        QTRY_COMPARE(reload->data().toInt(), 1); // it blinks until it is used
        archive.queries.clear();
        workplace.action("action_ReloadAll")->trigger();
        QVERIFY(workplace.manager.requests.contains("RELOADPROFILE#7"));
        QCOMPARE(archive.queries.size(), 1);
        QCOMPARE(workplace.column(5), QStringList("Müller & Söhne"));
        QCOMPARE(timers(), 0);
        // Status list and folder panel are connected once each, not twice.
        archive.queries.clear();
        workplace.window->findChild<QListWidget *>("m_twStatus")->setCurrentRow(2);
        QCOMPARE(archive.queries.size(), 1);
    }

    void theLayoutReturns()
    {
        {
            Workplace workplace;
            QVERIFY(workplace.start());
            QVERIFY(workplace.window->findChild<QDockWidget *>("m_dockStatus")->isVisible());
            workplace.window->findChild<QDockWidget *>("m_dockStatus")->close();
            workplace.window->findChild<QSpinBox *>("m_maxSearchBox")->setValue(77);
            workplace.window->resize(1100, 720);
            FakeArchive::instance().calls.clear();
        }
        QCOMPARE(FakeArchive::instance().calls, QStringList({"disconnectClient", "disconnectFromArchive"}));
        Workplace workplace;
        QVERIFY(workplace.start());
        QVERIFY(!workplace.window->findChild<QDockWidget *>("m_dockStatus")->isVisible());
        QCOMPARE(FakeArchive::instance().queries.last().last(), QString("OPT:LIMIT;77"));
        QCOMPARE(workplace.window->size(), QSize(1100, 720));
    }

    void floatingPanelsReturn()
    {
        {
            Workplace workplace;
            QVERIFY(workplace.start());
            workplace.dock("m_dockStatus")->setFloating(true);
            workplace.dock("m_dockDocuments")->setFloating(true);
            workplace.window->close();
        }
        QCOMPARE(Workplace::settings().value("DockFolderWidth").toInt(), 0); // its own width says nothing
        Workplace workplace;
        QVERIFY(workplace.start());
        for (const char *name : {"m_dockStatus", "m_dockDocuments"})
            QVERIFY2(workplace.dock(name)->isVisible() && workplace.dock(name)->isFloating(), name);
    }

    void aWorkbenchIsSavedLoadedAndReset()
    {
        const QTemporaryDir directory;
        Workplace workplace;
        QVERIFY(workplace.start());
        const auto useFile = [&](DialogScript &script, const QString &title, const QString &name) {
            script.expectDialog(title, true, [name](QWidget *dialog) {
                dialog->findChild<QLineEdit *>("fileNameEdit")->setText(name);
            });
        };
        const QString file = directory.filePath("mine.kwb");
        {
            DialogScript script;
            useFile(script, "Save workbench settings", directory.filePath("mine"));
            workplace.action("action_save_workbench")->trigger();
            QVERIFY(QFileInfo(file).size() > 0);
        }
        workplace.dock("m_dockStatus")->close();
        workplace.dock("m_dockDocuments")->hide();
        {
            DialogScript script;
            useFile(script, "Load workbench settings", file);
            workplace.action("action_load_workbench")->trigger();
        }
        QVERIFY(workplace.dock("m_dockStatus")->isVisible());
        QVERIFY(workplace.dock("m_dockDocuments")->isVisible());
        // What is no layout changes nothing.
        outside::write(file, "no layout");
        workplace.dock("m_dockStatus")->close();
        {
            DialogScript script;
            useFile(script, "Load workbench settings", file);
            workplace.action("action_load_workbench")->trigger();
        }
        QVERIFY(!workplace.dock("m_dockStatus")->isVisible());
        DialogScript script;
        script.expectBox("Reset workbench", "initial state", QMessageBox::Yes);
        workplace.action("action_Reset")->trigger();
        QVERIFY(workplace.dock("m_dockStatus")->isVisible());
        const int width = workplace.dock("m_dockFolder")->width();
        QTRY_VERIFY(width > 60 && width < workplace.window->width() / 2);
    }

    void f6GoesFromPanelToPanel()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        QVERIFY(QTest::qWaitForWindowActive(workplace.window.get()));
        workplace.table()->setFocus();
        workplace.dock("m_dockStatus")->close();
        const auto panel = [] {
            const QWidget *widget = QApplication::focusWidget();
            while (widget && !widget->objectName().startsWith("m_"))
                widget = widget->parentWidget(); // an editor within it
            return widget ? widget->objectName() : QString();
        };
        QTest::keyClick(workplace.table(), Qt::Key_F6, Qt::ShiftModifier);
        QCOMPARE(panel(), QString("m_SearchString"));
        workplace.table()->setFocus();
        QStringList panels;
        for (int i = 0; i < 4; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
            panels << panel();
        }
        QCOMPARE(panels, QStringList({"m_tWOrdner", "m_treeSearch", "m_SearchString", "m_infoView"}));
    }

    void damagedSettingsDoNotMatter()
    {
        {
            QSettings file(Workplace::organization, Workplace::application);
            file.setValue("DockSettings", QByteArray(500, '\xff'));
            file.setValue("DockFolderWidth", 100000);
            file.setValue("DockGeometry", QByteArray("geometry"));
            file.setValue("ToolBarState", QByteArray(100, '\x7f'));
            file.setValue("DOCCLASSIFYMAXCOUNT", "many");
            file.setValue("proxyPort", "-7");
        }
        Workplace workplace;
        QVERIFY(workplace.start());
        QVERIFY(workplace.window->findChild<QDockWidget *>("m_dockDocuments")->isVisible());
        QCOMPARE(workplace.window->findChild<QToolBar *>("m_toolBar")->actions().size(), 16);
    }

    void fullTextNeedsThreeCharacters()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Invoice");
        archive.addDocument("Letter");
        Workplace workplace;
        QVERIFY(workplace.start());
        auto *cell = workplace.window->findChild<QTableWidget *>("m_SearchString")->item(0, 0);
        archive.queries.clear();
        DialogScript script;
        script.expectBox("full text search", "A minimum of 3 characters is needed for the full text search!");
        cell->setText("in");
        Workplace::settle();
        QVERIFY(archive.queries.isEmpty());
        cell->setText("inv");
        Workplace::settle();
        QCOMPARE(archive.queries.last().first(), QString("OPT:SELECTION;101"));
        QVERIFY(workplace.window->findChild<QPushButton *>("m_bClearSuchen")->isEnabled());
        cell->setText("nothing like it");
        Workplace::settle();
        QCOMPARE(archive.queries.last().first(), QString("OPT:SELECTION;-1"));
        workplace.window->findChild<QPushButton *>("m_bClearSuchen")->click();
        QCOMPARE(archive.queries.last(), QStringList({"1=1", "OPT:LIMIT;100"}));
    }

    void aNewSearchColumnDropsTheOldSearch()
    {
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Invoice");
        Workplace workplace;
        QVERIFY(workplace.start());
        auto *table = workplace.window->findChild<QTableWidget *>("m_SearchString");
        auto *combo = workplace.window->findChild<QComboBox *>("m_SearchCombo");
        const auto choose = [combo](const QString &field) {
            combo->setCurrentIndex(combo->findData(field));
            emit combo->activated(combo->currentIndex());
        };
        table->item(0, 0)->setText("invoice");
        Workplace::settle();
        QCOMPARE(archive.queries.last().first(), QString("OPT:SELECTION;101"));
        choose("bemerkung"); // from line to line the text stays
        QCOMPARE(archive.queries.last().first(), QString("to_tsvector(bemerkung) @@ to_tsquery('invoice')"));
        choose("status"); // a list begins with its first entry, and the active search goes on with it
        QCOMPARE(table->item(0, 0)->text(), QString("open"));
        QCOMPARE(archive.queries.last(), QStringList({"status = 1", "OPT:LIMIT;100"}));
        workplace.window->findChild<QPushButton *>("m_bClearSuchen")->click();
        choose("docart"); // without an active search nothing is searched for yet
        QCOMPARE(table->item(0, 0)->text(), QString("Invoice"));
        QCOMPARE(archive.queries.last(), QStringList({"1=1", "OPT:LIMIT;100"}));
    }

    void everySearchColumnCanBeChosen()
    {
        FakeArchive::instance().addDocument("Invoice");
        Workplace workplace;
        QVERIFY(workplace.start());
        auto *cell = workplace.window->findChild<QTableWidget *>("m_SearchString");
        auto *combo = workplace.window->findChild<QComboBox *>("m_SearchCombo");
        for (int round = 0; round < 2; ++round)
            for (int i = 0; i < combo->count(); ++i) {
                if (combo->itemData(i) == "ExtendedSearch")
                    continue; // has a dialog instead of a cell
                combo->setCurrentIndex(i);
                emit combo->activated(i);
                QVERIFY(!cell->grab().isNull()); // painted with the column's delegate, or without one
                cell->item(0, 0)->setText("100");
                Workplace::settle();
                QVERIFY(!cell->grab().isNull());
            }
    }

    void aLostConnectionEndsTheLogin()
    {
        Workplace workplace;
        FakeArchive::instance().meanwhile("getStatusList", [&] { workplace.window->clientDisconnected(); });
        DialogScript script;
        script.expectBox("Error", "Cannot establish a connection to Kelva!");
        QVERIFY(!workplace.start());
        QVERIFY(!workplace.window->isVisible());
    }

    void aLostConnectionEndsTheProgram_data()
    {
        QTest::addColumn<QString>("during");
        kelvatest::row("in a reload", "getStatusList");
        kelvatest::row("in a transfer", "downloadDocument");
    }

    void aLostConnectionEndsTheProgram()
    {
        QFETCH(QString, during);
        FakeArchive &archive = FakeArchive::instance();
        archive.addDocument("Invoice");
        archive.contents.insert(101, {"invoice.txt", QByteArray(5000, 'x')});
        archive.pieceSize = 1000;
        Workplace workplace;
        QVERIFY(workplace.start());
        const int queries = archive.queries.size();
        DialogScript script;
        script.expectBox("Error", "Cannot establish a connection to Kelva!");
        bool cancelled = true;
        const auto lose = [&] {
            workplace.window->selChanged(); // as the folder timer does
            workplace.window->clientDisconnected();
        };
        if (during == "downloadDocument")
            archive.duringTransfer = [&, reports = 0]() mutable {
                if (++reports == 1)
                    lose();
                cancelled = reports < 5;
            };
        else
            archive.meanwhile(during, lose);
        QTimer::singleShot(0, qApp, [&] {
            workplace.table()->selectRow(0);
            workplace.action(during == "downloadDocument" ? "action_Anzeigen" : "action_ReloadAll")
                ->trigger();
        });
        QTimer::singleShot(20000, qApp, [] { QCoreApplication::exit(1); });
        QCOMPARE(QCoreApplication::exec(), 0); // comes back: nothing keeps the process
        QVERIFY(cancelled);
        QVERIFY(!workplace.window->isVisible());
        QCOMPARE(archive.queries.size(), queries);
        // Of the login alone: a reload does not go on to the filters and the dates with a dead session.
        QCOMPARE(archive.calls.filter("getSearches").size(), 1);
    }

    void aReloadCannotBeStartedTwice()
    {
        FakeArchive &archive = FakeArchive::instance();
        Workplace workplace;
        QVERIFY(workplace.start());
        archive.queries.clear();
        archive.meanwhile("getStatusList", [&] {
            workplace.action("action_ReloadAll")->trigger();
            workplace.action("action_Neuladen")->trigger();
        });
        workplace.action("action_ReloadAll")->trigger();
        QCOMPARE(workplace.manager.requests.filter("RELOADPROFILE").size(), 1);
        QCOMPARE(archive.queries.size(), 1);
        QTRY_COMPARE(archive.queries.size(), 2); // the refresh that came in between
    }
};

KELVA_TEST(TestKelvaClientMain)
#include "testkelvaclientmain.moc"
