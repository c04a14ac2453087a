#include "support/kelvatest.h"
#include "support/workbenchfixture.h"

#include "folders/workbenchdata.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSharedMemory>

#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

namespace {

/// What the system knows of a block: as QSharedMemory finds it.
struct Place
{
    explicit Place(const QString &key) : file(QSharedMemory(key).nativeKey())
    {
        QString semaphoreFile = file;
        semaphoreFile.replace("qipc_sharedmemory_", "qipc_systemsem_");
        segment = ::shmget(::ftok(qPrintable(file), 'Q'), 0, 0);
        semaphore = ::semget(::ftok(qPrintable(semaphoreFile), 'Q'), 1, 0);
        if (segment < 0 || semaphore < 0)
            qFatal("There is no block.");
    }
    void give(bool isSegment, uid_t user, int mode) const
    {
        shmid_ds memory = {};
        semid_ds lock = {};
        ipc_perm &permissions = isSegment ? memory.shm_perm : lock.sem_perm;
        permissions.uid = user;
        permissions.gid = ::getegid();
        permissions.mode = static_cast<decltype(permissions.mode)>(mode);
        QCOMPARE(isSegment ? ::shmctl(segment, IPC_SET, &memory) : ::semctl(semaphore, 0, IPC_SET, &lock), 0);
    }
    void lockForEver() const { QCOMPARE(::semctl(semaphore, 0, SETVAL, 0), 0); }

    const QString file;
    int segment;
    int semaphore;
};

} // namespace

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
        QString fault;
        QVERIFY(!readWorkbenchData("kelva_other", data, &fault));
        QCOMPARE(fault, QString()); // there is none yet
    }

    void aPlaceThatOthersHoldIsLeftAlone()
    {
        const QByteArray block = WorkbenchFixture::block(WorkbenchFixture::vocabulary());
        for (const bool isSegment : {true, false}) {
            for (const bool isOthers : {true, false}) {
                const WorkbenchFixture segment("kelva_own", block);
                Place("kelva_own").give(isSegment, ::geteuid() + (isOthers ? 1 : 0), isOthers ? 0600 : 0666);
                WorkbenchData data;
                QString fault;
                QVERIFY(!readWorkbenchData("kelva_own", data, &fault));
                QVERIFY2(fault.contains("another user"), qPrintable(fault));
                // Whoever publishes takes another key.
                const WorkbenchFixture next("kelva_own", block);
                QVERIFY(next.isReady());
                QVERIFY(readWorkbenchData("kelva_own", data));
            }
        }
    }

    void keyFilesOfOthersAndHeldLocksAreGivenUp()
    {
        const QByteArray block = WorkbenchFixture::block(WorkbenchFixture::vocabulary());
        const WorkbenchFixture segment("kelva_own", block);
        const Place place("kelva_own");
        WorkbenchData data;
        QString fault;
        QVERIFY(QFile::rename(place.file, place.file + ".away"));
        QVERIFY(QFile::link(place.file + ".away", place.file));
        QVERIFY(!readWorkbenchData("kelva_own", data, &fault));
        QVERIFY2(fault.contains("another user"), qPrintable(fault));
        QVERIFY(!WorkbenchFixture("kelva_own", block).isReady());
        QVERIFY(QFile::remove(place.file) && QFile::rename(place.file + ".away", place.file));
        place.lockForEver();
        QVERIFY(!readWorkbenchData("kelva_own", data, &fault));
        QVERIFY2(fault.contains("does not let go"), qPrintable(fault));
        // Who publishes does not depend on what somebody killed has left.
        const WorkbenchFixture anew("kelva_own", block);
        QVERIFY(anew.isReady());
        QVERIFY(readWorkbenchData("kelva_own", data, &fault));
    }

    void damagedBlocksAreRefused()
    {
        const QByteArray whole = WorkbenchFixture::block(WorkbenchFixture::vocabulary());
        QByteArray random(4096, '\0');
        QRandomGenerator generator(20240305);
        for (char &byte : random)
            byte = char(generator.bounded(256));
        WorkbenchData fixedColumn = WorkbenchFixture::vocabulary();
        fixedColumn.checkColumns.insert(3, QString());
        WorkbenchData hugeColumn = WorkbenchFixture::vocabulary();
        hugeColumn.dateColumns.insert(2000000000, QString());
        WorkbenchData data;
        QVERIFY(parseWorkbenchData(whole, data));
        for (const QByteArray &block :
             {QByteArray(), QByteArray(1024, '\0'), random, whole.chopped(1),
              WorkbenchFixture::block(fixedColumn), WorkbenchFixture::block(hugeColumn)})
            QVERIFY2(!parseWorkbenchData(block, data), block.left(20).toHex().constData());
    }
};

KELVA_TEST(TestWorkbenchData)
#include "testworkbenchdata.moc"
