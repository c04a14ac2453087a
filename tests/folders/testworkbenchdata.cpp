#include "support/kelvatest.h"
#include "support/workbenchfixture.h"

#include "folders/workbenchdata.h"

#include <QRandomGenerator>

class TestWorkbenchData : public QObject
{
    Q_OBJECT

private slots:
    void aBlockIsReadThroughSharedMemory()
    {
        const WorkbenchFixture segment("kelva_test", WorkbenchFixture::block(WorkbenchFixture::vocabulary()));
        QVERIFY(segment.isReady());
        WorkbenchData data;
        QVERIFY(readWorkbenchData("kelva_test", data));
        QCOMPARE(data.folders.size(), 5);
        QCOMPARE(data.retentionByType(), (QMap<QString, QString>{{"1", "10;0;0"}}));
        QVERIFY(!readWorkbenchData("kelva_other", data));
    }

    void damagedBlocksAreRefused_data()
    {
        const QByteArray whole = WorkbenchFixture::block(WorkbenchFixture::vocabulary());
        QByteArray random(4096, '\0');
        QRandomGenerator generator(20240305);
        for (char &byte : random)
            byte = char(generator.bounded(256));
        WorkbenchData wrongColumn = WorkbenchFixture::vocabulary();
        wrongColumn.checkColumns.insert(3, QString());
        WorkbenchData hugeColumn = WorkbenchFixture::vocabulary();
        hugeColumn.dateColumns.insert(2000000000, QString());
        QTest::addColumn<QByteArray>("block");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("all zero") << QByteArray(1024, '\0');
        QTest::newRow("random") << random;
        QTest::newRow("one byte short") << whole.left(whole.size() - 1);
        QTest::newRow("an attribute in a fixed column") << WorkbenchFixture::block(wrongColumn);
        QTest::newRow("an attribute in no column of this world") << WorkbenchFixture::block(hugeColumn);
    }

    void damagedBlocksAreRefused()
    {
        QFETCH(QByteArray, block);
        WorkbenchData data;
        QVERIFY(!parseWorkbenchData(block, data));
    }
};

KELVA_TEST(TestWorkbenchData)
#include "testworkbenchdata.moc"
