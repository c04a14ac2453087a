#include "support/kelvatest.h"
#include "support/onecelltable.h"

#include "contract/recordformat.h"
#include "documents/kelvacalendardelegate.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvalinedelegate.h"
#include "documents/kelvamultiselection.h"
#include "documents/kelvasimplecombodelegate.h"
#include "documents/valuecombobox.h"
#include "widgets/itemroles.h"

#include <QAbstractItemView>
#include <QAction>
#include <QBuffer>
#include <QDesktopServices>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QTableWidget>
#include <QToolTip>

namespace {

QStringList entries()
{
    const QChar f = recordformat::fieldSeparator;
    return {QString("1") + f + "open", QString("2") + f + "resubmission", QString("3") + f + "done"};
}

KelvaComboDelegate *makeCombo(bool popup = false)
{
    auto *delegate = new KelvaComboDelegate(entries(), {}, nullptr, false, QIcon(), true, true);
    delegate->setShowPopup(popup);
    return delegate;
}

KelvaSimpleComboDelegate *makeSimpleCombo()
{
    return new KelvaSimpleComboDelegate({"", "red", "green", "Blue"}, nullptr, true, true, true, false);
}

using MakeDelegate = std::function<KelvaDelegate *()>;

} // namespace

Q_DECLARE_METATYPE(MakeDelegate)

/// What the delegates show and write: one cell, one editor.
class TestCellEditors : public QObject
{
    Q_OBJECT

private slots:
    void boxes_data()
    {
        // choice: null: the editor closes as it opened
        kelvatest::columns<MakeDelegate, QString, QString, QString, QString, QString>(
            "make", "text", "raw", "choice", "shown", "outcome");
        const MakeDelegate combo = [] { return makeCombo(); };
        const MakeDelegate simple = [] { return makeSimpleCombo(); };
        kelvatest::row("another entry is written once", combo, "open", "1", "done", "open", "done|3|1");
        kelvatest::row("the same entry changes nothing", combo, "open", "1", "open", "open", "open|1|0");
        kelvatest::row("a cell without raw value is known by its text", combo, "done", QString(), QString(),
                       "done", "done||0");
        kelvatest::row("an unknown value stays", combo, "not assigned", "77", QString(), "",
                       "not assigned|77|0");
        kelvatest::row("a key is not another key's text", combo, "x", "open", QString(), "", "x|open|0");
        kelvatest::row("another text is written once", simple, "red", "", "Blue", "red", "Blue||1");
        kelvatest::row("a text can be taken away", simple, "red", "", "", "red", "||1");
        kelvatest::row("an unknown text stays", simple, "mauve", "", QString(), "", "mauve||0");
    }

    void boxes()
    {
        QFETCH(MakeDelegate, make);
        QFETCH(QString, text);
        QFETCH(QString, raw);
        QFETCH(QString, choice);
        OneCellTable table(make());
        table.setCell(text, raw);
        auto *box = qobject_cast<ValueComboBox *>(table.edit());
        QVERIFY(box);
        QTEST(box->currentText(), "shown");
        if (choice.isNull())
            table.commit();
        else
            choose(box, choice);
        if (table.isEditing()) // the same value was chosen again
            table.commit();
        QTEST(table.outcome(), "outcome");
    }

    void keysHaveNamesAndPictures()
    {
        const auto picture = [](int width) {
            QByteArray bytes;
            QBuffer buffer(&bytes);
            QImage(width, 1, QImage::Format_RGB32).save(&buffer, "PNG");
            return bytes;
        };
        KelvaComboDelegate combo(entries() << "plain", {picture(1024), picture(1025), "<svg>"}, nullptr,
                                 false, QIcon(), false, false);
        QCOMPARE(combo.getData("2") + '|' + combo.getValue("done"), QString("resubmission|3"));
        QCOMPARE(combo.getData("4") + '|' + combo.getValue("4"), QString("not assigned|not assigned"));
        QCOMPARE(combo.getData("plain"), QString("plain"));
        // What is too large to be a picture, or none, is left away.
        QVERIFY(!combo.getIcon("1").isNull() && combo.getIcon("2").isNull() && combo.getIcon("3").isNull());
    }

    void aChoiceIsWrittenBeforeTheEditorCloses()
    {
        for (KelvaDelegate *delegate : {static_cast<KelvaDelegate *>(new KelvaComboDelegate(
                                            entries(), {}, nullptr, false, QIcon(), true, false)),
                                        static_cast<KelvaDelegate *>(new KelvaSimpleComboDelegate(
                                            {"open", "done"}, nullptr, true, false, true, false))}) {
            OneCellTable table(delegate);
            table.setCell("open", "");
            auto *box = qobject_cast<ValueComboBox *>(table.edit());
            const bool isSorted = box->itemText(0) == "done";
            QCOMPARE(isSorted, qobject_cast<KelvaSimpleComboDelegate *>(delegate) != nullptr);
            choose(box, "done");
            QCOMPARE(table.cell()->text(), QString("done"));
        }
    }

    void theListOpensWithTheEditor()
    {
        OneCellTable table(makeCombo(true));
        table.setCell("open", "1");
        table.cell()->setIcon(QPixmap(16, 16));
        table.view().setColumnWidth(0, 20);
        auto *box = qobject_cast<ValueComboBox *>(table.edit());
        QTRY_VERIFY(box->view()->isVisible());
        QVERIFY(box->view()->width() > 60); // wider than its column
        QTest::keyClick(box->view(), Qt::Key_Down);
        QTest::keyClick(box->view(), Qt::Key_Return);
        QVERIFY(!table.isEditing());
        QCOMPARE(table.outcome(), QString("resubmission|2|1"));
        // One Escape ends what one key has opened.
        box = qobject_cast<ValueComboBox *>(table.edit());
        QTRY_VERIFY(box->view()->isVisible());
        QTest::keyClick(box->view(), Qt::Key_Down);
        QCOMPARE(box->geometry(), table.view().visualRect(table.index())); // over the picture, too
        QTest::keyClick(box->view(), Qt::Key_Escape);
        QVERIFY(!table.isEditing());
        QCOMPARE(table.outcome(), QString("resubmission|2|0"));
    }

    void theWholeTextOfANarrowCellIsItsTip()
    {
        OneCellTable table(new KelvaLineDelegate({}, nullptr, 254, false));
        table.view().setWordWrap(false);
        const auto tip = [&table] {
            QToolTip::hideText();
            const QPoint place = table.view().visualRect(table.index()).center();
            QHelpEvent event(QEvent::ToolTip, place, table.view().viewport()->mapToGlobal(place));
            QCoreApplication::sendEvent(table.view().viewport(), &event);
            return QToolTip::text();
        };
        table.setCell("short");
        QCOMPARE(tip(), QString());
        table.setCell("<b>long</b> enough to be cut off in its column");
        QCOMPARE(tip(), QString("<p>&lt;b&gt;long&lt;/b&gt; enough to be cut off in its column</p>"));
        table.cell()->setToolTip("of its own");
        QCOMPARE(tip(), QString("of its own"));
    }

    void lines_data()
    {
        // kind: n number, g in Germany
        // typed: null: nothing
        kelvatest::columns<QString, QString, QString, QString>("kind", "text", "typed", "outcome");
        const QString tooLong(300, 'x');
        kelvatest::row("text is trimmed", "", "old", "  new text ", "new text||1");
        kelvatest::row("254 characters come out", "", "", tooLong, tooLong.left(254) + "||1");
        kelvatest::row("a number can be taken away", "n", "12.50", "", "||1");
        kelvatest::row("a number loses its thousands separator", "n", "1", "1,234.5", "1234.5||1");
        kelvatest::row("a comma that separates no thousands is a point", "n", "1", "12,5", "12.5||1");
        kelvatest::row("letters are no number", "n", "12", "abc", "12||0");
        kelvatest::row("five decimals are too many", "n", "", "1.23456", "||0");
        kelvatest::row("no digit of an exponent is dropped", "n", "12", "1e3", "12||0");
        kelvatest::row("half a number is not written", "n", "12", "-", "12||0");
        kelvatest::row("German thousands and decimals", "gn", "12,", "1.234,5", "1234,5||1");
        kelvatest::row("a stored number is no thousand times itself", "gn", "12.345", QString(), "12.345||0");
        kelvatest::row("a point in a text stays one", "g", "12.345", QString(), "12.345||0");
        kelvatest::row("a point that separates no thousands is a comma", "gn", "1", "7.5", "7,5||1");
    }

    void lines()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(QString, typed);
        const auto restore = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
        if (kind.contains('g'))
            QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        OneCellTable table(new KelvaLineDelegate({}, nullptr, 254, kind.contains('n')));
        table.setCell(text);
        auto *line = qobject_cast<QLineEdit *>(table.edit());
        QVERIFY(line && line->hasAcceptableInput());
        if (!typed.isNull()) {
            line->selectAll();
            typed.isEmpty() ? line->del() : QTest::keyClicks(line, typed);
        }
        QTest::keyClick(line, Qt::Key_Return);
        QTRY_VERIFY(!table.isEditing() || !line->hasAcceptableInput());
        QTEST(table.outcome(), "outcome");
        if (!table.isEditing())
            return;
        QVERIFY(QToolTip::text().contains("number")); // it says why it stays open
    }

    void aRefreshWritesNumbersAsTheyAreMeant()
    {
        for (const auto &[typed, outcome] : {std::pair("1,5", "1.5||1"), std::pair("-", "12||0")}) {
            OneCellTable table(new KelvaLineDelegate({}, nullptr, 254, true));
            table.setCell("12");
            qobject_cast<QLineEdit *>(table.edit())->setText(typed);
            table.commit(); // as the table does, whatever the validator says
            QCOMPARE(table.outcome(), QString(outcome));
        }
    }

    void linksOpenWithControl()
    {
        QDesktopServices::setUrlHandler("test", this, "openUrl");
        OneCellTable table(new KelvaLineDelegate({}, nullptr, 254, false));
        table.setCell("test://host/page");
        const QPoint place = table.view().visualRect(table.index()).center();
        QTest::mouseClick(table.view().viewport(), Qt::LeftButton, Qt::ControlModifier, place);
        QTest::mouseDClick(table.view().viewport(), Qt::LeftButton, Qt::ControlModifier, place);
        QVERIFY(!table.isEditing());
        QCOMPARE(m_opened, QList<QUrl>{QUrl("test://host/page")});
        QTest::mouseDClick(table.view().viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QVERIFY(table.isEditing());
        QCOMPARE(m_opened.size(), 1);
        QDesktopServices::unsetUrlHandler("test");
        QVERIFY(!KelvaLineDelegate::isURL("a b://c"));
    }

    void ticks_data()
    {
        kelvatest::columns<QString, QString, bool, QString>("text", "input", "editable", "outcome");
        kelvatest::row("space sets an empty cell", "", "space", true, "2||1");
        kelvatest::row("space unsets", "2", "space", true, "0||1");
        kelvatest::row("a click on the box unsets", "1", "click", true, "0||1");
        kelvatest::row("a click beside the box does not", "0", "beside", true, "0||0");
        kelvatest::row("a locked cell stays under a click", "0", "click", false, "0||0");
        kelvatest::row("a table without edits stays", "0", "no triggers", true, "0||0");
    }

    void ticks()
    {
        QFETCH(QString, text);
        QFETCH(QString, input);
        QFETCH(bool, editable);
        OneCellTable table(new KelvaCheckBoxDelegate(false, nullptr));
        table.setCell(text);
        table.cell()->setEditable(editable);
        QTableView &view = table.view();
        view.setColumnWidth(0, 200);
        QVERIFY(!table.edit()); // it has no editor, only the box
        const QRect cell = view.visualRect(table.index());
        if (input == "no triggers")
            view.setEditTriggers(QAbstractItemView::NoEditTriggers);
        QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
        if (input == "space")
            QCoreApplication::sendEvent(&view, &space);
        else
            QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
                              input == "beside" ? cell.center() - QPoint(cell.width() / 2 - 3, 0)
                                                : cell.center());
        QTEST(table.outcome(), "outcome");
    }

    void whatIsNotForThemIsLeftToOthers_data()
    {
        QTest::addColumn<MakeDelegate>("make");
        kelvatest::row("combo", MakeDelegate([] { return makeCombo(); }));
        kelvatest::row("simple combo", MakeDelegate([] { return makeSimpleCombo(); }));
        kelvatest::row("line", MakeDelegate([] { return new KelvaLineDelegate({}, nullptr, 5, true); }));
        kelvatest::row("calendar",
                       MakeDelegate([] { return new KelvaCalendarDelegate(nullptr, false, false, false); }));
        kelvatest::row("check box", MakeDelegate([] { return new KelvaCheckBoxDelegate(false, nullptr); }));
    }

    void whatIsNotForThemIsLeftToOthers()
    {
        QFETCH(MakeDelegate, make);
        std::unique_ptr<KelvaDelegate> original(make());
        original->setDelegateColumn(3);
        OneCellTable table(original->clone(nullptr)); // the clone knows its column, too
        table.setCell("old", "1");
        table.cell()->setEditable(false);
        QVERIFY(!table.edit());
        table.cell()->setEditable(true);
        auto *plain = qobject_cast<QLineEdit *>(table.edit());
        QVERIFY(plain && !plain->validator());
        plain->setText("longer text");
        table.commit();
        QCOMPARE(table.outcome(), QString("longer text|1|1"));
    }

    void severalValuesAreCollected()
    {
        const std::unique_ptr<KelvaDelegate> delegate(makeCombo());
        QTableWidgetItem given("open");
        given.setData(itemrole::rawValue, "1");
        KelvaMultiSelection dialog(delegate.get(), {&given, &given}, nullptr);
        dialog.show();
        auto *table = dialog.findChild<QTableWidget *>("m_extSelection");
        auto *add = dialog.findChild<QPushButton *>("m_bAdd");
        add->click(); // stays empty
        add->click();
        auto *box = qobject_cast<ValueComboBox *>(table->indexWidget(table->model()->index(3, 0)));
        QVERIFY(box);
        choose(box, "done");
        table->setCurrentCell(1, 0);
        table->actions().first()->trigger();
        dialog.accept();
        QStringList values;
        for (int row = 0; row < dialog.getRows(); ++row)
            values << dialog.getItem(row)->text() + '=' +
                          dialog.getItem(row)->data(itemrole::rawValue).toString();
        QCOMPARE(values, QStringList({"open=1", "done=3"}));
    }

public slots:
    void openUrl(const QUrl &url) { m_opened << url; }

private:
    static void choose(QComboBox *box, const QString &text)
    {
        box->showPopup();
        const QModelIndex item = box->model()->index(box->findText(text), 0);
        box->view()->scrollTo(item);
        box->view()->setCurrentIndex(item);
        QTest::keyClick(box->view(), Qt::Key_Return);
    }

    QList<QUrl> m_opened;
};

KELVA_TEST(TestCellEditors)
#include "testcelleditors.moc"
