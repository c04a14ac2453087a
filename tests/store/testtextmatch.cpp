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

    QStringList column(const QString &sql) const;

private slots:
    void init();
    void cleanup();
    void charactersFoldAsInTheTrigramTable();
    void charactersSplitWordsAsInTheWordTable();
    void malformedBytesMatchAsReplacementCharacters_data();
    void malformedBytesMatchAsReplacementCharacters();
    void numbersAsText_data();
    void numbersAsText();
    void runsForTheTrigramTable_data();
    void runsForTheTrigramTable();
    void functionsTakeWhatTheDatabaseHolds_data();
    void functionsTakeWhatTheDatabaseHolds();
};

void TestTextMatch::init()
{
    QCOMPARE(sqlite3_open(":memory:", &m_database), SQLITE_OK);
    kelva::registerSqlFunctions(m_database);
}

void TestTextMatch::cleanup()
{
    sqlite3_close(m_database);
}

/// First column of all rows, "NULL" for nothing; or what the database says against it.
QStringList TestTextMatch::column(const QString &sql) const
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

void TestTextMatch::charactersFoldAsInTheTrigramTable()
{
    column("CREATE VIRTUAL TABLE trigrams USING fts5(t, tokenize='trigram')");
    column("CREATE VIRTUAL TABLE terms USING fts5vocab(trigrams, instance)");
    column("WITH RECURSIVE c(x) AS (VALUES (1) UNION ALL SELECT x + 1 FROM c WHERE x < 0x1ffff) INSERT INTO "
           "trigrams (rowid, t) SELECT x, char(x, x, x) FROM c WHERE x NOT BETWEEN 0xd800 AND 0xdfff AND x "
           "NOT IN "
           "(0xfeff, 0xfffe, 0xffff)");
    const QStringList folded = column("SELECT doc || ' ' || unicode(term) FROM terms");
    QVERIFY(folded.size() > 120000);
    for (const QString &pair : folded) {
        const uint character = pair.section(' ', 0, 0).toUInt();
        QVERIFY2(kelva::foldedCase(character) == pair.section(' ', 1).toUInt(), qPrintable(pair));
    }
}

void TestTextMatch::charactersSplitWordsAsInTheWordTable()
{
    column("CREATE VIRTUAL TABLE words USING fts5(t, tokenize='unicode61 remove_diacritics 0')");
    column("CREATE VIRTUAL TABLE terms USING fts5vocab(words, instance)");
    column("WITH RECURSIVE c(x) AS (VALUES (1) UNION ALL SELECT x + 1 FROM c WHERE x < 0x1ffff) INSERT INTO "
           "words (rowid, t) SELECT x, char(x) || ' a' || char(x) || 'Z' FROM c WHERE x NOT BETWEEN 0xd800 "
           "AND 0xdfff "
           "AND x NOT IN (0xfeff, 0xfffe, 0xffff)");
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

void TestTextMatch::malformedBytesMatchAsReplacementCharacters_data()
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

void TestTextMatch::malformedBytesMatchAsReplacementCharacters()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, expected);
    const kelva::CodePoints met = kelva::codePointsOfUtf8(bytes.constData(), bytes.size());
    QCOMPARE(QString::fromUcs4(met.constData(), met.size()), expected);
    QVERIFY(kelva::LikePattern(expected, Qt::CaseSensitive).matches(met));
}

void TestTextMatch::numbersAsText_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QStringList>("expected");
    const QMap<QString, QString> table{
        {"12.50", "12.5"},    {"-0.0", "0"},    {"1e15", "1000000000000000"},     {"-2.5e-7", "-0.00000025"},
        {"'12.50'", "12.50"}, {"NULL", "NULL"}, {"123456789.01", "123456789.01"},
    };
    for (auto row = table.begin(); row != table.end(); ++row)
        kelvatest::row(qPrintable(row.key()), row.key(), QStringList(row.value()));
}

void TestTextMatch::numbersAsText()
{
    QFETCH(QString, number);
    QFETCH(QStringList, expected);
    QCOMPARE(column("SELECT kelva_number_text(" + number + ")"), expected);
    QCOMPARE(column("SELECT typeof(kelva_number_text(" + number + "))"),
             QStringList(number == "NULL" ? "null" : "text"));
}

void TestTextMatch::runsForTheTrigramTable_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("run");
    kelvatest::row("longest run wins", "%ab_rent%invoice%x%", "invoice");
    kelvatest::row("the first of equals", "%abc%xyz%", "abc");
    kelvatest::row("at the end", "%a%rent", "rent");
    kelvatest::row("too short", "%ab%cd_ef%", "");
    kelvatest::row("three characters are counted, not six units", "%😀😀😀%", "😀😀😀");
    kelvatest::row("two are too few", "%😀😀%", "");
    kelvatest::row("long", "%" + QString("a").repeated(1000) + "%", QString("a").repeated(64));
}

void TestTextMatch::runsForTheTrigramTable()
{
    QFETCH(QString, pattern);
    QFETCH(QString, run);
    QCOMPARE(kelva::trigramRun(pattern), run);
}

void TestTextMatch::functionsTakeWhatTheDatabaseHolds_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("expected");
    const QList<QStringList> table{
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
        {"group_concat(kelva_like(p, 'ab')) FROM (SELECT 'a%' p UNION ALL SELECT 'b%' UNION ALL SELECT '%b')",
         "1,0,1"},
    };
    for (const QStringList &row : table)
        kelvatest::row(qPrintable(row.first()), row.first(), row.last());
}

void TestTextMatch::functionsTakeWhatTheDatabaseHolds()
{
    QFETCH(QString, expression);
    QFETCH(QString, expected);
    QCOMPARE(column("SELECT " + expression), QStringList(expected));
}

KELVA_TEST(TestTextMatch)
#include "testtextmatch.moc"
