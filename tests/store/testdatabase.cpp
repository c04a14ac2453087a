#include "support/kelvatest.h"
#include "support/outside.h"

#include "store/database.h"
#include "store/password.h"
#include "store/schema.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <functional>

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kelva;

Q_DECLARE_METATYPE(kelva::ErrorCode)

namespace {

constexpr int shortWaitMs = 50;

ErrorCode codeOf(const Result<std::unique_ptr<Database>> &result)
{
    return result ? ErrorCode::NotAvailable : result.error().code;
}

template<typename... Arguments>
std::unique_ptr<Database> ready(Arguments &&...arguments)
{
    auto opened = Database::open(std::forward<Arguments>(arguments)...);
    if (!opened)
        qFatal("%s", qPrintable(opened.error().text));
    return std::move(opened.value());
}

/// A database file that this library had no hand in.
void makeForeign(const QString &path, const QByteArray &sql)
{
    sqlite3 *database = nullptr;
    QCOMPARE(sqlite3_open(QFile::encodeName(path).constData(), &database), SQLITE_OK);
    QCOMPARE(sqlite3_exec(database, sql.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

/// Another process that opens the archive when it is told to, runs a statement and leaves.
class Visitor
{
public:
    Visitor(const QString &path, const char *sql)
    {
        if (::pipe(m_start) != 0 || (m_process = ::fork()) != 0)
            return;
        char start = 0;
        bool done = ::read(m_start[0], &start, 1) == 1;
        if (done) {
            const auto database = Database::open(path, Database::Mode::ReadWrite);
            done = database.ok() && database.value()->run(QString::fromLatin1(sql));
        }
        ::_exit(done ? 0 : 1);
    }
    bool visit() const
    {
        int status = 0;
        return ::write(m_start[1], "x", 1) == 1 && ::waitpid(m_process, &status, 0) == m_process &&
               WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    int m_start[2] = {-1, -1};
    pid_t m_process = -1;
};

} // namespace

class TestDatabase : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_path = m_directory->filePath("new/7.kelva");
    }

    void aNewArchiveIsForItsOwnerOnly()
    {
        create().reset();
        const QFile::Permissions others(0x77);
        QVERIFY(!(QFile::permissions(m_path) & others));
        QVERIFY(!(QFile::permissions(m_directory->filePath("new")) & others));
        QCOMPARE(codeOf(Database::open(m_path, Database::Mode::Create)), ErrorCode::Storage);
    }

    void whatIsNoArchiveIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("sql");
        QTest::addColumn<ErrorCode>("code");
        const QByteArray noise = QByteArray("\1no archive\xff").repeated(400);
        const QByteArray ours = "PRAGMA application_id=1265399393; CREATE TABLE t(a); ";
        kelvatest::row("an empty file", QByteArray(""), QByteArray(), ErrorCode::NotAnArchive);
        kelvatest::row("noise", noise, QByteArray(), ErrorCode::NotAnArchive);
        kelvatest::row("the database of another program", QByteArray(),
                       QByteArray("CREATE TABLE account(id)"), ErrorCode::NotAnArchive);
        kelvatest::row("an archive of a newer version", QByteArray(), ours + "PRAGMA user_version=9999",
                       ErrorCode::WrongVersion);
        kelvatest::row("an archive of a version below all", QByteArray(), ours + "PRAGMA user_version=-3",
                       ErrorCode::NotAnArchive);
        kelvatest::row("an archive that was never completed", QByteArray(), ours, ErrorCode::NotAnArchive);
    }

    void whatIsNoArchiveIsRefused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, sql);
        QFETCH(ErrorCode, code);
        const QString path = m_directory->filePath("other.kelva");
        if (sql.isEmpty())
            outside::write(path, bytes);
        else
            makeForeign(path, sql);
        for (const auto mode : {Database::Mode::ReadWrite, Database::Mode::ReadOnly}) {
            const auto opened = Database::open(path, mode);
            QCOMPARE(codeOf(opened), code);
            QVERIFY(!opened.error().text.isEmpty());
        }
    }

    void aMissingFileIsNotMade()
    {
        QCOMPARE(codeOf(Database::open(m_path, Database::Mode::ReadWrite)), ErrorCode::NotFound);
        QVERIFY(!QFile::exists(m_path));
    }

    void aDamagedArchiveIsReportedNotTrusted()
    {
        create().reset();
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.seek(4096);
        file.write(QByteArray(static_cast<int>(file.size()) - 4096, '\x5a'));
        file.close();
        const auto opened = Database::open(m_path, Database::Mode::ReadWrite);
        QVERIFY(!opened || !opened.value()->integrityFaults().isEmpty());
    }

    void aCheckThatCannotBeFinishedIsAFault_data()
    {
        QTest::addColumn<QByteArray>("sql");
        QTest::addColumn<QString>("fault");
        QTest::newRow("the referenced table has lost its key")
            << QByteArray("DROP TABLE blob; CREATE TABLE blob(id, size, sha256, touched);"
                          "CREATE INDEX blob_unfinished ON blob(touched) WHERE touched IS NOT NULL")
            << "The archive reported an error (1).";
        QTest::newRow("an index is gone")
            << QByteArray("DROP INDEX event_place") << "The archive lacks the index event_place.";
        QTest::newRow("an attribute has no column")
            << QByteArray("INSERT INTO attribute(id, name, kind) VALUES(7, 'a', 'String')")
            << "The archive lacks the column of the attribute 7.";
    }

    void aCheckThatCannotBeFinishedIsAFault()
    {
        QFETCH(QByteArray, sql);
        create().reset();
        makeForeign(m_path, sql);
        const auto opened = ready(m_path, Database::Mode::ReadWrite);
        QTEST(opened->integrityFaults().join('|'), "fault");
    }

    void aLockedArchiveSaysSo()
    {
        const auto first = create();
        const auto second = ready(m_path, Database::Mode::ReadWrite, shortWaitMs);
        Transaction holding(*first, Transaction::Kind::Write);
        Transaction waiting(*second, Transaction::Kind::Write);
        second->run("INSERT INTO role VALUES('x')");
        const Result<void> done = waiting.commit();
        QCOMPARE(done.error().code, ErrorCode::Busy);
    }

    void aReaderKeepsItsStateWhileAnotherWrites()
    {
        const auto writer = create();
        const auto reader = ready(m_path, Database::Mode::ReadWrite);
        const QString count = "SELECT count(*) FROM role";
        Transaction reading(*reader, Transaction::Kind::Read);
        QCOMPARE(reader->value(count).toInt(), 0);
        QVERIFY(writer->run("INSERT INTO role VALUES('x')"));
        QCOMPARE(reader->value(count).toInt(), 0);
        QVERIFY(reading.commit().ok());
        QCOMPARE(reader->value(count).toInt(), 1);
    }

    void oneFailedStatementTakesTheTransactionBack()
    {
        const auto database = create();
        {
            Transaction writing(*database, Transaction::Kind::Write);
            QVERIFY(database->run("INSERT INTO role VALUES('good')"));
            QVERIFY(!database->run("INSERT INTO role VALUES('good')"));
            QVERIFY(!database->run("INSERT INTO role VALUES('late')"));
            const Result<void> done = writing.commit();
            QVERIFY(!done.ok());
            QCOMPARE(done.error().code, ErrorCode::BadInput);
        }
        QCOMPARE(database->texts("SELECT name FROM role"), QStringList());
    }

    void whatIsWrittenBehindIsSeenByOthersAndChangesNothingForTheNext()
    {
        const auto database = create();
        const auto other = ready(m_path, Database::Mode::ReadWrite, shortWaitMs);
        const auto waitsForDisk = [&] { return database->value("PRAGMA synchronous") == 2; };
        const auto add = [&](bool keep) {
            Transaction writing(*database, Transaction::Kind::WriteBehind);
            database->run("INSERT INTO role VALUES('x')");
            return keep && writing.commit().ok();
        };
        QVERIFY(!add(false));
        QVERIFY(waitsForDisk());
        QVERIFY(add(true));
        QVERIFY(waitsForDisk());
        QCOMPARE(other->value("SELECT count(*) FROM role").toInt(), 1);
        QVERIFY(!add(true)); // there already
        QVERIFY(waitsForDisk());
        const Transaction holding(*other, Transaction::Kind::Write);
        QVERIFY(!add(true));
        QVERIFY(waitsForDisk());
    }

    void anInnerOperationThatFailsTakesTheOuterOneBack()
    {
        const auto database = create();
        {
            Transaction outer(*database, Transaction::Kind::Write);
            database->run("INSERT INTO role VALUES('outer')");
            {
                Transaction inner(*database, Transaction::Kind::Write);
                database->run("INSERT INTO role VALUES('inner')");
            }
            QVERIFY(!outer.commit().ok());
        }
        QCOMPARE(database->value("SELECT count(*) FROM role").toInt(), 0);
    }

    void otherStatementsDoNotCutRowsShort()
    {
        const auto database = create();
        database->run("INSERT INTO role VALUES('a'), ('b')");
        QString met;
        for (Query row = database->query("SELECT name FROM role ORDER BY name"); row.next();) {
            QVERIFY(database->run("DELETE FROM role"));
            met += row.text(0);
        }
        QCOMPARE(met, QString("ab"));
        // Where rows come one by one, a statement between them is an error, not the end of the rows.
        const auto readAnother = [&](const Row &) { database->value("SELECT 1"); };
        QVERIFY(!database->forEachRow("SELECT name FROM counter", {}, readAnother));
    }

    void aReadOnlyArchiveLeavesNoTraceBesideIt()
    {
        create().reset();
        const QDir directory(m_directory->filePath("new"));
        QFile::setPermissions(m_path, QFile::ReadOwner);
        QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::ExeOwner);
        {
            const auto opened = ready(m_path, Database::Mode::ReadOnly);
            QCOMPARE(opened->value("SELECT count(*) FROM counter").toInt(), 1);
            QVERIFY(!opened->run("INSERT INTO role VALUES('x')"));
            QCOMPARE(directory.entryList(QDir::Files), QStringList{"7.kelva"});
        }
        QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void aFullDiskSaysSoAndKeepsWhatWasThere()
    {
        const auto database = create();
        database->run("PRAGMA max_page_count = " +
                      QString::number(database->value("PRAGMA page_count").toInt() + 4));
        {
            Transaction writing(*database, Transaction::Kind::Write);
            for (int i = 0; i < 100; ++i)
                database->run("INSERT INTO setting(section, name, value) VALUES('', ?, zeroblob(5000))", {i});
            const Result<void> done = writing.commit();
            QCOMPARE(done.error().code, ErrorCode::Storage);
            QVERIFY(done.error().text.contains("disk is full"));
        }
        QCOMPARE(database->value("SELECT count(*) FROM setting").toInt(), 0);
        QCOMPARE(database->integrityFaults(), QStringList());
    }

    void aProcessKilledWhileWritingLosesOnlyWhatItHadNotCommitted()
    {
        create().reset();
        const pid_t child = ::fork();
        if (child == 0) {
            const auto database = ready(m_path, Database::Mode::ReadWrite);
            database->run("INSERT INTO role VALUES('committed')");
            Transaction writing(*database, Transaction::Kind::Write);
            for (int i = 0; i < 2000; ++i)
                database->run("INSERT INTO setting(section, name, value) VALUES('s', ?, zeroblob(9000))",
                              {i});
            ::kill(::getpid(), SIGKILL);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        const auto database = ready(m_path, Database::Mode::ReadWrite);
        QCOMPARE(database->texts("SELECT name FROM role"), QStringList{"committed"});
        QCOMPARE(database->value("SELECT count(*) FROM setting").toInt(), 0);
        QCOMPARE(database->integrityFaults(), QStringList());
    }

    void anArchiveTornInWritingItsLogBackIsOpened()
    {
        const QString torn = m_directory->filePath("torn.kelva");
        auto database = create();
        database->run("PRAGMA wal_checkpoint");
        database->run("INSERT INTO setting(section, name, value) VALUES('s', 'n', zeroblob(500000))");
        QVERIFY(QFile::copy(m_path, torn));
        QVERIFY(QFile::copy(m_path + "-wal", torn + "-wal"));
        database.reset(); // writes the log back, the first page first
        QFile whole(m_path);
        QFile part(torn);
        QVERIFY(whole.open(QIODevice::ReadOnly) && part.open(QIODevice::ReadWrite));
        QVERIFY(part.size() < whole.size() && part.write(whole.read(4096)) == 4096);
        part.close();
        const auto opened = ready(torn, Database::Mode::ReadWrite);
        QCOMPARE(opened->value("SELECT count(*) FROM setting").toInt(), 1);
        QCOMPARE(opened->integrityFaults(), QStringList());
    }

    void anotherProgramThatLeavesTakesNothingWithIt()
    {
        // Before this process opens the archive: a connection must not be taken along into a child.
        Visitor first(m_path, "INSERT INTO role VALUES('elsewhere')");
        Visitor second(m_path, "UPDATE role SET name = 'seen' WHERE name = 'after'");
        const auto database = create();
        // A second connection of this process comes and goes.
        Database::open(m_path, Database::Mode::ReadWrite).value().reset();
        QVERIFY(database->run("INSERT INTO role VALUES('before')"));
        QVERIFY(first.visit());
        QVERIFY(database->run("INSERT INTO role VALUES('after')"));
        QVERIFY(second.visit());
        QCOMPARE(database->texts("SELECT name FROM role ORDER BY name"),
                 (QStringList{"before", "elsewhere", "seen"}));
    }

    void everyOldVersionIsUpgraded()
    {
        for (int version = 1; version <= schema::currentVersion(); ++version) {
            const QString path = m_directory->filePath(QString("v%1.kelva").arg(version));
            {
                const auto old = ready(path, Database::Mode::Create, shortWaitMs, version);
                QCOMPARE(old->value("PRAGMA user_version").toInt(), version);
                for (const char *sql :
                     {"INSERT INTO role VALUES('kept')",
                      "INSERT INTO account(id, login, password) VALUES(7, 'anna', '')",
                      "INSERT INTO event(document, action, time, login) VALUES(1, 0, '', 'anna')"})
                    QVERIFY(old->run(sql));
            }
            const auto opened = ready(path, Database::Mode::ReadWrite);
            QCOMPARE(opened->value("PRAGMA user_version").toInt(), schema::currentVersion());
            QCOMPARE(opened->texts("SELECT name FROM role"), QStringList{"kept"});
            QCOMPARE(opened->texts("SELECT account FROM event"), QStringList(version < 3 ? "7" : ""));
            QCOMPARE(opened->integrityFaults(), QStringList());
        }
    }

    void aBackupOfAnArchiveInUseIsComplete()
    {
        const auto database = create();
        database->run("INSERT INTO role VALUES('kept')");
        const auto busy = ready(m_path, Database::Mode::ReadWrite);
        Transaction writing(*busy, Transaction::Kind::Write);
        busy->run("INSERT INTO role VALUES('not yet')");
        const QString target = m_directory->filePath("copy.kelva");
        QVERIFY(database->backupTo(target).ok());
        QCOMPARE(database->backupTo(target).error().code, ErrorCode::Storage);
        const auto copy = ready(target, Database::Mode::ReadOnly);
        QCOMPARE(copy->texts("SELECT name FROM role"), QStringList{"kept"});
    }

    void fullTextFollowsTheTexts()
    {
        const auto database = create();
        database->run("INSERT INTO subarchive(id, name) VALUES(1, 'a')");
        database->run("INSERT INTO document(id, subarchive, file_name, creator, created)"
                      " VALUES(1, 1, 'f', 'u', 't')");
        database->run("INSERT INTO classification(document, subarchive, creator, changeid, ctimestamp,"
                      " bemerkung) VALUES(1, 1, 'u', 'u', 't', 'Grüße vom Amt')");
        schema::addAttributeColumn(*database, 5, "TEXT NOT NULL DEFAULT ''", true, true);
        const auto hits = [&](const char *table, const char *words) {
            return database->numbers(QString("SELECT 1 FROM %1(?)").arg(table), {words}).size();
        };
        QCOMPARE(hits("words_bemerkung", "GRÜSSE OR grüße"), 1);
        QCOMPARE(hits("words_bemerkung", "gruße"), 0);
        QCOMPARE(hits("trigrams_bemerkung", "\"vom A\""), 1);
        database->run("UPDATE classification SET bemerkung = 'anders', attr5 = 'Kunde'");
        QCOMPARE(hits("words_bemerkung", "amt"), 0);
        QCOMPARE(hits("words_attr5", "kunde"), 1);
        database->run("UPDATE classification SET bemerkung = '', attr5 = ''");
        QCOMPARE(hits("words_bemerkung", "anders"), 0);
        QCOMPARE(database->integrityFaults(), QStringList());
        database->run("INSERT INTO words_bemerkung(rowid, bemerkung) VALUES(1, 'ghost')");
        QVERIFY(!database->integrityFaults().isEmpty());
    }

    void aStatementThatTakesTooLongIsStopped()
    {
        const auto database = create();
        const QString upTo = QString("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                     "WHERE i < %1) SELECT sum(i) FROM n");
        const QString endless = upTo.arg(QString("1e18"));
        const auto codeAfter = [&](const std::function<void()> &work) {
            Transaction reading(*database, Transaction::Kind::Read);
            const TimeLimit limit(*database, shortWaitMs);
            work();
            const Result<void> done = reading.commit();
            return done ? ErrorCode::NotAvailable : done.error().code;
        };
        QCOMPARE(codeAfter([&] { database->value(endless); }), ErrorCode::TooSlow);
        QCOMPARE(codeAfter([&] { database->numbers(endless); }), ErrorCode::TooSlow);
        // Steps that are used up before are no failure, and leave the limit in force for the next statement.
        QCOMPARE(codeAfter([&] {
                     QVERIFY(!database->numbersWithin(20'000, endless, {}));
                     QVERIFY(database->numbersWithin(100'000, upTo.arg(10), {}) == QVector<qint64>{55});
                 }),
                 ErrorCode::NotAvailable);
        QCOMPARE(codeAfter([&] {
                     QVERIFY(!database->numbersWithin(20'000, endless, {}));
                     database->value(endless);
                 }),
                 ErrorCode::TooSlow);
        // A transaction that is committed takes its own limit along, whatever was set within it.
        std::optional<TimeLimit> outer(std::in_place, *database, 0);
        std::optional<TimeLimit> inner(std::in_place, *database, 60'000);
        outer.reset();
        inner.reset();
        QCOMPARE(database->value(QStringLiteral("SELECT 7")).toInt(), 7);
        // A first row that only comes after sorting is given up for.
        const QString some = QString("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                     "WHERE i < 9999) SELECT i FROM n %1 LIMIT 2");
        QVERIFY(database->numbersWithin(1'000'000, some.arg(QString()), {}, 1'000) ==
                QVector<qint64>({1, 2}));
        QVERIFY(!database->numbersWithin(1'000'000, some.arg("ORDER BY i % 9999"), {}, 1'000));
        // The earlier of two limits counts, and nothing begins after it.
        QCOMPARE(codeAfter([&] {
                     const TimeLimit longer(*database, 60'000);
                     database->value(endless);
                 }),
                 ErrorCode::TooSlow);
        QCOMPARE(database->value(upTo.arg(1'000'000)).toLongLong(), 500'000'500'000);
        QVERIFY(!database->failed());
    }

    void aFullTextSearchThatTakesTooLongIsStopped()
    {
        const auto database = create();
        database->run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000)"
                      " INSERT INTO words_bemerkung(rowid, bemerkung) SELECT i, 'all' FROM n");
        // Seconds of work in a single step of the statement, and no hit.
        const QString expression =
            '(' + QStringList(QVector<QString>(300, "all").toList()).join(" AND ") + ") NOT all";
        const auto search = [&](qint64 ms) {
            Transaction reading(*database, Transaction::Kind::Read);
            const TimeLimit limit(*database, ms);
            database->numbers("SELECT rowid FROM words_bemerkung(?)", {expression});
            return reading.commit();
        };
        QElapsedTimer clock;
        clock.start();
        const Result<void> stopped = search(shortWaitMs);
        QCOMPARE(stopped.error().code, ErrorCode::TooSlow);
        const qint64 soon = clock.restart();
        QVERIFY(search(60'000).ok());
        QVERIFY2(soon * 3 < clock.elapsed(), qPrintable(QString("%1 %2").arg(soon).arg(clock.elapsed())));
    }

    void passwordsAreSaltedAndCompared()
    {
        const QString hash = hashPassword("pässword");
        QVERIFY(hash.startsWith("$argon2id$") && hash != hashPassword("pässword"));
        QVERIFY(isPassword("pässword", hash) && !isPassword("password", hash));
        QVERIFY(!isPassword(QString(), QString()));
    }

private:
    std::unique_ptr<Database> create() const { return ready(m_path, Database::Mode::Create); }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_path;
};

KELVA_TEST(TestDatabase)
#include "testdatabase.moc"
