#include "clausetable.h"
#include "support/kelvatest.h"

using Ids = QList<int>;

/// Every form of clause that the program sends, and the edges of the dialect, with the rows that it finds.
class TestClauseForms : public QObject
{
    Q_OBJECT

private:
    static void rows(const QList<QPair<const char *, Ids>> &table)
    {
        QTest::addColumn<QString>("clause");
        QTest::addColumn<Ids>("expected");
        for (const auto &row : table)
            QTest::newRow(row.first) << QString::fromUtf8(row.first) << row.second;
    }

    void check()
    {
        QFETCH(QString, clause);
        QFETCH(Ids, expected);
        for (const auto indexes : {ClauseTable::Indexes::With, ClauseTable::Indexes::Without}) {
            const auto condition = kelva::translateClause(clause, m_table.fields(indexes), m_table.today());
            QVERIFY2(condition, condition ? "" : qPrintable(condition.error().text));
            const Ids found = m_table.ids(condition.value());
            QVERIFY2(found != Ids{-1}, qPrintable(condition.value().sql + ": " + m_table.lastError()));
            QCOMPARE(found, expected);
        }
    }

    const ClauseTable m_table;

private slots:
    void clausesOfTheWindow_data()
    {
        const Ids all{1, 2, 3, 4, 5, 6, 7, 8};
        rows({
            {"1=1", all},
            {"(folder = '3.1' OR folder like '3.1.%')", {1, 2, 6}},
            {"(status = 2)", {2, 3, 7}},
            {"status > 0", {1, 2, 3, 4, 6, 7}},
            {"docid = 5", {5}},
            {"defdate = '2014-08-11'", {8}},
            {"ctimestamp::varchar ilike '%2014-08-11t%'::varchar", {2, 6, 8}},
            {"ctimestamp::varchar like '%2014-08-11T%'::varchar", {2, 6, 8}},
            {"attr7 = 2::varchar", {1, 6, 7}},
            {"(attr7 != 2::varchar OR attr7 IS NULL)", {2, 3, 4, 5, 8}},
            {"folder = '3.1'", {1, 6}},
            {"changeid ilike '%ME%'", {1, 2, 5}},
            {"changeid like '%ME%'", {2}},
            {"attr9 = 12.5", {1}},
            {"attr9 = -3", {5}},
            {"attr9 is null", {3}},
            {"attr9 in (12., 1e6, 125E-1) or attr9 = -3.e+0", {1, 2, 5, 6}},
            {"attr9 >= -.5 and attr9 < .5 and attr9::varchar != .10::varchar", {8}},
            {"attr9::varchar = 1e6::varchar", {6}},
            {"bemerkung ilike '%te ja%'", {1}},
            {"bemerkung = null or bemerkung = ''", {5}},
            {"to_tsvector(bemerkung) @@ to_tsquery('inv:* & 2015')", {3, 7, 8}},
            {"to_tsvector(bemerkung) @@ to_tsquery('invoice')", {3}},
            {"attr5 = 'x'", {2}},
            {"cdate >= '2014-01-01' AND cdate <= '2014-12-31'", {1, 2, 3, 6, 7}},
            {"docs_id in (11,12)", {1, 2}},
            {"docid in (1, 3,99)", {1, 3}},
            {"docid in (1,2,3,4,5,6,7,91,92,93,94,95,96,97,98)", {1, 2, 3, 4, 5, 6, 7}},
            {"defdate <= '[HEUTE+7]' AND status = '2'", {2, 7}},
            {"docart = 3 and not (trashed = true and status = -1)", {1, 2}},
        });
    }

    void clausesOfTheWindow() { check(); }
    void clausesOfTheExtendedSearch_data()
    {
        rows({
            {"bemerkung::varchar not like '%2015%' AND  1 = 1 ", {1, 2, 4, 5}},
            {"docart != '3' AND  1 = 1 ", {3, 4, 6, 7}},
            {"docart >= '5' AND  1 = 1 ", {3, 4, 7}},
            {"docart::varchar >= '5'::varchar AND  1 = 1 ", {4, 7}},
            {"attr9::varchar ilike '%2.5%' AND  1 = 1 ", {1}},
            {"attr9::varchar = '12' AND  1 = 1 ", {2}},
            {"attr9::varchar = '1000000' AND  1 = 1 ", {6}},
            {"attr9 < '12.25' AND  1 = 1 ", {2, 4, 5, 7, 8}},
            {"docart = '3' AND cdate::varchar >= '[HEUTE-7]'::varchar AND  1 = 1 ", {2}},
            {"cdate::varchar = '[HEUTE-7]'::varchar", {7}},
            {"defdate = '[MONAT-1]' OR defdate = '[JAHR+1]'", {6, 7}},
            {"cdate::varchar ilike '%[JAHR-2]%'::varchar AND  1 = 1 ", {8}},
            {"ctimestamp::varchar < '2014'::varchar AND  1 = 1 ", {4}},
            {"(bemerkung::varchar = ''::varchar OR bemerkung::varchar = 'Miete Januar 2014'::varchar)",
             {1, 5}},
        });
    }

    void clausesOfTheExtendedSearch() { check(); }
    void typesAndNull_data()
    {
        rows({
            // NOT over AND over OR, keywords in any case, blanks free
            {"status=1 oR status=2 aNd docart=12", {1, 3}},
            {"NOT\tstatus = 2\nAND not not docart = 3", {1, 5}},
            {"not (status = 2 or docart = 3)", {4, 6}},
            {"not (status = 2 and docart = 3)", {1, 3, 4, 5, 6, 7, 8}},
            // Unknown is neither true nor false
            {"docart = null", {}},
            // A fraction is no whole number, but lies between two
            {"docart = 3.5 or docart in (2.5, 3.0)", {1, 2, 5}},
            {"docart != 3.5 and docart not in (2.5, 1e30)", {1, 2, 3, 4, 5, 6, 7}},
            {"docart < 4.5 and 2.5 <= docart and docart >= -1e30 and not docart > 1e30", {1, 2, 5}},
            {"docart > 3.5 or docart >= 11.5 or docart < -1e30", {3, 4, 7}},
            {"docart != 3 or docart = null", {3, 4, 6, 7}},
            {"not (docart = 3 or docart = null)", {}},
            {"not docart in (3, 5)", {3, 6}},
            {"docart not in (3, null)", {}},
            {"docart in (3, null)", {1, 2, 5}},
            {"not (to_tsvector(bemerkung) @@ to_tsquery('2015'))", {1, 2, 4, 5}},
            {"not bemerkung ilike '%rent%'", {1, 2, 3, 4, 5, 7}},
            {"null is null and not 'x' is null", {1, 2, 3, 4, 5, 6, 7, 8}},
            {"null = null or null != null or null in (null)", {}},
            // Constants
            {"1 = 2 or status = 4", {4}},
            {"'a' < 'b' and 'x10' ilike 'X_0' and not 2 in (1, 3)", {1, 2, 3, 4, 5, 6, 7, 8}},
            {"'10' = 10.0 and '10'::varchar != '10.0' and 010.50::varchar = '10.5'",
             {1, 2, 3, 4, 5, 6, 7, 8}},
            {"-0.0::varchar = '0' and 12.0::varchar = 12::varchar", {1, 2, 3, 4, 5, 6, 7, 8}},
            // Numbers
            {"status = '2.0' or status = '4e0'", {2, 3, 4, 7}},
            {"3 < status", {4}},
            {"attr9 = '+1.5' or attr9 = '.1'", {4, 7}},
            {"attr9 in ('1.5', 12.5, 0)", {1, 7, 8}},
            {"attr9 in (1,2,3,4,5,6,7,8,9,12,1.5)", {2, 7}},
            {"docart = 99999999999999999999", {}},
            {"status = docart", {}},
            {"attr9 = docart or docart > attr9", {4, 5, 7}},
            {"status::varchar = '2'::varchar", {2, 3, 7}},
            {"status = 2::varchar", {2, 3, 7}},
            {"attr5 = 1.50", {}},
            {"attr5 in ('12','2','ö','\"','a','b','c','d','e','it''s')", {3, 6, 8}},
            {"docid in ('1', '2')", {1, 2}},
            // Texts are compared by code unit, dates by date
            {"attr5 > 'X'", {2, 8}},
            {"attr5 >= 'x'::varchar", {2, 8}},
            {"cdate = '2014-8-4'", {7}},
            {"cdate >= '2014-08'", {2, 3, 7}},
            {"cdate in ('2014-08-04', '2014-8-11', null)", {2, 7}},
            {"ctimestamp = '2014-08-11'", {6}},
            {"ctimestamp = '2014-08-11 12:30'", {2}},
            {"ctimestamp >= '2014-08-11' and ctimestamp <= '2014-08-12'", {2, 5, 6, 8}},
            {"cdate = ctimestamp or cdate < defdate", {2, 5, 6, 8}},
            {"cdate = 'no date' or cdate = ''", {}},
            {"not trashed = 'false' and trashed != false and trashed in (true)", {5, 8}},
            {"trashed::varchar = 'true'", {5, 8}},
            {"folder < docart", {4, 5}},
            // What only looks like a macro
            {"bemerkung = '[HEUTE]' or '[heute+1]' = '[HEUTE+1]' or '[HEUTE+]' != '[HEUTE+]'", {}},
            {"'[HEUTE+0]/[MONAT+18]/[JAHR-007]x' = '2014-08-11/2016-02-11/2007-08-11x' and docid = 1", {1}},
        });
    }

    void typesAndNull() { check(); }
    void patterns_data()
    {
        rows({
            {"bemerkung ilike '%GRÖSSE%' or bemerkung ilike '%grÖßE%'", {4}},
            {"bemerkung ilike '%äöü%'", {4}},
            {"attr5 ilike 'Ö'", {8}},
            {"changeid ilike 'm_ller'", {4}},
            {"changeid like 'a_b'", {6}},
            {"changeid not like 'm%'", {2, 3, 4, 6, 7, 8}},
            {"folder like '3.1%'", {1, 2, 3, 6, 8}},
            {"not folder like '3.1%'", {4, 5, 7}},
            {"bemerkung like '%'", {1, 2, 3, 4, 5, 7, 8}},
            {"bemerkung not ilike '%%'", {}},
            {"bemerkung ilike ''", {5}},
            {"bemerkung ilike '%100\\%%'", {}},
            {"bemerkung ilike '%\\%'", {7}},
            {"bemerkung ilike '%100%%'", {2}},
            {"bemerkung ilike '%rent%rent%'", {8}},
            {"bemerkung ilike '%2015%' and not bemerkung ilike '%inv_'", {3, 7, 8}},
            {"attr9 ilike '1%' and status like '2'", {2, 7}},
            {"cdate like '2014%' and cdate not like '2014-08-__'", {1, 3, 6}},
            {"bemerkung like null or null ilike '%' or not attr5 like null", {}},
            {"'3.1.2' like folder", {2}},
            {"folder like folder and attr5 ilike attr5", {2, 3, 4, 5, 6, 7, 8}},
        });
    }

    void patterns() { check(); }
    void words_data()
    {
        rows({
            {"to_tsvector(bemerkung) @@ to_tsquery('GRÖßE')", {4}},
            {"TO_TSVECTOR ( Bemerkung )@@To_TsQuery( ' rent:*&2015 ' )", {8}},
            {"to_tsvector(bemerkung) @@ to_tsquery('2015 & inv')", {7}},
            {"to_tsvector(bemerkung) @@ to_tsquery('inv-20:*')", {7}},
            {"to_tsvector(bemerkung) @@ to_tsquery('2015-inv')", {}},
            {"to_tsvector(bemerkung) @@ to_tsquery('O'Brien's & invoice')", {3}},
            {"to_tsvector(bemerkung) @@ to_tsquery('rent & - & \"invoices\"')", {8}},
            {"to_tsvector(bemerkung) @@ to_tsquery('& & inv:* & & & 2015')", {3, 7, 8}},
            {"to_tsvector(bemerkung) @@ to_tsquery(':* & 2015 & :*')", {3, 7, 8}},
            {"to_tsvector(bemerkung) @@ to_tsquery(':*')", {1, 2, 3, 4, 7, 8}},
            {"to_tsvector(bemerkung) @@ to_tsquery('-')", {}},
            {"not (to_tsvector(bemerkung) @@ to_tsquery('-'))", {1, 2, 3, 4, 5, 7, 8}},
            {"to_tsvector(bemerkung) @@ to_tsquery('OR & NEAR(rent)')", {}},
            {"to_tsvector(docart) @@ to_tsquery('12')", {3}},
            {"to_tsvector(changeid) @@ to_tsquery('A & b:*')", {6}},
            {"to_tsvector(attr5) @@ to_tsquery('x:*') and 1=1", {2, 4}},
        });
    }

    void words() { check(); }
    void quotesInValues_data()
    {
        rows({
            {"bemerkung::varchar ilike '%O'Brien's inv%'::varchar AND  1 = 1 ", {3}},
            {"bemerkung = 'O'Brien's Invoice 2015'", {3}},
            {"bemerkung = 'O''Brien''s Invoice 2015'", {3}},
            {"bemerkung ilike '%O'BRIEN'%'", {3}},
            {"bemerkung ilike '%dogs' and cats' place%'", {8}},
            {"bemerkung ilike '%dogs' and cats%' and status = 0", {8}},
            {"bemerkung ilike '%dogs' and white cats' place%'", {}},
            {"changeid = 'O''", {8}},
            {"changeid = 'O'''", {8}},
            {"changeid = 'O'' AND status = '0'", {8}},
            {"changeid::varchar = 'O''::varchar AND docid = '8' AND  1 = 1 ", {8}},
            {"(changeid = 'O'' OR changeid = 'O'')", {8}},
            {"changeid = 'O' or '", {}},
            {"changeid in ('O'', 'root')", {7, 8}},
            {"(changeid = '(O')' OR changeid = 'O'') and not changeid = 'a') b'", {8}},
            {"attr5 = '' and changeid = 'meier'", {5}},
            {"attr5 = ''AND changeid='meier'or folder='4'", {4, 5}},
            {"''='' and '''' = ''' and docid = 1", {1}},
            {"changeid = 'x' = 'x'", {}},
            {"changeid = 'x'; drop table documents; --'", {}},
            {"changeid = 'x' and not (folder = '4')", {}},
            {"changeid = 'L'or' OR 'a' = 'a' and folder = '4'", {4}},
            {"changeid = 'x' or folder in ('4') or attr9 is null", {3, 4}},
        });
    }

    void quotesInValues() { check(); }
};

KELVA_TEST(TestClauseForms)
#include "testclauseforms.moc"
