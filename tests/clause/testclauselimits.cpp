#include "clausetable.h"
#include "support/kelvatest.h"

#include "clause/clauseparser.h"

/// What is large or nested deep, and what the database makes of the SQL.
class TestClauseLimits : public QObject
{
    Q_OBJECT

private:
    const ClauseTable m_table;

    /// Number of rows found, or what went wrong.
    QString outcome(const QString &clause) const
    {
        const auto condition =
            kelva::translateClause(clause, m_table.fields(ClauseTable::Indexes::With), m_table.today());
        if (!condition)
            return condition.error().text.section(": ", 1).left(100);
        // What the archive puts around a clause.
        const kelva::SqlCondition inside{
            "d.docid IN (SELECT docid FROM documents d WHERE (d.trashed = 0 OR (d.trashed = 1"
            " AND (d.status <> 9 AND " +
                condition.value().sql + "))))",
            condition.value().values};
        const QList<int> outer = m_table.ids(inside);
        return outer == QList<int>{-1} ? m_table.lastError()
                                       : QString::number(m_table.ids(condition.value()).size());
    }

    /// A full tree of AND and OR in turn.
    static QString tree(int levels, bool conjunction)
    {
        if (levels == 0)
            return "bemerkung ilike '%rent%'";
        const QString side = "(" + tree(levels - 1, !conjunction) + ")";
        return side + (conjunction ? " and " : " or ") + side;
    }

    /// Every level holds the next in its middle and chains of conditions around it.
    static QString ladder(int levels)
    {
        const QString chain = QStringList(QVector<QString>(100, "status = 0").toList()).join(" or ");
        const QString longer = "(" + chain + ")";
        return levels == 0 ? longer : longer + " and not (" + ladder(levels - 1) + ") and " + longer;
    }

private slots:
    void largeAndHostileClauses_data()
    {
        kelvatest::columns<QString, QString>("clause", "expected");
        const auto repeated = [](const char *text, int times) { return QString(text).repeated(times); };
        const QString unended = "the quoted text that begins here does not end.";
        const struct
        {
            const char *name;
            QString clause;
            QString expected;
        } table[] = {
            {"one condition too many", repeated("1=1 or ", 5000) + "1=1",
             "there are more than 5000 conditions."},
            {"too many values", repeated("attr9 in (1.5,2,3,4,5,6,7,8) or ", 4000) + "1=2",
             "it holds more than 30000 values."},
            {"full tree", tree(11, true), "1"},
            {"ladder", ladder(18), "1"},
            {"chains of two values",
             QString("(status = 0%1) and (docart is null%2) and docid = 8")
                 .arg(repeated(" or status = 9", 2000), repeated(" or docart = 9", 2000)),
             "1"},
            {"many short alternatives",
             repeated(
                 "(status = 0 or docid = 9 or docart = 3 or folder = '4' or cdate = '2014' or status > 9 or "
                 "folder like 'x%' or attr9 > 7 or docid > 90 or changeid = 'x') and ",
                 499) +
                 "docid = 8",
             "1"},
            {"nested too deep", repeated("(", 21) + "1=1" + repeated(")", 21),
             "parentheses are nested deeper than 20."},
            {"nothing but NOT", repeated("not ", 200001) + "docid = 8", "7"},
            {"list of 100,000 texts", "changeid in ('root'" + repeated(",'it's'", 100000) + ")", "1"},
            {"too long", repeated(" ", 1000001), "it is longer than 1000000 characters."},
            {"nothing but quotes", "changeid = " + repeated("'", 900000), "0"},
            {"quotes before quoted operands", "changeid = 'x" + repeated("' or 'x", 100000), unended},
            {"blanks behind quotes", "changeid = 'x" + repeated("'          ", 80000) + "x'", "0"},
            {"pattern that could be tried for ever",
             "'" + repeated("a", 10000) + "' like '" + repeated("%a", 5000) + "b'", "0"},
            {"many words", "to_tsvector(bemerkung) @@ to_tsquery('rent" + repeated(" & rent:*", 99) + "')",
             "1"},
            {"a word too many", "to_tsvector(bemerkung) @@ to_tsquery('rent" + repeated("-rent", 100) + "')",
             "there are more than 100 words."},
            {"many macros", "changeid = '" + repeated("[HEUTE+1]", 20000) + "'", "0"},
            {"long number", "attr9 < " + repeated("9", 300), "7"},
            {"number too large", "attr9 < " + repeated("9", 400), repeated("9", 60) + "... is no number."},
            {"long unknown name", repeated("a", 100000) + " = 1",
             "the field \"" + repeated("a", 60) + "\" is not known."},
        };
        for (const auto &row : table)
            QTest::newRow(row.name) << row.clause << row.expected;
    }

    void largeAndHostileClauses()
    {
        QFETCH(QString, clause);
        QFETCH(QString, expected);
        // Work that grows with the square of these lengths would run into the time limit of the whole test.
        QCOMPARE(outcome(clause), expected);
    }

    void indexesAreUsed()
    {
        const QPair<const char *, QStringList> table[] = {
            {"(folder = '3.1' OR folder like '3.1.%')",
             {"USING COVERING INDEX by_folder (folder=?)",
              "USING COVERING INDEX by_folder (folder>? AND folder<?)"}},
            {"folder::varchar like '3.1.%'::varchar AND  1 = 1 ",
             {"INDEX by_folder (folder>? AND folder<?)"}},
            {"cdate >= '2014-01-01' AND cdate <= '2014-12-31'", {"INDEX by_cdate (cdate>? AND cdate<?)"}},
            {"docid in (1,2,3,4,5,6,7,8,9)", {"INTEGER PRIMARY KEY (rowid=?)", "json_each"}},
            {"bemerkung::varchar ilike '%a%miete_%'::varchar",
             {"INTEGER PRIMARY KEY (rowid=?)", "trigrams_bemerkung"}},
            {"to_tsvector(bemerkung) @@ to_tsquery('inv:*')",
             {"INTEGER PRIMARY KEY (rowid=?)", "words_bemerkung"}},
            {"bemerkung not ilike '%miete%'", {"SCAN d"}},
        };
        for (const auto &[clause, expected] : table) {
            const auto condition =
                kelva::translateClause(clause, m_table.fields(ClauseTable::Indexes::With), m_table.today());
            QVERIFY(condition);
            const QString plan = m_table.plan(condition.value());
            for (const QString &part : expected)
                QVERIFY2(plan.contains(part), qPrintable(condition.value().sql + "\n" + plan));
            QCOMPARE(plan.contains("SCAN d"), expected.contains("SCAN d"));
        }
    }

    void textsOfAClauseNeverBecomeSql()
    {
        const auto condition = kelva::translateClause(
            "bemerkung ilike '%zzz1%' or bemerkung = 'zzz2' or attr9 in (4711, '4712') or "
            "cdate > 'zzz3' or 'zzz4' = folder"
            " or to_tsvector(bemerkung) @@ to_tsquery('zzz5 & zzz6') or changeid in "
            "('zzz7') or folder like 'zzz8%'",
            m_table.fields(ClauseTable::Indexes::With), m_table.today());
        QVERIFY(condition);
        QVERIFY2(!condition.value().sql.contains("zzz") && !condition.value().sql.contains("471"),
                 qPrintable(condition.value().sql));
        QCOMPARE(condition.value().sql.count('?'), condition.value().values.size());
    }
};

KELVA_TEST(TestClauseLimits)
#include "testclauselimits.moc"
