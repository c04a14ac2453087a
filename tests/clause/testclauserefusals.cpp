#include "clausetable.h"
#include "support/kelvatest.h"

class TestClauseRefusals : public QObject
{
    Q_OBJECT

private:
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
    void charactersThatAreNoneAreRefused()
    {
        const QString expected =
            "The search condition is wrong at position 14: there is a character that no text can hold.";
        for (const ushort unit : {0, 0xd800, 0xdc00, 0xfffe, 0xffff})
            QCOMPARE(refusal("changeid = 'a" + QString(QChar(unit)) + "z'"), expected);
        QVERIFY(refusal("changeid = 'a\U0001F600z'").startsWith("accepted"));
    }

    void refusedWithTheirPlace_data()
    {
        QTest::addColumn<QString>("clause");
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("reason");
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
            {"(status = 2", 12, "AND, OR or \")\" is expected, but the end was met"},
            {"status == 2", 9, "a field or a value is expected, but \"=\" was met"},
            {"status = 2; drop table documents", 11, "AND, OR or the end is expected, but \";\" was met"},
            {"status in ()", 12, "a value is expected, but \")\" was met"},
            {"status in (1", 13, "\",\" or \")\" is expected, but the end was met"},
            {"status::integer = 1", 9, "varchar is expected, but \"integer\" was met"},
            {"to_tsvector(bemerkung) = 'a'", 24, "\"@@\" is expected, but \"=\" was met"},
            {"to_tsvector(bemerkung) @@ to_tsquery(a)", 38, "a quoted text is expected, but \"a\" was met"},
            {"to_tsvector(bemerkung) @@ to_tsquery('- &  & ')", 38,
             "a word is missing beside \"&\" or the query is empty"},
            {"docart = 'abc'", 10, "'abc' is no number"},
            {"docart = 1e", 10, "a field or a value is expected, but \"1\" was met"},
            {"attr9 = .", 9, "a field or a value is expected, but \".\" was met"},
            {"attr9 = 'nan' or attr9 = 'inf'", 9, "'nan' is no number"},
            {"trashed = 'maybe'", 11, "'maybe' is neither true nor false"},
            {"trashed = 1", 1, "trashed cannot be compared with 1"},
            {"defdate <= '[HEUTE-9999999]'", 12, "the date macro leads out of the calendar"},
            {"changeid = 'a\xef\xbb\xbfz'", 14, "there is a character that no text can hold"},
        };
        for (const auto &row : table)
            QTest::newRow(row.clause) << QString::fromUtf8(row.clause) << row.position << QString(row.reason);
    }

    void refusedWithTheirPlace()
    {
        QFETCH(QString, clause);
        QFETCH(int, position);
        QFETCH(QString, reason);
        QCOMPARE(refusal(clause),
                 QString("The search condition is wrong at position %1: %2.").arg(position).arg(reason));
    }
};

KELVA_TEST(TestClauseRefusals)
#include "testclauserefusals.moc"
