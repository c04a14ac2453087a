#include "support/dialogscript.h"
#include "support/kelvatest.h"
#include "support/onecelltable.h"
#include "support/workbenchfixture.h"

#include "contract/recordformat.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvafolderview.h"
#include "folders/kelvafolderviewdlg.h"
#include "folders/kelvaviewdelegate.h"

#include <QAbstractProxyModel>
#include <QLineEdit>

namespace {

/// The picker's tree of the folder column, with a locked folder.
std::unique_ptr<KelvaDocTree> makeTree()
{
    auto tree = std::make_unique<KelvaDocTree>("Folders", true, "not assigned", "0", nullptr);
    const QStringList locked{"1.4", "Locked", "0", "", "1", "0", "L", "", ""};
    tree->loadFromStringList(WorkbenchFixture::vocabulary().folders +
                                 QStringList(locked.join(recordformat::fieldSeparator)),
                             {}, false);
    return tree;
}

KelvaFolderView *treeOf(QWidget *dialog)
{
    return qobject_cast<KelvaFolderViewDlg *>(dialog)->getView();
}

void doubleClick(KelvaFolderView *view, const QString &oid)
{
    const auto *proxy = qobject_cast<QAbstractProxyModel *>(view->QTreeView::model());
    const QModelIndex folder =
        proxy->mapFromSource(view->model()->indexFromItem(view->model()->findItem(oid)));
    view->scrollTo(folder);
    const QRect place = view->visualRect(folder);
    QVERIFY(!place.isEmpty());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place.center());
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, place.center());
}

using Act = std::function<void(QWidget *)>;

} // namespace

Q_DECLARE_METATYPE(Act)

class TestKelvaViewDelegate : public QObject
{
    Q_OBJECT

private slots:
    void choosing_data()
    {
        kelvatest::columns<QString, Act, QString>("raw", "act", "outcome");
        kelvatest::row("return chooses the current folder", "1.1", Act([](QWidget *dialog) {
                           QTest::keyClick(treeOf(dialog), Qt::Key_Down);
                           QTest::keyClick(treeOf(dialog), Qt::Key_Return);
                       }),
                       "Suppliers|1.2|1");
        kelvatest::row("return on the same folder changes nothing", "1.1",
                       Act([](QWidget *dialog) { QTest::keyClick(treeOf(dialog), Qt::Key_Return); }),
                       "Customers|1.1|0");
        kelvatest::row("a double click chooses", "1.1",
                       Act([](QWidget *dialog) { doubleClick(treeOf(dialog), "1.2"); }), "Suppliers|1.2|1");
        kelvatest::row("a document leaves its folder for none", "1.1",
                       Act([](QWidget *dialog) { doubleClick(treeOf(dialog), "0"); }), "not assigned|0|1");
        kelvatest::row("a locked folder cannot be chosen", "1.1",
                       Act([](QWidget *dialog) { doubleClick(treeOf(dialog), "1.4"); }), "Customers|1.1|0");
        kelvatest::row("escape gives up", "1.1", Act([](QWidget *dialog) {
                           QTest::keyClick(treeOf(dialog), Qt::Key_Down);
                           QTest::keyClick(treeOf(dialog), Qt::Key_Escape);
                       }),
                       "Customers|1.1|0");
        kelvatest::row("an unknown folder stays when nothing is chosen", "9.9",
                       Act([](QWidget *dialog) { QVERIFY(!treeOf(dialog)->currentItem()); }),
                       "Customers|9.9|0");
    }

    void choosing()
    {
        QFETCH(Act, act);
        QFETCH(QString, raw);
        DialogScript script;
        const auto tree = makeTree();
        OneCellTable table(new KelvaViewDelegate(tree.get(), nullptr));
        table.setCell("Customers", raw);
        script.expectDialog("Select folder", false, act);
        QVERIFY(table.edit());
        QTRY_VERIFY(!table.isEditing());
        QTEST(table.outcome(), "outcome");
    }

    void aKeptSearchLeadsToItsFirstHit()
    {
        DialogScript script;
        const auto tree = makeTree();
        auto *delegate = new KelvaViewDelegate(tree.get(), nullptr);
        delegate->setSearchText("suppl");
        OneCellTable table(delegate);
        table.setCell("Customers", "1.1");
        script.expectDialog("Select folder", false, [](QWidget *dialog) {
            QTest::keyClick(dialog->findChild<QLineEdit *>("m_searchText"), Qt::Key_Return);
        });
        QVERIFY(table.edit());
        QTRY_VERIFY(!table.isEditing());
        QCOMPARE(table.outcome(), QString("Suppliers|1.2|1"));
    }

    void aTreeThatVanishesEndsTheChoice()
    {
        DialogScript script;
        auto tree = makeTree();
        OneCellTable table(new KelvaViewDelegate(tree.get(), nullptr));
        table.setCell("Customers", "1.1");
        script.expectDialog("Select folder", true, [&tree](QWidget *dialog) {
            tree.reset();
            QTest::keyClick(treeOf(dialog), Qt::Key_Return);
        });
        QVERIFY(table.edit());
        QTRY_VERIFY(!table.isEditing());
        QCOMPARE(table.outcome(), QString("Customers|1.1|0"));
        QVERIFY(!table.edit());
    }
};

KELVA_TEST(TestKelvaViewDelegate)
#include "testkelvaviewdelegate.moc"
