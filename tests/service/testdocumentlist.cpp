#include "support/kelvatest.h"

#include "testarchive.h"

#include "contract/recordformat.h"
#include "service/documentlist.h"
#include "service/documents.h"
#include "service/records.h"

using namespace kelva;

class TestDocumentList : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_archive = std::make_unique<TestArchive>();
        m_archive->addDocument("Invoice of O'Brien", "1.1", "2020-01-05");
        m_archive->addDocument("Letter to Müller", "1.2", "2020-02-05");
        m_archive->addDocument("Old letter", "1.2.1", "2019-02-05");
        m_archive->addDocument("Minutes of the board", "2.1");
        m_archive->addDocument("Unsorted", "0");
        m_session = m_archive->login();
    }

    void filtersFind_data()
    {
        QTest::addColumn<QStringList>("filters");
        QTest::addColumn<QStringList>("found");
        const QString all = "Unsorted|Minutes of the board|Old letter|Letter to Müller|Invoice of O'Brien";
        const auto list = [](const char *text) { return QString::fromUtf8(text).split('|'); };
        QTest::newRow("the neutral clause finds everything, newest first")
            << QStringList{"1=1"} << all.split('|');
        QTest::newRow("a folder finds what lies below it too")
            << QStringList{"(folder = '1.2' OR folder like '1.2.%')", "1=1"}
            << list("Old letter|Letter to Müller");
        QTest::newRow("clauses are and-ed as wholes")
            << QStringList{"bemerkung = 'x' or folder = '1.2'",
                           "cdate >= '2020-02-01' AND cdate <= '2020-12-31'"}
            << list("Letter to Müller");
        QTest::newRow("a limit takes the newest")
            << QStringList{"1=1", "OPT:LIMIT;2"} << list("Unsorted|Minutes of the board");
        QTest::newRow("a selection of nothing finds nothing")
            << QStringList{"OPT:SELECTION;-1", "1=1"} << QStringList();
        QTest::newRow("a selection and a full text find what either finds")
            << QStringList{"OPT:SELECTION;1",
                           QString("OPT:FULLTEXT") + recordformat::fieldSeparator + "minutes", "1=1"}
            << list("Minutes of the board|Invoice of O'Brien");
        QTest::newRow("a full text of no words finds nothing")
            << QStringList{QString("OPT:FULLTEXT") + recordformat::fieldSeparator + "!!", "1=1"}
            << QStringList();
        QTest::newRow("documents of others are not mine")
            << QStringList{"1=1", "OPT:MINE", "changeid = 'x'"} << QStringList();
    }

    void filtersFind()
    {
        QFETCH(QStringList, filters);
        QFETCH(QStringList, found);
        const Result<QStringList> list = listDocuments(*m_session, filters);
        QVERIFY2(list.ok(), list ? "" : qPrintable(list.error().text));
        // The administrator holds every right but not the board's role.
        QCOMPARE(descriptionsOf(list.value()), found);
    }

    void badFiltersAreRefused_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::newRow("an unknown token") << "OPT:EVERYTHING";
        QTest::newRow("a selection of words") << "OPT:SELECTION;1,x";
        QTest::newRow("a limit below nothing") << "OPT:LIMIT;-5";
        QTest::newRow("a limit beyond all numbers") << "OPT:LIMIT;99999999999999999999";
        QTest::newRow("a full text of too many words")
            << QString("OPT:FULLTEXT") + recordformat::fieldSeparator + QString("a b* \"c\" ").repeated(34);
        QTest::newRow("a second statement") << "1=1; DROP TABLE classification";
    }

    void badFiltersAreRefused()
    {
        QFETCH(QString, filter);
        const Result<QStringList> list = listDocuments(*m_session, {filter, "1=1"});
        QVERIFY(!list.ok());
        QVERIFY(!list.error().text.isEmpty());
        QCOMPARE(listDocuments(*m_session, {"1=1"}).value().size(), 6);
    }

    void aRowHoldsItsColumnsInOrder()
    {
        const Result<QStringList> list = listDocuments(*m_session, {"folder = '1.2.1'"});
        QVERIFY(list.ok());
        const QStringList row = splitFields(list.value().at(1));
        QCOMPARE(row, (QStringList{"3#3", "1.2", "Old letter", "1", "1_1", "1.2.1", "0", "admin",
                                   "2019-02-05", "2020-02-03T04:05:06", "", "W"}));
        QCOMPARE(splitFields(list.value().at(0)).size(), row.size());
    }

    void dueResubmissionsCountAsNew()
    {
        QStringList record = Documents(*m_session).get("1").value();
        record.removeFirst();
        record.replace(2, "2");
        record.replace(9, "2021-01-10");
        QCOMPARE(textOf(Documents(*m_session).save("1", record)), QString());
        const QStringList filters{"(status = 1)", "folder = '1.1'", "OPT:DEFDATE;2", "OPT:LIMIT;10"};
        m_session->setClock([] { return QDateTime(QDate(2021, 1, 9), QTime(1, 2)); });
        QCOMPARE(listDocuments(*m_session, filters).value().size(), 1);
        m_session->setClock([] { return QDateTime(QDate(2021, 1, 10), QTime(1, 2)); });
        QCOMPARE(listDocuments(*m_session, filters).value().size(), 2);
    }

private:
    std::unique_ptr<TestArchive> m_archive;
    std::unique_ptr<Session> m_session;
};

KELVA_TEST(TestDocumentList)
#include "testdocumentlist.moc"
