#include "clauseevaluator.h"
#include "clausegenerator.h"
#include "clausetable.h"
#include "service/testarchive.h"
#include "support/kelvatest.h"

#include "clause/clauseparser.h"
#include "service/attributes.h"
#include "service/documentlist.h"
#include "service/folders.h"
#include "service/records.h"
#include "store/database.h"

#include <QSet>

using namespace kelva;

/// Made-up clauses on an archive, as a user who may not see every folder. KELVA_CLAUSES sets how many are
/// tried, KELVA_SEED where they begin.
class TestHostileClauses : public QObject
{
    Q_OBJECT

private:
    TestArchive m_archive;
    std::unique_ptr<Session> m_session;
    QList<QVariantMap> m_visible; ///< what the user may see, either side of the trash
    QSet<int> m_trashed;
    int m_hidden = 0;
    int m_count = 1000;
    quint32 m_seed = 4711;

    std::optional<QList<int>> found(const QStringList &filters) const;

private slots:
    void initTestCase();
    void noRowBeyondTheRightsAndNoneMissing();
};

void TestHostileClauses::initTestCase()
{
    if (qEnvironmentVariableIsSet("KELVA_CLAUSES"))
        m_count = qEnvironmentVariableIntValue("KELVA_CLAUSES");
    if (qEnvironmentVariableIsSet("KELVA_SEED"))
        m_seed = quint32(qEnvironmentVariableIntValue("KELVA_SEED"));
    const auto owner = m_archive.owner();
    // Folders that the clauses name, one of them closed.
    Records folders;
    for (const char *oid : {"3", "3.1", "3.10", "4"})
        folders.add({oid, "Folder", "0", "", "", "1", "I", ""});
    QVERIFY(Folders(*owner).save(folders).ok());
    QVERIFY(Folders(*owner).setRoles("3.1", {"board"}).ok());
    const QStringList kinds{"String", "String",   "String", "String", "String",
                            "String", "CheckBox", "String", "Numeric"};
    for (const QString &kind : kinds)
        QVERIFY(Attributes(*owner).save({joinFields({"-1", "Field " + kind, kind, "false", "false"})}).ok());

    const QStringList places{"3.1", "3.10", "2.1", "1.1", "3", "1.2.1", "4", "2", "0"};
    const QSet<QString> closed{"3.1", "2.1", "2"};
    Database &database = owner->database();
    const QList<QVariantMap> rows = ClauseTable::documents() + ClauseGenerator(1).rows(35, 9);
    for (int i = 0; i < rows.size(); ++i) {
        const qint64 id = m_archive.addDocument(QString("Document %1").arg(i), "1.1");
        QVariantMap row = rows.at(i);
        row["docid"] = id;
        row["folder"] = places.at(i % places.size());
        for (const QString key : {"status", "docart", "trashed"})
            row[key] = row.value(key).toInt();
        for (const QString key : {"bemerkung", "changeid", "attr5", "attr7"})
            row[key] = row.value(key).toString().isNull() ? QString("") : row.value(key).toString();
        if (row.value("ctimestamp").isNull())
            row["ctimestamp"] = "2014-08-11T00:00:00";
        QStringList changes;
        QVariantList values;
        for (const QString &key : row.keys()) {
            if (key == "docid")
                continue;
            changes << key + " = ?";
            values << row.value(key);
        }
        QVERIFY(
            database.run("UPDATE classification SET " + changes.join(", ") + " WHERE id = ?", values << id));
        // Documents are numbered as their records are.
        QCOMPARE(database.value("SELECT document FROM classification WHERE id = ?", {id}).toLongLong(), id);
        if (row.value("trashed").toInt() == 1)
            m_trashed.insert(int(id));
        if (closed.contains(row.value("folder").toString()))
            ++m_hidden;
        else
            m_visible << row;
    }
    m_archive.addUser("anna", {"kelvaCLASSIFY", "TesmoLogon"});
    m_session = m_archive.login("anna", "secret");
}

/// Document numbers in ascending order; nothing when the filters are refused.
std::optional<QList<int>> TestHostileClauses::found(const QStringList &filters) const
{
    const Result<QStringList> list = listDocuments(*m_session, filters);
    if (!list)
        return std::nullopt;
    QList<int> ids;
    for (int i = 1; i < list.value().size(); ++i)
        ids.prepend(splitFields(list.value().at(i)).value(0).section('#', 0, 0).toInt());
    return ids;
}

void TestHostileClauses::noRowBeyondTheRightsAndNoneMissing()
{
    QVERIFY(m_hidden > 10 && m_visible.size() > 20 && m_trashed.size() > 3);
    ClauseEvaluator evaluator(ClauseTable::types(), m_session->today());
    ClauseGenerator generator(m_seed);
    QSet<int> allowed;
    for (const QVariantMap &row : qAsConst(m_visible))
        allowed.insert(row.value("docid").toInt());
    int compared = 0;
    for (int i = 0; i < m_count; ++i) {
        const QString clause = i % 5 == 0   ? generator.pieces()
                               : i % 5 == 1 ? generator.damaged(generator.text(generator.tree(2)))
                                            : generator.text(generator.tree(i % 4));
        const auto tree = parseClause(clause);
        const auto expected = tree ? evaluator.ids(tree.value(), m_visible) : std::nullopt;
        for (const bool trash : {false, true}) {
            QStringList filters{clause};
            if (trash)
                filters << "OPT:TRASH";
            if (i % 2 == 0)
                filters << "OPT:LIMIT;1000";
            const auto ids = found(filters);
            for (const int id : ids.value_or(QList<int>()))
                QVERIFY2(allowed.contains(id) && m_trashed.contains(id) == trash, qPrintable(clause));
            if (!expected)
                continue; // may still name a field that only an archive has
            QList<int> side;
            for (const int id : *expected)
                if (m_trashed.contains(id) == trash)
                    side << id;
            QVERIFY2(ids && *ids == side, qPrintable(clause));
            compared += side.isEmpty() ? 0 : 1;
        }
    }
    QVERIFY2(compared > m_count / 5, "too few of the clauses find anything");
}

KELVA_TEST(TestHostileClauses)
#include "testhostileclauses.moc"
