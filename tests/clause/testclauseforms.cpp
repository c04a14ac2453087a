#include "clausetable.h"
#include "support/kelvatest.h"

using Ids = QList<int>;

/// Forms of clause that the program sends, and the edges of the dialect, with the rows that they find or why
/// they are refused.
class TestClauseForms : public QObject
{
    Q_OBJECT

    const ClauseTable m_table;

    QString refusal(const QString &clause) const
    {
        const auto condition =
            kelva::translateClause(clause, m_table.fields(ClauseTable::Indexes::With), m_table.today());
        if (condition)
            return "accepted as " + condition.value().sql;
        return condition.error().code == kelva::ErrorCode::BadInput ? condition.error().text : "another code";
    }

private slots:
    void finds_data()
    {
        QTest::addColumn<Ids>("expected");
        const Ids none, all{1, 2, 3, 4, 5, 6, 7, 8};
        const QList<QPair<const char *, Ids>> table{
            // The window and its searches
            {"1=1", all},
            {"(folder = '3.1' OR folder like '3.1.%')", {1, 2, 6}},
            {"ctimestamp::varchar ilike '%2014-08-11t%'::varchar", {2, 6, 8}},
            {"changeid ilike '%ME%'", {1, 2, 5}},
            {"bemerkung = null or bemerkung = ''", {5}},
            {"docs_id in (11,12)", {1, 2}},
            {"docart >= '5' AND  1 = 1 ", {3, 4, 7}},
            {"docart::varchar >= '5'::varchar AND  1 = 1 ", {4, 7}},
            {"cdate::varchar ilike '%[JAHR-2]%'::varchar AND  1 = 1 ", {8}},
            // Precedence, unknown values, types
            {"status=1 oR status=2 aNd docart=12", {1, 3}},
            {"not (docart = 3 or docart = null)", none},
            {"not (to_tsvector(bemerkung) @@ to_tsquery('2015'))", {1, 2, 4, 5}},
            {"'10' = 10.0 and '10'::varchar != '10.0' and 010.50::varchar = '10.5'", all},
            {"cdate >= '2014-08'", {2, 3, 7}},
            {"ctimestamp = '2014-08-11 12:30'", {2}},
            {"'[HEUTE+0]/[MONAT+18]/[JAHR-007]x' = '2014-08-11/2016-02-11/2007-08-11x' and docid = 1", {1}},
            // Patterns and words
            {"bemerkung ilike '%GRÖSSE%' or bemerkung ilike '%grÖßE%'", {4}},
            {"bemerkung ilike '%100\\%%' or bemerkung ilike '%\\%'", {7}},
            {"TO_TSVECTOR ( Bemerkung )@@To_TsQuery( ' rent:*&2015 ' )", {8}},
            {"to_tsvector(bemerkung) @@ to_tsquery('inv-20:*')", {7}},
            {"to_tsvector(bemerkung) @@ to_tsquery('OR & NEAR(rent)')", none},
            // Quotes in values
            {"bemerkung = 'O'Brien's Invoice 2015'", {3}},
            {"changeid::varchar = 'O''::varchar AND docid = '8' AND  1 = 1 ", {8}},
            {"attr5 = ''AND changeid='meier'or folder='4'", {4, 5}},
            {"changeid = 'x'; drop table documents; --'", none},
            {"changeid = 'L'or' OR 'a' = 'a' and folder = '4'", {4}},
        };
        for (const auto &row : table)
            QTest::newRow(row.first) << row.second;
    }

    void finds()
    {
        for (const auto indexes : {ClauseTable::Indexes::With, ClauseTable::Indexes::Without}) {
            const auto condition = kelva::translateClause(QString::fromUtf8(QTest::currentDataTag()),
                                                          m_table.fields(indexes), m_table.today());
            QVERIFY2(condition, condition ? "" : qPrintable(condition.error().text));
            QTEST(m_table.ids(condition.value()), "expected");
        }
    }

    void charactersThatAreNoneAreRefused()
    {
        const QString expected =
            "The search condition is wrong at position 14: there is a character that no text can hold.";
        for (const ushort unit : {0, 0xd800, 0xdc00, 0xfffe, 0xffff})
            QCOMPARE(refusal("changeid = 'a" + QString(QChar(unit)) + "z'"), expected);
        QVERIFY(refusal("changeid = 'a\U0001F600z'").startsWith("accepted"));
    }

    void refusedWithTheirPlace()
    {
        const struct
        {
            const char *clause;
            int position;
            const char *reason;
        } table[] = {
            {"", 1, "a field or a value is expected, but the end was met"},
            {"OR status = '2' AND  1 = 1 ", 1, "a field or a value is expected, but \"OR\" was met"},
            {"changeid = 'a' AND docart status = '2' AND  1 = 1 ", 27,
             "a comparison is expected, but \"status\" was met"},
            {"changeid = 'abc", 12, "the quoted text that begins here does not end"},
            {"changeid = O'Brien", 13, "AND, OR or the end is expected, but \"'\" was met"},
            {"status = 2)", 11, "AND, OR or the end is expected, but \")\" was met"},
            {"status == 2", 9, "a field or a value is expected, but \"=\" was met"},
            {"status = 2; drop table documents", 11, "AND, OR or the end is expected, but \";\" was met"},
            {"status in ()", 12, "a value is expected, but \")\" was met"},
            {"status::integer = 1", 9, "varchar is expected, but \"integer\" was met"},
            {"to_tsvector(bemerkung) = 'a'", 24, "\"@@\" is expected, but \"=\" was met"},
            {"to_tsvector(bemerkung) @@ to_tsquery(a)", 38, "a quoted text is expected, but \"a\" was met"},
            {"to_tsvector(bemerkung) @@ to_tsquery('- &  & ')", 38,
             "a word is missing beside \"&\" or the query is empty"},
            {"docart = 'abc'", 10, "'abc' is no number"},
            {"docart in (1, 'abc')", 15, "'abc' is no number"},
            {"docart = 1e", 10, "a field or a value is expected, but \"1\" was met"},
            {"attr9 = .", 9, "a field or a value is expected, but \".\" was met"},
            {"attr9 = 'nan' or attr9 = 'inf'", 9, "'nan' is no number"},
            {"trashed = 'maybe'", 11, "'maybe' is neither true nor false"},
            {"trashed = 1", 1, "trashed cannot be compared with 1"},
            {"defdate <= '[HEUTE-9999999]'", 12, "the date macro leads out of the calendar"},
            {"changeid = 'a\xef\xbb\xbfz'", 14, "there is a character that no text can hold"},
        };
        for (const auto &row : table)
            QCOMPARE(refusal(QString::fromUtf8(row.clause)),
                     QString("The search condition is wrong at position %1: %2.")
                         .arg(row.position)
                         .arg(row.reason));
    }
};

KELVA_TEST(TestClauseForms)
#include "testclauseforms.moc"
