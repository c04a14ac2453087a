#include "support/dialogscript.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include "contract/recordformat.h"
#include "documents/documentcolumns.h"
#include "documents/kelvainfoview.h"
#include "documents/kelvalinedelegate.h"
#include "documents/qinfoviewmodel.h"
#include "widgets/itemroles.h"

#include <QDir>
#include <QHeaderView>
#include <QMenu>
#include <QSettings>
#include <QStandardItem>
#include <QTemporaryDir>

namespace {

QString header(int attributes)
{
    QStringList list{"Id",   "Main",       "Description", "Status",  "Version",     "Folder",
                     "Type", "Changed by", "Date",        "Changed", "Resubmission"};
    for (int i = 0; i < attributes; ++i)
        list << QString("Attribute %1").arg(i);
    return (list << "Rights").join(recordformat::fieldSeparator);
}

QString row(int id, const QString &description, const QStringList &attributes, const QString &status = "1")
{
    return (QStringList{QString("%1#%2").arg(100 + id).arg(id), "1.1", description, status, "1_1", "1.1.1",
                        "5", "anna", "2024-03-05", "2024-03-06T10:20:30", "2024-04-01"}
            << attributes << "W")
        .join(recordformat::fieldSeparator);
}

void load(KelvaInfoView &view, const QStringList &docs)
{
    view.loadDocuments(docs, {}, false, {}, nullptr);
}

QStringList shown(const KelvaInfoView &view, int column)
{
    QStringList texts;
    for (int i = 0; i < view.model()->rowCount(); ++i)
        texts << view.model()->index(i, column).data().toString();
    return texts;
}

} // namespace

class TestKelvaInfoView : public QObject
{
    Q_OBJECT

private slots:
    void aLoadFillsTheTable()
    {
        KelvaInfoView view;
        view.setNoEdit(false);
        KelvaLineDelegate numeric({"type:Numeric"}, &view, 254, true);
        view.setItemDelegateForColumn(11, &numeric);
        load(view, {header(2), row(7, "Invoice", {"1234.50", "x"})});
        QCOMPARE(view.getModel()->columnCount(), 13);
        const QStandardItem *id = view.itemFromSource(0, documentcolumn::id);
        QCOMPARE(id->text(), QString("107"));
        QCOMPARE(id->data(itemrole::classificationId).toString(), QString("7"));
        QCOMPARE(view.itemFromSource(0, documentcolumn::folder)->data(itemrole::rawValue).toString(),
                 QString("1.1.1"));
        QCOMPARE(view.itemFromSource(0, documentcolumn::type)->data(itemrole::rawValue).toString() + ' ' +
                     view.itemFromSource(0, documentcolumn::date)->data(itemrole::rawValue).toString(),
                 QString("5 2024-03-05"));
        QCOMPARE(view.itemFromSource(0, 11)->text(), QString("1234.50"));
        QCOMPARE(view.itemFromSource(0, 11)->data(itemrole::numeric).toBool(), true);
        QVERIFY(view.itemFromSource(0, 12)->isEditable());

        QCOMPARE(view.itemFromSource(0, 2)->toolTip(), QString());
        QCOMPARE(view.itemFromSource(0, 2)->background().style(), Qt::NoBrush);

        load(view, {header(2), row(8, "Due", {"", ""}, "2"), row(9, "Locked", {"", ""}).chopped(1)});
        QCOMPARE(view.itemFromSource(0, 2)->toolTip(), QString("Resubmit on: 2024-04-01"));
        QVERIFY(view.itemFromSource(0, 2)->background().style() != Qt::NoBrush);
        QVERIFY(!view.isReadOnly("8") && view.isReadOnly("9"));

        load(view, {header(2)});
        QCOMPARE(view.rowCount(), 0);
        QCOMPARE(view.getModel()->columnCount(), 13);
        load(view, {});
        QCOMPARE(view.getModel()->columnCount(), 0);
    }

    void filesShowTheirType()
    {
        const QTemporaryDir themes;
        QVERIFY(QDir(themes.path()).mkpath("plain/32"));
        outside::write(themes.filePath("plain/index.theme"),
                       "[Icon Theme]\nName=Plain\nDirectories=32\n[32]\nSize=32\nType=Fixed\n");
        QImage picture(32, 32, QImage::Format_RGB32);
        picture.fill(Qt::magenta);
        QVERIFY(picture.save(themes.filePath("plain/32/application-pdf.png")));
        QIcon::setThemeSearchPaths({themes.path()});
        QIcon::setThemeName("plain");
        KelvaInfoView view;
        view.setNoEdit(false);
        const QChar l = recordformat::listSeparator;
        // An entry that is not complete is passed over.
        view.loadDocuments({header(0), row(1, "a", {}), row(2, "b", {})},
                           {QString("101") + l + "scan.PDF" + l + "x", QString("102") + l + "scan.pdf"},
                           false, {}, nullptr);
        const auto colour = [&view](int row) {
            return view.itemFromSource(row, documentcolumn::id)
                ->icon()
                .pixmap(32)
                .toImage()
                .pixelColor(16, 16);
        };
        QCOMPARE(colour(0), QColor(Qt::magenta));
        QVERIFY(colour(1) != QColor(Qt::magenta));
    }

    void resubmissionColumnComesAndGoes()
    {
        KelvaInfoView view;
        load(view, {header(0), row(1, "a", {})});
        QVERIFY(view.isColumnHidden(documentcolumn::resubmission));
        load(view, {header(0), row(1, "a", {}), row(2, "b", {}, "2")});
        QVERIFY(!view.isColumnHidden(documentcolumn::resubmission));
        load(view, {header(0)});
        QVERIFY(view.isColumnHidden(documentcolumn::resubmission));
    }

    void aRowThatDoesNotFitIsCut()
    {
        KelvaInfoView view;
        load(view, {header(1), row(1, "too long", {"a", "b", "c"}), "no fields at all", ""});
        QCOMPARE(view.getModel()->columnCount(), 12);
        QCOMPARE(view.rowCount(), 3);
    }

    void lookUpsByClassification()
    {
        KelvaInfoView view;
        view.setNoEdit(false);
        load(view, {header(0), row(1, "b", {}), row(2, "a", {}), row(1, "c", {})});
        view.sortByColumn(documentcolumn::description, Qt::AscendingOrder);
        QList<int> rows = view.getItemRows("1");
        std::sort(rows.begin(), rows.end());
        QCOMPARE(rows, QList<int>({1, 2})); // proxy rows
        QCOMPARE(view.getVersion("2"), QString("1_1"));
        QVERIFY(!view.isReadOnly("2"));
        QCOMPARE(view.getVersion("99"), QString());
        QVERIFY(view.getItemRows("99").isEmpty());

        view.selectRow(0);
        QCOMPARE(view.getCurrentDocIds(false, false), QStringList("2"));
        QCOMPARE(view.getCurrentRealDocIds(true), QStringList("102"));
        QCOMPARE(view.getCurrentFolder(), QString("1.1.1"));
        QCOMPARE(view.getCurrentBemerkungen(true), (QMap<QString, QString>{{"102", "a"}}));
        QCOMPARE(view.selectedIndexes().first().row(), 1); // the model's row
        load(view, {header(0), row(5, "deleted", {}, "-1")});
        view.selectRow(0);
        QCOMPARE(view.getCurrentDocIds(false, true), QStringList());
        QCOMPARE(view.getCurrentDocIds(false, false), QStringList("5"));
    }

    void sorting()
    {
        const std::tuple<bool, QStringList, QStringList, QStringList> table[] = {
            {false, {"b", "a", "C"}, {"C", "a", "b"}, {"b", "a", "C"}},
            {false, {"10", "9", "2"}, {"2", "9", "10"}, {"10", "9", "2"}},   // numbers in a column of texts
            {true, {"", "10", "9.5"}, {"9.5", "10", ""}, {"10", "9.5", ""}}, // empties last both ways
        };
        for (const auto &[numeric, values, ascending, descending] : table) {
            KelvaInfoView view;
            KelvaLineDelegate delegate({}, &view, 254, numeric);
            view.setItemDelegateForColumn(11, &delegate);
            QStringList docs{header(1)};
            for (int i = 0; i < values.size(); ++i)
                docs << row(i, "d", {values.at(i)});
            load(view, docs);
            view.sortByColumn(11, Qt::AscendingOrder);
            QCOMPARE(shown(view, 11), ascending);
            view.sortByColumn(11, Qt::DescendingOrder);
            QCOMPARE(shown(view, 11), descending);
        }
    }

    void lettersAndDigitsStartAnEdit()
    {
        KelvaInfoView view;
        view.setNoEdit(false);
        KelvaLineDelegate line({}, &view, 254, false);
        line.setDelegateColumn(documentcolumn::description);
        view.setItemDelegateForColumn(documentcolumn::description, &line);
        load(view, {header(0), row(1, "a", {})});
        view.show();
        const QModelIndex cell = view.model()->index(0, documentcolumn::description);
        QString started;
        for (const char key : {'/', '0', '9', ':', '@', 'A', 'Z', '[', '`', 'a', 'z', '{', ' '}) {
            view.QTableView::setCurrentIndex(cell);
            QTest::keyClick(&view, key);
            if (view.indexWidget(cell))
                started += key;
            view.finishEditing();
            QVERIFY(!view.indexWidget(cell));
        }
        QCOMPARE(started, QString("09AZaz"));
        QTest::keyClick(&view, Qt::Key_B, Qt::ControlModifier);
        QVERIFY(!view.indexWidget(cell));
        QCOMPARE(cell.data().toString(), QString("z")); // what is being typed is written
    }

    void theLastColumnStays()
    {
        KelvaInfoView view;
        load(view, {header(0), row(1, "a", {})});
        view.show();
        for (int column = 0; column < view.model()->columnCount(); ++column)
            view.setColumnHidden(column, column > documentcolumn::mainFolder);
        DialogScript script;
        script.expectBox("Warning", "All columns can not be hidden.");
        // The menu comes back after the warning; then another column is shown.
        QStringList wanted{"Id", "Main", "Date"};
        QTimer chooser;
        connect(&chooser, &QTimer::timeout, this, [&wanted] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (!menu)
                return;
            if (wanted.isEmpty()) {
                menu->close();
                return;
            }
            const QString title = wanted.takeFirst();
            for (QAction *action : menu->actions())
                if (action->text() == title)
                    menu->setActiveAction(action);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        chooser.start(5);
        view.horizontalHeader()->actions().first()->trigger();
        QVERIFY(wanted.isEmpty());
        QString shownColumns;
        for (int column = 0; column < view.model()->columnCount(); ++column)
            shownColumns += view.isColumnHidden(column)
                                ? ""
                                : view.model()->headerData(column, Qt::Horizontal).toString() + ' ';
        QCOMPARE(shownColumns, QString("Main Date "));
    }

    void aHeaderOfMoreColumnsMakesNoneUp()
    {
        {
            KelvaInfoView view;
            view.setProfileIdentifier("../../shrunk\n");
            load(view, {header(5), row(1, "a", {"1", "2", "3", "4", "5"})});
            view.setColumnWidth(0, 99);
        }
        // The identifier never leads out of the settings directory.
        QVERIFY(QSettings("Norbant GmbH", QCoreApplication::applicationName() + "_.._.._shrunk_")
                    .contains("InfoViewState"));
        KelvaInfoView view;
        view.setProfileIdentifier("../../shrunk\n");
        load(view, {header(2), row(1, "a", {"1", "2"})});
        QCOMPARE(view.horizontalHeader()->count(), 13);
        QCOMPARE(view.columnWidth(0), 99);
        load(view, {header(2), row(1, QString(60, 'x'), {"1", "2"})});
        const int narrow = view.columnWidth(documentcolumn::description);
        view.setAutoResize(true);
        QVERIFY(view.columnWidth(documentcolumn::description) > narrow);
        view.setProfileIdentifier("other");
        load(view, {header(0), row(1, "a", {})});
        QVERIFY(view.columnWidth(0) != 99);
    }
};

KELVA_TEST(TestKelvaInfoView)
#include "testkelvainfoview.moc"
