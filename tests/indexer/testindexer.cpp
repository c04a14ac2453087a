#include "support/kelvatest.h"
#include "support/outside.h"

#include "service/testarchive.h"

#include "contract/recordformat.h"
#include "indexer/indexer.h"
#include "service/content.h"
#include "service/documentlist.h"
#include "service/documents.h"
#include "service/filetexts.h"
#include "service/records.h"
#include "service/rights.h"
#include "service/temporaryfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace kelva;
using Step = Indexer::Step;

class TestIndexer : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_archive = std::make_unique<TestArchive>();
        m_session = m_archive->login();
        m_now = QDateTime(QDate(2024, 3, 5), QTime(10, 0), Qt::UTC);
    }

    void contentIsFoundWithRightsOnly()
    {
        m_archive->addUser("clerk", {rights::personalPrefix + "clerk"});
        const qint64 open = store("Offer.txt", "turpentine", "1.1");
        const qint64 secret = store("Plan.txt", "turpentine", "2.1");
        QCOMPARE(Content(*m_session).search("turpentine").value(), QStringList());
        QCOMPARE(runToEnd(), QString("2 done, 0 failed"));
        QCOMPARE(found(*m_session), QStringList({id(open), id(secret)}));
        const auto clerk = m_archive->login("clerk");
        QCOMPARE(found(*clerk), QStringList{id(open)});
        const QStringList rows =
            listDocuments(*clerk, {QString("OPT:FULLTEXT") + recordformat::fieldSeparator + "turpentine"})
                .value();
        QCOMPARE(descriptionsOf(rows), QStringList{"Offer.txt"});
    }

    void copiesForTheReaderAreRemoved()
    {
        const QString mine = makeTemporaryFile("Offer.txt").value();
        const QDir directory = QFileInfo(mine).absoluteDir();
        QFile abandoned(directory.filePath("kelva-indexed-copy-a.pdf"));
        QVERIFY(abandoned.open(QIODevice::WriteOnly));
        QVERIFY(abandoned.setFileTime(QDateTime::currentDateTime().addDays(-1), QFile::FileModificationTime));
        abandoned.close();
        QFile inUse(directory.filePath("kelva-indexed-copy-b.pdf"));
        QVERIFY(inUse.open(QIODevice::WriteOnly));
        const QStringList before = directory.entryList(QDir::Files);
        store("Broken.pdf", "no PDF", "1");
        store("Good.txt", "turpentine", "1");
        QCOMPARE(runToEnd(), QString("1 done, 1 failed"));
        QStringList expected = before;
        QVERIFY(expected.removeOne("kelva-indexed-copy-a.pdf"));
        QCOMPARE(directory.entryList(QDir::Files), expected);
        QVERIFY(inUse.remove() && QFile::remove(mine));
    }

    void temporaryFilesOutliveASweepAndAreNoOptions()
    {
        const QFileInfo first(makeTemporaryFile("-rf.txt").value());
        QVERIFY2(first.fileName().startsWith("_rf"), qPrintable(first.fileName()));
        QVERIFY2(QFileInfo(makeTemporaryFile("-.txt").value()).fileName().at(0) != '-', "a lone dash");
        QVERIFY2(QFileInfo(makeTemporaryFile(".txt").value()).fileName().at(0) != '-', "no base name");
        QVERIFY(first.absoluteDir().removeRecursively());
        const Result<QString> next = makeTemporaryFile("Offer.txt");
        QVERIFY(next.ok() && QFile::exists(next.value()));
    }

    void aVersionThatComesMeanwhileIsNotLost()
    {
        store("Offer.txt", "turpentine", "1");
        bool isStored = false;
        IndexerOptions slow = options();
        slow.cancelled = [&] {
            if (!isStored) {
                isStored = true;
                storeFile("Offer.txt", "varnish", false);
            }
            return false;
        };
        const auto indexer = open(slow);
        QCOMPARE(indexer->processNext().value(), Step::Done);
        QVERIFY(isStored);
        QCOMPARE(counts(), joinFields({"0", "1"}));
        QCOMPARE(indexer->processNext().value(), Step::Done);
        QCOMPARE(found(*m_session), QStringList());
        QCOMPARE(found(*m_session, "varnish").size(), 1);
    }

    void manyTextsAreWrittenTogether()
    {
        for (int i = 0; i < 12; ++i)
            store(QString("Offer %1.txt").arg(i), "turpentine", "1");
        {
            const auto indexer = open(options());
            for (int i = 0; i < 11; ++i)
                QCOMPARE(indexer->processNext().value(), Step::Done);
            QCOMPARE(found(*m_session).size(), 8);
            // The last one taken, whose text is still to be written.
            storeFile("Offer 1.txt", "varnish", false);
        }
        QCOMPARE(found(*m_session).size(), 10);
        QCOMPARE(counts(), joinFields({"0", "2"}) + ' ' + joinFields({"4", "10"}));
        QCOMPARE(runToEnd(), QString("2 done, 0 failed"));
        QCOMPARE(found(*m_session).size(), 11);
        QCOMPARE(found(*m_session, "varnish").size(), 1);
        QCOMPARE(archive::check(m_archive->path()).value(), QStringList());
    }

    void twoIndexersShareTheWork()
    {
        store("One.txt", "turpentine", "1");
        store("Two.txt", "turpentine", "1");
        const auto second = open(options());
        QVector<Step> others;
        IndexerOptions first = options();
        first.cancelled = [&] {
            // While the first is at work the second finds one document, and then none.
            while (others.size() < 2)
                others << second->processNext().value();
            return false;
        };
        const auto indexer = open(first);
        QCOMPARE(indexer->processNext().value(), Step::Done);
        QCOMPARE(others, QVector<Step>({Step::Done, Step::Nothing}));
        QCOMPARE(counts(), joinFields({"4", "2"}));
    }

    void theClaimOfADeadProcessRunsOut()
    {
        store("Offer.txt", "turpentine", "1");
        const auto claim = [this](int attempts) {
            m_session->database().run("UPDATE file_text SET claimant = 'dead', claimed = ?, attempts = ?",
                                      {m_now.toSecsSinceEpoch(), attempts});
        };
        const auto indexer = open(options());
        claim(1);
        m_now = m_now.addSecs(599);
        QCOMPARE(indexer->processNext().value(), Step::Nothing);
        m_now = m_now.addSecs(2);
        QCOMPARE(indexer->processNext().value(), Step::Done);
        // A file that ended its indexer each time is left alone in the end.
        QCOMPARE(textOf(FileTexts(*m_session).recreate()), QString());
        claim(3);
        m_now = m_now.addSecs(601);
        QCOMPARE(indexer->processNext().value(), Step::Failed);
        QCOMPARE(counts(), joinFields({"6", "1"}));
    }

    void aDocumentThatIsBrokenOffStaysToDo()
    {
        store("Offer.txt", "turpentine", "1");
        IndexerOptions stopping = options();
        stopping.cancelled = [] { return true; };
        const auto indexer = open(stopping);
        for (int i = 0; i < 5; ++i)
            QCOMPARE(indexer->processNext().value(), Step::Nothing);
        QCOMPARE(runToEnd(), QString("1 done, 0 failed"));
    }

    void onlyAdministratorsDoItAllAgain()
    {
        m_archive->addUser("clerk", {rights::classify});
        const qint64 document = store("Offer.txt", "turpentine", "1");
        store("Broken.pdf", "no PDF", "1");
        store("Picture.png", "turpentine", "1");
        QCOMPARE(runToEnd(), QString("2 done, 1 failed"));
        QCOMPARE(runToEnd(), QString("0 done, 0 failed")); // what failed is not tried again
        const auto clerk = m_archive->login("clerk");
        QCOMPARE(FileTexts(*clerk).recreate().error().code, ErrorCode::Refused);
        QCOMPARE(counts(), joinFields({"4", "2"}) + ' ' + joinFields({"6", "1"}));
        QCOMPARE(textOf(FileTexts(*m_session).recreate()), QString());
        QCOMPARE(counts(), joinFields({"0", "3"}));
        QCOMPARE(found(*m_session), QStringList{id(document)});
        QCOMPARE(runToEnd(), QString("2 done, 1 failed"));
        QCOMPARE(archive::check(m_archive->path()).value(), QStringList());
    }

    void withoutTheProgramNothingIsMarked()
    {
        store("Offer.txt", "turpentine", "1");
        IndexerOptions missing = options();
        missing.extractor = Extractor(m_files.filePath("none"));
        QCOMPARE(Indexer::open(m_archive->path(), missing).error().code, ErrorCode::NotAvailable);
        QCOMPARE(counts(), joinFields({"0", "1"}));
    }

private:
    IndexerOptions options()
    {
        IndexerOptions options;
        options.extractor = Extractor(KELVATEXTRACT);
        options.now = [this] { return m_now; };
        return options;
    }

    std::unique_ptr<Indexer> open(const IndexerOptions &options)
    {
        auto indexer = Indexer::open(m_archive->path(), options);
        if (!indexer)
            qFatal("%s", qPrintable(indexer.error().text));
        return std::move(indexer.value());
    }

    QString runToEnd()
    {
        const auto indexer = open(options());
        int done = 0;
        int failed = 0;
        for (;;) {
            const Result<Step> step = indexer->processNext();
            if (!step)
                return step.error().text;
            if (step.value() == Step::Nothing)
                return QString("%1 done, %2 failed").arg(done).arg(failed);
            ++(step.value() == Step::Done ? done : failed);
        }
    }

    qint64 storeFile(const QString &name, const QByteArray &bytes, bool newDocument)
    {
        const QString path = outside::write(m_files.filePath(name), bytes);
        const Result<qint64> stored = Content(*m_session).store(path, newDocument, {});
        if (!stored)
            qFatal("%s", qPrintable(stored.error().text));
        return stored.value();
    }

    /// Stores and classifies a file into a folder.
    qint64 store(const QString &name, const QByteArray &bytes, const QString &folder)
    {
        const qint64 document = storeFile(name, bytes, true);
        const Result<void> classified = Documents(*m_session).classify(document, name, "0");
        if (!classified)
            qFatal("%s", qPrintable(classified.error().text));
        m_session->database().run("UPDATE classification SET bemerkung = ?, folder = ? WHERE document = ?",
                                  {name, folder, document});
        return document;
    }

    QString counts() { return FileTexts(*m_session).counts().value().join(QLatin1Char(' ')); }

    static QString id(qint64 document) { return QString::number(document); }

    static QStringList found(Session &session, const QString &word = "turpentine")
    {
        QStringList ids;
        const QStringList records = Content(session).search(word).value();
        for (const QString &record : records)
            ids << splitFields(record).value(0);
        return ids;
    }

    QTemporaryDir m_files;
    std::unique_ptr<TestArchive> m_archive;
    std::unique_ptr<Session> m_session;
    QDateTime m_now;
};

KELVA_TEST(TestIndexer)
#include "testindexer.moc"
