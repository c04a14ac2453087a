#include "support/dialogscript.h"
#include "support/kelvatest.h"

#include "contract/recordformat.h"
#include "folders/folderlink.h"
#include "folders/foldersearchtext.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvafolderview.h"
#include "folders/kelvanewfolder.h"
#include "folders/kelvasearchdlg.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QHostInfo>
#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QVBoxLayout>

namespace {

QString record(const QStringList &fields)
{
    return fields.join(recordformat::fieldSeparator);
}

/// The panel in a window, with folders whose order on screen is not that of their oids.
struct Panel
{
    Panel() : tree("Folders", true, QString(), QString(), nullptr)
    {
        tree.loadFromStringList({record({"1", "Zebra", "0", "K1", "", "", "", "", "inv 2013"}),
                                 record({"1.1", "Inventory (old)", "0", "K2", "", "", "", "", "2014"}),
                                 record({"1.2", "Invoices", "I", "K3", "", "", "", "", "2014"}),
                                 record({"2", "Ant", "0", "INV-4", "", "", "", "", "year 2014"})},
                                {}, false);
        auto *layout = new QVBoxLayout(&window);
        view = new KelvaFolderView(&window);
        layout->addWidget(view);
        view->setModel(&tree);
        view->setCurrentIndex(tree.index(0, 0));
        window.show();
        bar = window.findChild<KelvaSearchDlg *>();
        input = bar->findChild<QLineEdit *>();
    }

    KelvaDocTree tree;
    QWidget window;
    KelvaFolderView *view;
    KelvaSearchDlg *bar;
    QLineEdit *input;
};

} // namespace

class TestFolderPanel : public QObject
{
    Q_OBJECT

private slots:
    void everyWordMustOccurSomewhere()
    {
        Panel panel;
        const auto found = [&panel](const QString &text, bool hidden) {
            QStringList oids;
            int position = 0;
            while (const KelvaDocItem *node = panel.tree.searchItem(text, position, hidden))
                oids << node->getOid();
            return oids.join(' ');
        };
        QCOMPARE(found("inv 2014", false), QString("1.1 2"));
        QCOMPARE(found("INV 2014", true), QString("1.1 1.2 2"));
        QCOMPARE(found("all folders", true), QString());
        QCOMPARE(found("", false), QString("1 1.1 2"));
    }

    void aFolderThatMayNotBeChosenIsNoHit()
    {
        Panel panel;
        panel.view->setModel(nullptr);
        panel.tree.loadFromStringList({record({"1", "Bills", "0", "", "", "", "", "", ""}),
                                       record({"2", "Board", "0", "", "", "", "L", "", ""}),
                                       record({"2.1", "Boats", "0", "", "", "", "", "", ""})},
                                      {}, true);
        panel.view->setModel(&panel.tree);
        panel.view->setCurrentIndex(panel.tree.index(0, 0));
        panel.view->doPartialSearch("b");
        QCOMPARE(panel.view->currentOid(), QString("1"));
        panel.view->doPartialSearch("bo");
        QCOMPARE(panel.view->currentOid(), QString("2.1"));
        panel.view->doPartialSearch("board");
        QCOMPARE(panel.input->styleSheet(), QString("* { background-color: red; }"));
    }

    void aBranchIsUnfoldedAndFoldedForTheNextStart()
    {
        Panel panel;
        panel.view->setSaveState(true, "BRANCH");
        panel.view->setModel(&panel.tree);
        const auto stored = [] {
            QStringList oids = QSettings("Norbant GmbH", QCoreApplication::applicationName() + "_BRANCH")
                                   .value("TreeExpandedItems")
                                   .toStringList();
            oids.sort();
            return oids.join(' ');
        };
        panel.view->setCurrentIndex(panel.tree.indexFromItem(panel.tree.findItem("1")));
        panel.view->expandItems();
        QCOMPARE(stored(), QString("-1 1 1.1 1.2"));
        QVERIFY(panel.view->isExpanded(panel.view->QTreeView::currentIndex()));
        panel.view->collapseItems();
        QCOMPARE(stored(), QString("-1"));
        QVERIFY(!panel.view->isExpanded(panel.view->QTreeView::currentIndex()));
    }

    void typingSearchesAndGoesRound()
    {
        Panel panel;
        QSignalSpy moves(panel.view, SIGNAL(curSelChanged()));
        QTest::keyClick(panel.view, 'a');
        QVERIFY(panel.bar->isVisible());
        QCOMPARE(panel.input->text(), QString("a"));
        panel.input->setText("inv");
        QCOMPARE(panel.view->currentOid(), QString("1"));
        panel.view->searchAgain();
        QCOMPARE(panel.view->currentOid(), QString("1.1"));
        panel.view->searchAgain();
        QCOMPARE(panel.view->currentOid(), QString("2"));
        panel.view->searchAgain(); // on from the top
        QCOMPARE(panel.view->currentOid(), QString("1"));
        panel.input->setText("nowhere");
        QVERIFY(panel.input->styleSheet().contains("red"));
        QCOMPARE(panel.view->currentOid(), QString("1"));
        QCOMPARE(moves.count(), 0); // the list is refreshed when the user has decided
        QTest::keyClick(panel.input, Qt::Key_Return);
        QVERIFY(!panel.bar->isVisible());
        QCOMPARE(moves.count(), 1);
    }

    void escapeGoesBack()
    {
        Panel panel;
        panel.view->setCurrentIndex(panel.tree.indexFromItem(panel.tree.findItem("2")));
        panel.view->showSearchDlg();
        panel.input->setText("zebra");
        QCOMPARE(panel.view->currentOid(), QString("1"));
        QTest::keyClick(panel.input, Qt::Key_Escape);
        QVERIFY(!panel.bar->isVisible());
        QCOMPARE(panel.view->currentOid(), QString("2"));
    }

    void theBarIsWorkedByKeys_data()
    {
        // outcome: folder from 1.1 on, open or closed, what was told
        kelvatest::columns<int, QString>("key", "outcome");
        kelvatest::row("confirm", int(Qt::Key_Return), "1.1 closed confirm");
        kelvatest::row("confirm on the number pad", int(Qt::Key_Enter), "1.1 closed confirm");
        kelvatest::row("confirm by a page", int(Qt::Key_PageDown), "1.1 closed confirm");
        kelvatest::row("cancel", int(Qt::Key_Escape), "-1 closed cancel");
        kelvatest::row("next, past an inactive folder", int(Qt::Key_F3), "2 open next");
        kelvatest::row("down", int(Qt::Key_Down), "1.2 open ");
        kelvatest::row("up", int(Qt::Key_Up), "1 open ");
        kelvatest::row("to the cancel button and press it", int(Qt::Key_Tab), "-1 closed cancel");
    }

    void theBarIsWorkedByKeys()
    {
        QFETCH(int, key);
        Panel panel;
        panel.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&panel.window));
        panel.view->showSearchDlg("inv");
        panel.view->expandAll();
        panel.view->setCurrentIndex(panel.tree.indexFromItem(panel.tree.findItem("1.1")));
        QTRY_VERIFY(panel.input->hasFocus());
        QStringList told;
        connect(panel.bar, &KelvaSearchDlg::updateFolder, this, [&] { told << "confirm"; });
        connect(panel.bar, &KelvaSearchDlg::resetFolder, this, [&] { told << "cancel"; });
        connect(panel.bar, &KelvaSearchDlg::nextSearch, this, [&] { told << "next"; });
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key));
        if (key == Qt::Key_Tab)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        const bool open = panel.bar->isVisible();
        QTEST(panel.view->currentOid() + (open ? " open " : " closed ") + told.join(','), "outcome");
        QCOMPARE(QApplication::focusWidget(),
                 open ? static_cast<QWidget *>(panel.input) : static_cast<QWidget *>(panel.view));
    }

    void foldersComeAndGo()
    {
        Panel panel;
        const QAbstractItemModelTester tester(&panel.tree);
        KelvaDocItem *zebra = panel.tree.findItem("1");
        QCOMPARE(panel.tree.newItem(zebra), QString("1.3"));
        QCOMPARE(panel.tree.findItem("1.3")->getName(), QString("New folder"));
        DialogScript script;
        script.expectBox("Delete", "The folder could not be deleted. The folder contains sub folders!");
        QVERIFY(panel.tree.removeItem(zebra, true).isEmpty());
        script.expectBox("Delete", "The root-folder cannot be deleted!");
        QVERIFY(panel.tree.removeItem(panel.tree.getRootItem(), false).isEmpty());
        QCOMPARE(script.problems(), QString());
        const QList<KelvaDocItem *> removed = panel.tree.removeItem(zebra, false);
        QCOMPARE(removed.size(), 4);
        QCOMPARE(removed.last()->getName(), QString("Zebra")); // still readable
        QVERIFY(!panel.tree.findItem("1.1"));
        QStringList rows;
        QList<QByteArray> pictures;
        panel.tree.getModelData(rows, pictures);
        QCOMPARE(rows, QStringList(record({"2", "Ant", "0", "INV-4", "-1", "0"})));
        QCOMPARE(pictures.size(), 1);
    }

    void foundText()
    {
        const std::tuple<QString, QString, QString, int> table[] = {
            {"A <b> (c)", "a b", "<a name=\"myanchor0\"><b>A</b> &lt;<a name=\"myanchor1\"><b>b</b>&gt; (c)",
             2},
            {"A <b> (c)", "(c", "A &lt;b&gt; <a name=\"myanchor0\"><b>(c</b>)", 1},
            {"A <b> (c)", "  ", "A &lt;b&gt; (c)", 0},
            {"A <b> & 'c'", "lt amp quot", "A &lt;b&gt; &amp; 'c'", 0}, // what escaping adds is no text
            {"A <img src=x>", "<IMG", "A <a name=\"myanchor0\"><b>&lt;img</b> src=x&gt;", 1},
            {"[x] \\E.", ".] \\E", "[x] <a name=\"myanchor0\"><b>\\E</b>.", 1},
        };
        for (const auto &[text, search, html, count] : table) {
            int matches = 0;
            QCOMPARE(foundFolderText(text, search, &matches), html);
            QCOMPARE(matches, count);
        }
    }

    void links()
    {
        Panel panel;
        panel.view->setConnectionData("LocalHost", "1", "2");
        panel.view->setCurrentIndex(panel.tree.indexFromItem(panel.tree.findItem("1.1")));
        panel.view->doSendFolderLinkClipboard();
        QCOMPARE(QApplication::clipboard()->text(), "kelva-link://" + QHostInfo::localHostName() +
                                                        ":1/openDoc?openmode=3&folderid=1.1&archive=2");
        QCOMPARE(
            folderLinkText({true, "srv", "80", "2", "1.1"}),
            QString("http://localhost:17003/openDoc?openmode=3&folderid=1.1&archive=2&host=srv&port=80"));
        QCOMPARE(folderKeywords("one\r\ntwo   three"), QString("one two  three"));
    }
};

KELVA_TEST(TestFolderPanel)
#include "testfolderpanel.moc"
