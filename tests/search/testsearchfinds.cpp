#include "search/clausecases.h"
#include "service/testarchive.h"
#include "support/kelvatest.h"

#include "contract/recordformat.h"
#include "service/attributes.h"
#include "service/bulkload.h"
#include "service/documentlist.h"

#include <algorithm>

using namespace kelva;

/// The texts that leave the client for the service, character for character, and what they find in an
/// archive.
class TestSearchFinds : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_session = m_archive.owner();
        const auto attribute = [](const QString &name, const QString &kind) {
            return QStringList{"-1", name, kind, "0", "0"}.join(recordformat::fieldSeparator);
        };
        QVERIFY(Attributes(*m_session)
                    .save({attribute("Amount", "Numeric"), attribute("Paid", "CheckBox"),
                           attribute("Remark", "String")})
                    .ok());
        fillArchive();
    }

    void finds_data()
    {
        QTest::addColumn<int>("number");
        for (int i = 0; i < clauseCases().size(); ++i)
            kelvatest::row(clauseCases().at(i).name, i);
    }

    void finds()
    {
        QFETCH(int, number);
        const ClauseCase &test = clauseCases().at(number);
        const ExtendedSearch search = extendedSearch(test.rows, test.offline, test.decimalPoint);
        QCOMPARE(search.clause, test.clause);
        QCOMPARE(search.fullText, test.fullText);
        const Result<QStringList> list = listDocuments(*m_session, {search.clause, "OPT:LIMIT;100"});
        if (!list) {
            QCOMPARE(QString("refused"), test.found);
            QCOMPARE(int(list.error().code), int(ErrorCode::BadInput));
            QVERIFY2(!list.error().text.contains("SELECT"), qPrintable(list.error().text));
            return;
        }
        QStringList found;
        for (int i = 1; i < list.value().size(); ++i)
            found << list.value().at(i).section('#', 0, 0);
        std::sort(found.begin(), found.end());
        QCOMPARE(found.join(' '), test.found);
    }

    void fullTextQueries()
    {
        for (const auto &[typed, query] : {std::pair("alpha  beta", "+alpha +beta "),
                                           {"oral andes", "+oral +andes "},
                                           {"alpha OR beta", "alpha OR beta"},
                                           {"a And b", "a And b"},
                                           {"+alpha", "+alpha"},
                                           {"e-mail", "e-mail"}})
            QCOMPARE(checkFullText(typed), QString(query));
    }

private:
    void fillArchive()
    {
        BulkLoad load(*m_session);
        const auto add = [&load, this](const QString &description, int status, int type, const char *folder,
                                       const char *date, int resubmitInDays, const char *changed,
                                       const QVariant &amount, const char *paid, const char *remark) {
            BulkDocument document;
            document.creator = "admin";
            document.description = description;
            document.status = status;
            document.type = type;
            document.folder = folder;
            document.date = date;
            if (resubmitInDays != 0)
                document.resubmission = m_session->today().addDays(resubmitInDays).toString("yyyy-MM-dd");
            document.created = changed;
            document.attributes = {{1, amount}, {2, QString(paid)}, {3, QString(remark)}};
            QVERIFY(load.add(document).ok());
        };
        const QVariant none;
        add("Miete Januar", 2, 3, "1.1", "2024-01-15", 3, "2024-01-15T08:00:00", 12.5, "2", "1,5");
        add("Rechnung 100% bezahlt", 1, 3, "1.1", "2024-08-11", 0, "2024-08-11T12:00:00", 12, "0", "O'Brien");
        add("O'Brien's Rechnung", 1, 12, "1.2.1", "2023-12-31", 30, "2023-12-31T12:00:00", none, "", "x");
        add("a_b a\\b [x]", 3, 5, "1.2", "2024-02-01", 0, "2023-02-01T12:00:00", 0, "2", "nan");
        add(QString(254, 'x'), 2, 7, "2", "2022-02-02", -1, "2022-02-02T12:00:00", -3, "0", "");
        add("50 %1 %2 [MORGEN+1]", 1, 7, "2", "2022-02-03", 0, "2022-02-03T12:00:00", none, "0", "");
        QVERIFY(load.finish().ok());
    }

    TestArchive m_archive;
    std::unique_ptr<Session> m_session;
};

KELVA_TEST(TestSearchFinds)
#include "testsearchfinds.moc"
