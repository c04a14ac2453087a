#include "support/kelvatest.h"

#include "documents/refreshgate.h"

#include <QSignalSpy>

#include <memory>

class TestRefreshGate : public QObject
{
    Q_OBJECT

private slots:
    void itOpensOnceEverybodyHasLeft()
    {
        RefreshGate gate;
        QSignalSpy opened(&gate, SIGNAL(opened()));
        auto outer = std::make_unique<RefreshGate::Hold>(gate);
        {
            const RefreshGate::Hold inner(gate);
            gate.missRefresh({"1"}, false);
            gate.missRefresh({}, true);
        }
        QCoreApplication::processEvents();
        QCOMPARE(opened.count(), 0); // and the event loop does not spin meanwhile
        QVERIFY(!gate.isFree());
        outer.reset();
        QVERIFY(gate.isFree());
        QCOMPARE(opened.count(), 0); // whoever leaves may still have rows in hand
        QCoreApplication::processEvents();
        QCOMPARE(opened.count(), 1);
        const auto missed = gate.takeRefresh();
        QVERIFY(missed);
        QCOMPARE(missed->docIds, QStringList("1"));
        QVERIFY(missed->resetPlugins);
        QVERIFY(!gate.takeRefresh());
    }

    void anEditKeepsEverythingElseBack()
    {
        RefreshGate gate;
        CellEdit edit;
        edit.docId = "7";
        gate.enter(edit);
        edit.docId = "8";
        gate.enter(edit);
        QVERIFY(!gate.isHeld());
        QVERIFY(!gate.isFree());
        QCOMPARE(gate.takeEdit()->docId, QString("7"));
        QVERIFY(!gate.isFree());
        QCOMPARE(gate.takeEdit()->docId, QString("8"));
        QVERIFY(gate.isFree());
        QVERIFY(!gate.takeEdit());
    }

    void aReloadRefreshesByItself()
    {
        RefreshGate gate;
        gate.missRefresh({}, false);
        gate.missReload();
        QVERIFY(gate.takeReload());
        QVERIFY(!gate.takeReload());
        QVERIFY(!gate.takeRefresh());
        gate.missRefresh({"1"}, false); // these are to be selected afterwards
        gate.missReload();
        QVERIFY(gate.takeReload());
        QVERIFY(gate.takeRefresh());
    }

    void whatIsTakenBeforeIsNotAnnounced()
    {
        RefreshGate gate;
        QSignalSpy opened(&gate, SIGNAL(opened()));
        gate.missRefresh({}, false);
        gate.takeRefresh();
        QCoreApplication::processEvents();
        QCOMPARE(opened.count(), 0);
        gate.missRefresh({}, false);
        QCoreApplication::processEvents();
        QCOMPARE(opened.count(), 1);
    }
};

KELVA_TEST(TestRefreshGate)
#include "testrefreshgate.moc"
