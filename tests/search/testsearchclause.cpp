#include "support/kelvatest.h"

#include "search/searchclause.h"

class TestSearchClause : public QObject
{
    Q_OBJECT

private slots:
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
