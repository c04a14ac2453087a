#include "support/kelvatest.h"

#include "contract/recordformat.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvafolderview.h"

#include <QAbstractItemModelTester>
#include <QAbstractProxyModel>
#include <QSettings>

namespace {

QString record(const QStringList &fields)
{
    return fields.join(recordformat::fieldSeparator);
}

/// The tree as indented names, one per line.
QString outline(const KelvaDocTree &tree, const QModelIndex &parent = {}, int depth = 0)
{
    QString text;
    for (int row = 0; row < tree.rowCount(parent); ++row) {
        const QModelIndex index = tree.index(row, 0, parent);
        text += QString(depth, '-') + index.data().toString() + '\n' + outline(tree, index, depth + 1);
    }
    return text;
}

QStringList oids(const QList<KelvaDocItem *> &items)
{
    QStringList list;
    for (const KelvaDocItem *item : items)
        list << item->getOid();
    return list;
}

} // namespace

class TestKelvaDocTree : public QObject
{
    Q_OBJECT

private slots:
    void recordsBecomeATree()
    {
        KelvaDocTree tree("Folders", true, QString(), QString(), nullptr);
        const QAbstractItemModelTester tester(&tree);
        tree.loadFromStringList({record({"1", "Company", "0", "C", "-1", "0", "", "", "all of it"}),
                                 record({"1.2", "Locked", "0", "", "1", "0", "L", "", ""}),
                                 record({"5.2", "Orphan", "0", "", "5", "0", "", "E", ""}),
                                 record({"5", "Late", "I"}), record({"6", "Short"}),
                                 record({"7", "<b>Eight</b>", "I", "k", "", "", "L", "E"}),
                                 // None of these may pass for another folder, or end up in a clause.
                                 record({"", "x"}), record({"-1", "x"}), record({".1", "x"}),
                                 record({"1..2", "x"}), record({"1.", "x"}), record({"1.x", "x"}),
                                 record({"1' OR '1'='1", "x"}), record({"<b>1</b>", "x"}), QString()},
                                {}, false);
        // A child that comes before its parent stays below the top node.
        QCOMPARE(outline(tree),
                 QString("All folders\n-Company\n--Locked\n-Orphan\n-Late\n-Short\n-<b>Eight</b>\n"));
        QCOMPARE(tree.findItem("1.2")->getFlags(), Qt::ItemFlags(Qt::NoItemFlags));
        QCOMPARE(oids(tree.getHiddenRows()), QStringList({"5", "7"}));
        QCOMPARE(oids(tree.getEmptyRows()), QStringList({"5.2", "7"}));
        QCOMPARE(tree.findItem("6")->getFlag(), QString());
        QVERIFY(!tree.findItem("1")->hasChange());
        QCOMPARE(tree.findItem("-1")->getName(), QString("All folders"));
        QCOMPARE(tree.getCompleterStringList().mid(0, 4), QStringList({"all", "of", "it", "all of it"}));
        QVERIFY(!tree.getCompleterStringList().contains("Late"));

        tree.loadFromStringList({record({"9", "New"})}, {}, true);
        QCOMPARE(outline(tree), QString("All folders\n-New\n"));
        QVERIFY(!tree.findItem("1"));
    }

    void nextChildNumberIsAboveTheLargest()
    {
        KelvaDocTree tree("Folders", true, QString(), QString(), nullptr);
        tree.loadFromStringList(
            {record({"3", "a"}), record({"3.1", "b"}), record({"3.9", "c"}), record({"3.x", "d"})}, {},
            false);
        QCOMPARE(tree.findItem("3")->nextChildNum(), QString("3.10"));
        QCOMPARE(tree.findItem("3.1")->nextChildNum(), QString("3.1.1"));
    }

    void expandedFoldersReturn()
    {
        KelvaDocTree tree("Folders", true, QString(), QString(), nullptr);
        tree.loadFromStringList(
            {record({"1", "a"}), record({"1.1", "b"}), record({"2", "c"}), record({"2.1", "d"})}, {}, false);
        const auto expanded = [&tree](const KelvaFolderView &view, const QString &oid) {
            const auto *proxy = qobject_cast<const QAbstractProxyModel *>(view.QTreeView::model());
            return view.isExpanded(proxy->mapFromSource(tree.indexFromItem(tree.findItem(oid))));
        };
        QSettings("Norbant GmbH", QCoreApplication::applicationName() + "_testTree")
            .setValue("TreeExpandedItems", QStringList{"-1", "1"});
        KelvaFolderView view;
        view.setSaveState(true, "testTree");
        view.setModel(&tree);
        QVERIFY(expanded(view, "1"));
        QVERIFY(!expanded(view, "2"));
    }
};

KELVA_TEST(TestKelvaDocTree)
#include "testkelvadoctree.moc"
