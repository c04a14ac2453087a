#include "clauseevaluator.h"
#include "clausegenerator.h"
#include "clausetable.h"
#include "support/kelvatest.h"

#include "clause/clauseparser.h"

/// The SQL of made-up clauses against their meaning. KELVA_CLAUSES sets how many are tried, KELVA_SEED where
/// they begin.
class TestClauseRandom : public QObject
{
    Q_OBJECT

private:
    const int m_count = ClauseGenerator::setting("KELVA_CLAUSES", 3000);
    const quint32 m_seed = quint32(ClauseGenerator::setting("KELVA_SEED", 4711));
    QList<QVariantMap> m_rows = ClauseTable::documents() + ClauseGenerator(1).rows(25, 9);
    const ClauseTable m_table{m_rows};
    ClauseEvaluator m_evaluator{ClauseTable::types(), ClauseTable::today()};

    /// Empty when the database finds the expected rows, or the clause is refused where it has to be.
    QString fault(const QString &clause, const std::optional<QList<int>> &expected) const
    {
        for (const auto indexes : {ClauseTable::Indexes::With, ClauseTable::Indexes::Without}) {
            const auto condition = kelva::translateClause(clause, m_table.fields(indexes), m_table.today());
            if (!condition) {
                if (expected)
                    return clause + "\n" + condition.error().text;
                continue;
            }
            const QString sql = clause + "\n" + condition.value().sql;
            if (!expected)
                return sql + "\nshould be refused";
            const QList<int> found = m_table.ids(condition.value());
            if (found == QList<int>{-1})
                return sql + "\n" + m_table.lastError();
            if (found != *expected)
                return QString("%1\n%2 rows, expected %3").arg(sql).arg(found.size()).arg(expected->size());
        }
        return {};
    }

private slots:
    void clausesOfTheGrammarFindWhatTheyMean()
    {
        ClauseGenerator generator(m_seed);
        int accepted = 0;
        for (int i = 0; i < m_count; ++i) {
            const kelva::ClauseNode tree = generator.tree(i % 4);
            const auto expected = m_evaluator.ids(tree, m_rows);
            const QString problem = fault(generator.text(tree), expected);
            QVERIFY2(problem.isEmpty(), qPrintable(problem));
            accepted += expected && !expected->isEmpty() && expected->size() < m_rows.size() ? 1 : 0;
        }
        QVERIFY2(accepted > m_count / 5, "too few of the clauses tell rows apart");
    }

    void damagedClausesAreRefusedOrFindWhatWasUnderstood()
    {
        ClauseGenerator generator(m_seed + 1);
        int understood = 0;
        for (int i = 0; i < m_count; ++i) {
            const QString clause = generator.damaged(generator.text(generator.tree(2)));
            const auto tree = kelva::parseClause(clause);
            const auto expected = tree ? m_evaluator.ids(tree.value(), m_rows) : std::nullopt;
            const QString problem = fault(clause, expected);
            QVERIFY2(problem.isEmpty(), qPrintable(problem));
            understood += tree ? 1 : 0;
        }
        QVERIFY(understood > m_count / 20 && understood < m_count);
    }
};

KELVA_TEST(TestClauseRandom)
#include "testclauserandom.moc"
