#include "app/workplace.h"
#include "support/kelvatest.h"

#include "app/kelvaabout.h"
#include "app/kelvachangepass.h"
#include "documents/kelvacalendar.h"
#include "documents/kelvalinedelegate.h"
#include "documents/kelvamultiselection.h"
#include "folders/kelvadocpicchooser.h"
#include "folders/kelvafolderviewdlg.h"
#include "folders/kelvanewfolder.h"
#include "search/kelvaextsearch.h"
#include "server/kelvalogindialog.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QCalendarWidget>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QTableWidget>
#include <QTextEdit>

namespace {

/// Parts that a widget of the toolkit makes of its own.
bool isInner(const QWidget *widget)
{
    const QWidget *parent = widget->parentWidget();
    return widget->objectName().startsWith("qt_") || qobject_cast<const QHeaderView *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(parent) || qobject_cast<const QComboBox *>(parent) ||
           qobject_cast<const QLineEdit *>(parent) || parent->inherits("QComboBoxPrivateContainer") ||
           widget->inherits("QTableCornerButton") || parent->objectName() == "qt_calendar_navigationbar";
}

bool isEditor(const QWidget *widget)
{
    return qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QTextEdit *>(widget) ||
           widget->inherits("QPlainTextEdit") || qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QSlider *>(widget) ||
           qobject_cast<const QCalendarWidget *>(widget) || widget->inherits("QAbstractItemView");
}

/// Names of the editors and of the buttons without text that a screen reader cannot tell apart.
QStringList nameless(const QWidget *window)
{
    QSet<const QWidget *> labelled;
    for (const QLabel *label : window->findChildren<QLabel *>())
        if (label->buddy() && !label->text().isEmpty())
            labelled.insert(label->buddy());
    QStringList names;
    for (const QWidget *widget : window->findChildren<QWidget *>()) {
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        const bool needsName = button ? button->text().isEmpty() : isEditor(widget);
        if (needsName && !isInner(widget) && widget->accessibleName().isEmpty() && !labelled.contains(widget))
            names << QString("%1 %2").arg(widget->metaObject()->className(), widget->objectName());
    }
    return names;
}

bool isInCell(const QWidget *widget)
{
    return widget->parentWidget() && widget->parentWidget()->objectName() == "qt_scrollarea_viewport";
}

/// A table whose cells are stops is none itself.
bool hasOpenCells(const QWidget *widget)
{
    const auto *table = qobject_cast<const QTableWidget *>(widget);
    return table && table->rowCount() > 0 && table->cellWidget(0, table->columnCount() - 1);
}

/// What Tab stops at, in the order in which it does, from the control that has the focus until it comes
/// round.
QStringList tabWalk(QWidget *window)
{
    constexpr int mostStops = 60;
    const auto name = [](const QWidget *widget) {
        return widget->objectName().isEmpty()
                   ? widget->metaObject()->className() + QString(" ") + widget->property("text").toString()
                   : widget->objectName();
    };
    QStringList stops;
    const QWidget *const start = window->focusWidget();
    const QWidget *focused = start;
    for (int step = 0; focused && step < mostStops && (step == 0 || focused != start); ++step) {
        // An editor that opens for the walk stands for its cell.
        if (!isInner(focused) && !(isInCell(focused) && qobject_cast<const QLineEdit *>(focused)))
            stops << name(focused);
        QTest::keyClick(const_cast<QWidget *>(focused), Qt::Key_Tab);
        QCoreApplication::processEvents(); // an editor that is left hands the focus on in a moment
        focused = window->focusWidget();
    }
    return stops;
}

/// Every control that Tab is meant to stop at.
QStringList tabStops(const QWidget *window)
{
    QStringList names;
    for (const QWidget *widget : window->findChildren<QWidget *>())
        if (widget->isVisible() && widget->isEnabled() && widget->focusPolicy() & Qt::TabFocus &&
            !widget->focusProxy() && !isInner(widget) && !hasOpenCells(widget) && widget->window() == window)
            names << (widget->objectName().isEmpty() ? widget->metaObject()->className() + QString(" ") +
                                                           widget->property("text").toString()
                                                     : widget->objectName());
    return names;
}

using MakeWindow = std::function<std::unique_ptr<QWidget>()>;

} // namespace
Q_DECLARE_METATYPE(MakeWindow)

class TestAccessibility : public QObject
{
    Q_OBJECT

private slots:
    void init() { Workplace::prepare(); }

    void aControlWithoutNameIsFound()
    {
        QWidget window;
        auto *edit = new QLineEdit(&window);
        (new QAbstractSpinBox(&window))->setAccessibleName("Size");
        auto *label = new QLabel("Name", &window);
        QCOMPARE(nameless(&window), QStringList("QLineEdit "));
        label->setBuddy(edit);
        QCOMPARE(nameless(&window), QStringList());
    }

    void theMainWindow()
    {
        Workplace workplace;
        QVERIFY(workplace.start());
        QCOMPARE(nameless(workplace.window.get()).join(", "), QString());
        // Tab goes through the panels from left to right, and inside each from top to bottom.
        const QStringList panels{"m_currentSubArchiv", "m_tWOrdner",     "m_twStatus",   "m_treeSearch",
                                 "m_SearchCombo",      "m_SearchString", "m_bSuchen",    "m_infoView",
                                 "m_timeLine",         "m_fromDate",     "m_spanslider", "m_toDate",
                                 "m_showUnread",       "m_maxSearchBox", "m_bTrash"};
        QStringList order;
        const QWidget *const start = workplace.window->findChild<QWidget *>(panels.first());
        const QWidget *widget = start;
        do {
            if (panels.contains(widget->objectName()) && widget->focusPolicy() & Qt::TabFocus)
                order << widget->objectName();
            widget = widget->nextInFocusChain();
        } while (widget != start);
        QCOMPARE(order, panels);
    }

    void dialogs_data()
    {
        QTest::addColumn<MakeWindow>("make");
        kelvatest::row("password", MakeWindow([] { return std::make_unique<KelvaChangePass>(nullptr); }));
        kelvatest::row("login",
                       MakeWindow([] { return std::make_unique<kelvaLoginDialog>(nullptr, false); }));
        kelvatest::row("date",
                       MakeWindow([] { return std::make_unique<KelvaCalendar>(nullptr, false, true); }));
        kelvatest::row("new folder", MakeWindow([] { return std::make_unique<KelvaNewFolder>(nullptr); }));
        kelvatest::row("extended search", MakeWindow([] {
                           auto search = std::make_unique<KelvaExtSearch>(true, nullptr);
                           search->setFilters({QString("Id") + recordformat::fieldSeparator + "docid"});
                           return search;
                       }));
        kelvatest::row("extended search with a criterion", MakeWindow([] {
                           static const KelvaLineDelegate line({}, nullptr, 254, false);
                           auto search = std::make_unique<KelvaExtSearch>(true, nullptr);
                           search->setDelegateLookup([](const QString &) { return &line; });
                           search->setFilters({QString("Name") + recordformat::fieldSeparator + "bemerkung"});
                           search->findChild<QTableWidget *>("m_extSearchTable")->item(0, 0)->setText("Name");
                           return search;
                       }));
        kelvatest::row("several values", MakeWindow([] {
                           static const KelvaLineDelegate line({}, nullptr, 254, false);
                           return std::make_unique<KelvaMultiSelection>(&line, QList<QTableWidgetItem *>{},
                                                                        nullptr);
                       }));
        kelvatest::row("folder picker",
                       MakeWindow([] { return std::make_unique<KelvaFolderViewDlg>(nullptr); }));
        kelvatest::row("about", MakeWindow([] { return std::make_unique<KelvaAbout>(nullptr); }));
        kelvatest::row("picture", MakeWindow([] { return std::make_unique<KelvaDocPicChooser>(nullptr); }));
    }

    void dialogs()
    {
        QFETCH(MakeWindow, make);
        const std::unique_ptr<QWidget> window = make();
        QCOMPARE(nameless(window.get()).join(", "), QString());
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        if (!window->focusWidget())
            QTest::keyClick(window.get(), Qt::Key_Tab);
        QStringList walked = tabWalk(window.get());
        QStringList all = tabStops(window.get());
        walked.sort();
        all.sort();
        QCOMPARE(walked.join(", "), all.join(", ")); // each once, and home again
    }
};

KELVA_TEST(TestAccessibility)
#include "testaccessibility.moc"
