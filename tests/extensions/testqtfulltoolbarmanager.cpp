#include "support/kelvatest.h"

#include "extensions/qtfulltoolbarmanager.h"

#include <QAction>
#include <QMainWindow>
#include <QToolBar>

namespace {

/// A window with one default bar of the actions one, a separator, two; three is on no bar.
struct Bars
{
    Bars()
    {
        manager.setMainWindow(&window);
        bar = window.addToolBar("Actions");
        bar->setObjectName("actions");
        bar->addAction(make("one"));
        bar->addSeparator();
        bar->addAction(make("two"));
        manager.addDefaultToolBar(bar, "Actions");
        manager.addAction(make("three"), "Others");
    }

    QAction *make(const QString &name)
    {
        auto *action = new QAction(name, &window);
        action->setObjectName(name);
        return action;
    }

    QAction *action(const QString &name) { return window.findChild<QAction *>(name); }

    QString outline() const
    {
        QStringList bars;
        const QList<QToolBar *> list = manager.toolBars();
        for (QToolBar *toolBar : list) {
            QStringList names;
            const QList<QAction *> actions = toolBar->actions();
            for (const QAction *shown : actions)
                names << (shown->isSeparator() ? "-" : shown->objectName());
            bars << toolBar->windowTitle() + ": " + names.join(' ');
        }
        return bars.join("; ");
    }

    QMainWindow window;
    QtFullToolBarManager manager;
    QToolBar *bar;
};

} // namespace

class TestQtFullToolBarManager : public QObject
{
    Q_OBJECT

private slots:
    void aStateRoundTrips()
    {
        Bars before;
        before.manager.setToolBar(before.bar, {before.action("two"), nullptr, before.action("three")});
        QToolBar *custom = before.manager.createToolBar("Mine");
        QCOMPARE(custom->objectName(), QString("_Custom_Toolbar_1"));
        before.manager.setToolBar(custom, {before.action("one")});

        Bars after;
        QVERIFY(after.manager.restoreState(before.manager.saveState(3), 3));
        QCOMPARE(after.outline(), QString("Actions: two - three; Mine: one"));
        // Restored a second time, the custom bar is found by its name and not made anew.
        QVERIFY(after.manager.restoreState(before.manager.saveState(3), 3));
        QCOMPARE(after.outline(), QString("Actions: two - three; Mine: one"));
        after.manager.resetAllToolBars();
        QCOMPARE(after.outline(), QString("Actions: one - two"));
    }

    void anActionThatIsGoneVanishesAlone()
    {
        Bars before;
        before.manager.setToolBar(before.bar,
                                  {before.action("two"), before.action("three"), before.action("one")});
        const QByteArray state = before.manager.saveState(0);
        Bars after;
        after.manager.removeAction(after.action("three"));
        QVERIFY(after.manager.restoreState(state, 0));
        QCOMPARE(after.outline(), QString("Actions: two one"));
    }

    void badStatesChangeNothing()
    {
        Bars before;
        before.manager.setToolBar(before.bar, {before.action("three")});
        const QByteArray state = before.manager.saveState(0);
        QByteArray wrongMarker = state;
        wrongMarker[3] = char(254);
        QByteArray hugeCount = state;
        hugeCount.replace(9, 4, QByteArray("\x7f\xff\xff\xff", 4));
        for (const auto &[bad, version] :
             {std::pair(state, 1), {wrongMarker, 0}, {state.chopped(3), 0}, {hugeCount, 0}}) {
            Bars bars;
            QVERIFY2(!bars.manager.restoreState(bad, version), bad.toHex().constData());
            QCOMPARE(bars.outline(), QString("Actions: one - two"));
        }
    }
};

KELVA_TEST(TestQtFullToolBarManager)
#include "testqtfulltoolbarmanager.moc"
