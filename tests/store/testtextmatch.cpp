#include "support/kelvatest.h"

#include "store/sqlfunctions.h"
#include "store/textmatch.h"

#include <sqlite3.h>

#include <set>

class TestTextMatch : public QObject
{
    Q_OBJECT

private:
    sqlite3 *m_database = nullptr;

    /// First column of all rows, "NULL" for nothing; or what the database says against it.
    QStringList column(const QString &sql) const
    {
        QStringList result;
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare16_v2(m_database, sql.utf16(), -1, &statement, nullptr);
        int state = SQLITE_ERROR;
        while (statement && (state = sqlite3_step(statement)) == SQLITE_ROW)
            result << (sqlite3_column_type(statement, 0) == SQLITE_NULL
                           ? QString("NULL")
                           : QString::fromUtf8(
                                 reinterpret_cast<const char *>(sqlite3_column_text(statement, 0))));
        sqlite3_finalize(statement);
        return state == SQLITE_DONE ? result : QStringList(sqlite3_errmsg(m_database));
    }

private slots:
    void init()
    {
        QCOMPARE(sqlite3_open(":memory:", &m_database), SQLITE_OK);
        kelva::registerSqlFunctions(m_database);
    }

    void cleanup() { sqlite3_close(m_database); }

    void charactersFoldAsInTheTrigramTable()
    {
        column("CREATE VIRTUAL TABLE trigrams USING fts5(t, tokenize='trigram')");
        column("CREATE VIRTUAL TABLE terms USING fts5vocab(trigrams, instance)");
        column(
            "WITH RECURSIVE c(x) AS (VALUES (1) UNION ALL SELECT x + 1 FROM c WHERE x < 0x1ffff) INSERT INTO "
            "trigrams (rowid, t) SELECT x, char(x, x, x) FROM c WHERE x NOT BETWEEN 0xd800 AND 0xdfff "
            "AND x NOT IN (0xfeff, 0xfffe, 0xffff)");
        const QStringList folded = column("SELECT doc || ' ' || unicode(term) FROM terms");
        QVERIFY(folded.size() > 120000);
        for (const QString &pair : folded) {
            const uint character = pair.section(' ', 0, 0).toUInt();
            QVERIFY2(kelva::foldedCase(character) == pair.section(' ', 1).toUInt(), qPrintable(pair));
        }
    }

    void charactersSplitWordsAsInTheWordTable()
    {
        column("CREATE VIRTUAL TABLE words USING fts5(t, tokenize='unicode61 remove_diacritics 0')");
        column("CREATE VIRTUAL TABLE terms USING fts5vocab(words, instance)");
        column(
            "WITH RECURSIVE c(x) AS (VALUES (1) UNION ALL SELECT x + 1 FROM c WHERE x < 0x1ffff) INSERT INTO "
            "words (rowid, t) SELECT x, char(x) || ' a' || char(x) || 'Z' FROM c WHERE x NOT BETWEEN "
            "0xd800 AND 0xdfff AND x NOT IN (0xfeff, 0xfffe, 0xffff)");
        QMap<uint, QString> terms;
        for (const QString &pair : column("SELECT doc || ' ' || term FROM terms ORDER BY doc, offset"))
            terms[pair.section(' ', 0, 0).toUInt()] += '|' + pair.section(' ', 1);
        QVERIFY(terms.size() > 120000);
        // Vowel signs of two scripts, whose category has changed over time.
        std::set<uint> known{0x1885, 0x1886, 0x19c8, 0x19c9, 0x1cf2, 0x1cf3};
        for (uint character = 0x19b0; character <= 0x19c0; ++character)
            known.insert(character);
        for (auto term = terms.begin(); term != terms.end(); ++term) {
            QString words;
            const QString text = QString::fromUcs4(&term.key(), 1);
            for (const QString &word : kelva::wordsOf(text + " a" + text + "Z"))
                words += '|' + word;
            if (known.count(term.key()) == 0)
                QVERIFY2(words == term.value(), qPrintable(QString::number(term.key(), 16) + term.value()));
        }
    }

    void malformedBytesMatchAsReplacementCharacters_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        kelvatest::row("well-formed", QByteArray("a\xc3\xb6\xe6\x97\xa5\xf0\x9f\x98\x80"), QString("aö日😀"));
        kelvatest::row("cut off", QByteArray("a\xe6\x97"), QString("a\uFFFD\uFFFD"));
        kelvatest::row("continuation alone",
                       QByteArray("\x80\xbf"
                                  "a"),
                       QString("\uFFFD\uFFFDa"));
        kelvatest::row("lead without continuation", QByteArray("\xc3(\xf0\x9f("),
                       QString("\uFFFD(\uFFFD\uFFFD("));
        kelvatest::row("no lead byte", QByteArray("\xff\xfe\xc0\x80"), QString("\uFFFD\uFFFD\uFFFD\uFFFD"));
    }

    void malformedBytesMatchAsReplacementCharacters()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        const kelva::CodePoints met = kelva::codePointsOfUtf8(bytes.constData(), bytes.size());
        QCOMPARE(QString::fromUcs4(met.constData(), met.size()), expected);
        QVERIFY(kelva::LikePattern(expected, Qt::CaseSensitive).matches(met));
    }

    void functionsTakeWhatTheDatabaseHolds_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("expected");
        const QList<QStringList> table{
            {"kelva_number_text(NULL)", "NULL"},
            {"kelva_number_text('12.50')", "12.50"},
            {"kelva_number_text(12.50)", "12.5"},
            {"kelva_number_text(-0.0)", "0"},
            {"kelva_number_text(1e15)", "1000000000000000"},
            {"kelva_number_text(-2.5e-7)", "-0.00000025"},
            {"kelva_number_text(123456789.01)", "123456789.01"},
            {"typeof(kelva_number_text(7))", "text"},
            {"kelva_like('%', NULL)", "NULL"},
            {"kelva_words('a', NULL)", "NULL"},
            {"kelva_like('1_', 12)", "1"},
            {"kelva_ilike('ÄÖ%', 'äö')", "1"},
            {"kelva_like('ÄÖ%', 'äö')", "0"},
            {"kelva_ilike('%ss', 'ß')", "0"},
            {"kelva_like('', zeroblob(0))", "1"},
            {"kelva_like('a_c', x'61ff63')", "1"},
            {"kelva_like('a\\%', 'a%')", "0"},
            {"kelva_words('b:* & a', 'A-Bc')", "1"},
            {"kelva_words('e' || char(0x301), 'E' || char(0x301))", "1"},
            // A pattern of its own for each row is not mistaken for a constant
            {"group_concat(kelva_like(p, 'ab')) FROM (SELECT 'a%' p UNION ALL SELECT 'b%' UNION ALL SELECT "
             "'%b')",
             "1,0,1"},
        };
        for (const QStringList &row : table)
            kelvatest::row(qPrintable(row.first()), row.first(), row.last());
    }

    void functionsTakeWhatTheDatabaseHolds()
    {
        QFETCH(QString, expression);
        QFETCH(QString, expected);
        QCOMPARE(column("SELECT " + expression), QStringList(expected));
    }
};

KELVA_TEST(TestTextMatch)
#include "testtextmatch.moc"
