#include "search/clausecases.h"
#include "support/kelvatest.h"

/// The texts that leave the client for the service, character for character.
class TestSearchClause : public QObject
{
    Q_OBJECT

private slots:
    void clauses_data()
    {
        QTest::addColumn<int>("number");
        for (int i = 0; i < clauseCases().size(); ++i)
            kelvatest::row(clauseCases().at(i).name, i);
    }

    void clauses()
    {
        QFETCH(int, number);
        const ClauseCase &test = clauseCases().at(number);
        const ExtendedSearch search = extendedSearch(test.rows, test.offline, test.decimalPoint);
        QCOMPARE(search.clause, test.clause);
        QCOMPARE(search.fullText, test.fullText);
    }

    void fullTextQueries()
    {
        QCOMPARE(checkFullText("alpha  beta"), QString("+alpha +beta "));
        for (const char *query : {"alpha OR beta", "a And b", "+alpha", "e-mail"})
            QCOMPARE(checkFullText(query), QString(query));
        QCOMPARE(checkFullText("oral andes"), QString("+oral +andes "));
    }
};

KELVA_TEST(TestSearchClause)
#include "testsearchclause.moc"
