#include "search/clausecases.h"
#include "support/kelvatest.h"

#include "server/recordformat.h"
#include "service/archive.h"
#include "service/attributes.h"
#include "service/bulkload.h"
#include "service/documentlist.h"
#include "service/session.h"

#include <QTemporaryDir>

#include <algorithm>

using namespace kelva;

namespace {

struct Sample
{
    const char *description;
    int status;
    int type;
    const char *folder;
    const char *date;
    int resubmitInDays; ///< 0 for none
    const char *changed;
    QVariant amount;
    const char *paid;
    const char *remark;
};

} // namespace

/// What the extended search finds in an archive: client, clause dialect and database in one.
class TestSearchFinds : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NewArchive archive;
        archive.path = m_directory.filePath("1.kelva");
        archive.administrator = "admin";
        archive.password = "secret";
        QVERIFY(archive::create(archive).ok());
        auto session = Session::openAsOwner(archive.path, "admin");
        QVERIFY(session.ok());
        m_session = std::move(session.value());
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
        const QString clause = extendedSearch(test.rows, test.offline, test.decimalPoint).clause;
        const Result<QStringList> list = listDocuments(*m_session, {clause, "OPT:LIMIT;100"});
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

private:
    void fillArchive()
    {
        const QByteArray longText(254, 'x');
        const QVariant none;
        const Sample samples[] = {
            {"Miete Januar", 2, 3, "1.1", "2024-01-15", 3, "2024-01-15T08:00:00", 12.5, "2", "1,5"},
            {"Rechnung 100% bezahlt", 1, 3, "1.1", "2024-08-11", 0, "2024-08-11T12:00:00", 12, "0",
             "O'Brien"},
            {"O'Brien's Rechnung", 1, 12, "1.2.1", "2023-12-31", 30, "2023-12-31T12:00:00", none, "", "x"},
            {"a_b a\\b [x]", 3, 5, "1.2", "2024-02-01", 0, "2023-02-01T12:00:00", 0, "2", "nan"},
            {longText.constData(), 2, 7, "2", "2022-02-02", -1, "2022-02-02T12:00:00", -3, "0", ""},
            {"50 %1 %2 [MORGEN+1]", 1, 7, "2", "2022-02-03", 0, "2022-02-03T12:00:00", none, "0", ""},
        };
        BulkLoad load(*m_session);
        for (const Sample &sample : samples) {
            BulkDocument document;
            document.creator = "admin";
            document.description = sample.description;
            document.status = sample.status;
            document.type = sample.type;
            document.folder = sample.folder;
            document.date = sample.date;
            if (sample.resubmitInDays != 0)
                document.resubmission =
                    m_session->today().addDays(sample.resubmitInDays).toString("yyyy-MM-dd");
            document.created = sample.changed;
            document.attributes = {
                {1, sample.amount}, {2, QString(sample.paid)}, {3, QString(sample.remark)}};
            QVERIFY(load.add(document).ok());
        }
        QVERIFY(load.finish().ok());
    }

    QTemporaryDir m_directory;
    std::unique_ptr<Session> m_session;
};

KELVA_TEST(TestSearchFinds)
#include "testsearchfinds.moc"
