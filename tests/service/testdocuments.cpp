#include "support/kelvatest.h"
#include "support/outside.h"

#include "testarchive.h"

#include "contract/recordformat.h"
#include "service/attributes.h"
#include "service/blobs.h"
#include "service/content.h"
#include "service/documentlist.h"
#include "service/documents.h"
#include "service/records.h"
#include "service/subarchives.h"
#include "service/vocabulary.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSysInfo>

#include <unistd.h>

using namespace kelva;

class TestDocuments : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_archive = std::make_unique<TestArchive>();
        m_id = QString::number(m_archive->addDocument("Invoice", "1.1"));
        m_session = m_archive->login();
    }

    void theSecondOfTwoWritersIsRefused()
    {
        const auto other = m_archive->login();
        QStringList mine = fields(*m_session);
        QStringList theirs = fields(*other);
        theirs.replace(1, "Theirs");
        QCOMPARE(textOf(Documents(*other).save(m_id, theirs)), QString());
        mine.replace(1, "Mine");
        const Result<void> saved = Documents(*m_session).save(m_id, mine);
        QVERIFY(!saved.ok());
        QCOMPARE(saved.error().code, ErrorCode::Conflict);
        QCOMPARE(saved.error().text, QString("The entry has been changed by another user in the meantime."));
        QCOMPARE(fields(*m_session).at(1), QString("Theirs"));
        QCOMPARE(fields(*m_session).at(3), QString("1_2"));
    }

    void badFieldsAreRefusedAndChangeNothing_data()
    {
        QTest::addColumn<int>("place");
        QTest::addColumn<QString>("value");
        QTest::newRow("a status that does not exist") << 2 << "77";
        QTest::newRow("deleting what is not in the trash") << 2 << "-1";
        QTest::newRow("a folder that does not exist") << 4 << "1.7";
        QTest::newRow("a main folder that is none") << 0 << "x";
        QTest::newRow("a resubmission date of words") << 9 << "tomorrow";
        QTest::newRow("a type that does not exist") << 5 << "12345678901234567890";
        QTest::newRow("a day that does not exist") << 7 << "2021-02-30";
        QTest::newRow("no token") << 3 << "";
        QTest::newRow("the token of another version") << 3 << "1_0";
    }

    void badFieldsAreRefusedAndChangeNothing()
    {
        QFETCH(int, place);
        QFETCH(QString, value);
        const QStringList before = fields(*m_session);
        QStringList record = before;
        record.replace(1, "Changed");
        record.replace(place, value);
        QVERIFY(!Documents(*m_session).save(m_id, record).ok());
        QCOMPARE(fields(*m_session), before);
    }

    void separatorsAndOverlongTextsDoNotGetIn()
    {
        QStringList record = fields(*m_session);
        record.replace(1, QString("a") + recordformat::fieldSeparator + "b" + recordformat::listSeparator +
                              "c" + recordformat::rowSeparator + QChar(0xd83d) + QChar(0xfffe) +
                              QChar(0xffff) + QChar(0xde00) + QChar(0) + "\U0001F600" +
                              QString("d").repeated(10000));
        QCOMPARE(textOf(Documents(*m_session).save(m_id, record)), QString());
        const QString stored = fields(*m_session).at(1);
        QCOMPARE(stored, QString("abc \U0001F600") + QString("d").repeated(248));
        QCOMPARE(splitFields(listDocuments(*m_session, {"1=1"}).value().at(1)).size(), 12);
    }

    void badIdsAreNobody()
    {
        for (const char *id : {"", "-1", "1 OR 1=1", "99999999999999999999"}) {
            QCOMPARE(Documents(*m_session).get(id).error().code, ErrorCode::NotFound);
            QVERIFY(!Documents(*m_session).setTrashed({m_id, id}, true).ok());
        }
        // All or nothing: the good id of the list was left alone.
        QCOMPARE(listDocuments(*m_session, {"1=1", "OPT:TRASH"}).value().size(), 1);
    }

    void everyVersionIsKept()
    {
        const auto made =
            Attributes(*m_session).save({joinFields({"-1", "Amount", "Numeric", "false", "false"})});
        QVERIFY(made.ok());
        for (const char *amount : {"1.5", "123456789012.1234"}) {
            QStringList record = fields(*m_session);
            record.replace(1, QString("Invoice ") + amount);
            record.replace(4, "1.2");
            record.replace(10, QString::fromLatin1(amount));
            m_session->setClock([] { return QDateTime(QDate(2021, 3, 4), QTime(5, 6, 7)); });
            QCOMPARE(textOf(Documents(*m_session).save(m_id, record)), QString());
        }
        const QStringList rows = Documents(*m_session).history(m_id).value();
        QCOMPARE(rows.size(), 3);
        QCOMPARE(splitFields(rows.at(0)),
                 (QStringList{"1#1", "Invoices", "Invoice", "New", "1_1", "Invoices", "not assigned", "admin",
                              "2020-02-03", "2020-02-03T04:05:06", "", ""}));
        QCOMPARE(splitFields(rows.at(2)),
                 (QStringList{"1#1", "Invoices", "Invoice 123456789012.1234", "New", "1_3", "Letters",
                              "not assigned", "admin", "2020-02-03", "2021-03-04T05:06:07", "",
                              "123456789012.1234"}));
    }

    void aColumnAddedMeanwhileDoesNotShiftTheOthers()
    {
        QVERIFY(Attributes(*m_session)
                    .save({joinFields({"-1", "A", "String", "false", "false"}),
                           joinFields({"-1", "B", "String", "false", "false"})})
                    .ok());
        QStringList record = fields(*m_session);
        record.replace(11, "for B");
        const auto other = m_archive->login();
        QVERIFY(Attributes(*other).save({joinFields({"1", "A", "String", "false", "true"})}).ok());
        QCOMPARE(textOf(Documents(*m_session).save(m_id, record)), QString());
        QCOMPARE(fields(*other).mid(10), (QStringList{"for B", "W"}));
    }

    void aListedRecordKeepsItsColumns()
    {
        QVERIFY(Attributes(*m_session)
                    .save({joinFields({"-1", "A", "String", "false", "false"}),
                           joinFields({"-1", "B", "String", "false", "false"})})
                    .ok());
        QStringList row = splitFields(listDocuments(*m_session, {"1=1"}).value().at(1)).mid(1);
        const auto other = m_archive->login();
        QVERIFY(Attributes(*other).save({joinFields({"1", "A", "String", "false", "true"})}).ok());
        // The column of A is still there for who goes by the list; a new list has it no more.
        QStringList record = fields(*m_session);
        QCOMPARE(record.mid(10), (QStringList{"", "", "W"}));
        record.replace(11, "for B");
        QCOMPARE(textOf(Documents(*m_session).save(m_id, record)), QString());
        row = splitFields(listDocuments(*m_session, {"1=1", "OPT:LIMIT;5"}).value().at(1)).mid(1);
        QCOMPARE(row.mid(10), (QStringList{"for B", "W"}));
        row.replace(10, "again");
        QCOMPARE(textOf(Documents(*m_session).save(m_id, row)), QString());
        QCOMPARE(fields(*other).mid(10), (QStringList{"again", "W"}));
        row.replace(3, "1_3");
        row.insert(10, "shifted");
        QCOMPARE(Documents(*m_session).save(m_id, row).error().code, ErrorCode::BadInput);
        QCOMPARE(fields(*other).mid(10), (QStringList{"again", "W"}));
    }

    void aDocumentGoesThroughTheTrashToItsEnd()
    {
        Documents documents(*m_session);
        QVERIFY(!Content(*m_session).remove("1", "gone").ok());
        QVERIFY(!documents.close(m_id).ok());
        QCOMPARE(textOf(documents.setTrashed({m_id}, true)), QString());
        QCOMPARE(listDocuments(*m_session, {"1=1"}).value().size(), 1);
        QStringList record = fields(*m_session);
        record.replace(2, "-1");
        QCOMPARE(textOf(Content(*m_session).remove("1", "gone")), QString());
        QCOMPARE(textOf(documents.save(m_id, record)), QString());
        QCOMPARE(textOf(documents.close(m_id)), QString());
        QCOMPARE(documents.count("trashed = true and status = -1").value(), 1);
        QVERIFY(!documents.setTrashed({m_id}, false).ok());
        QVERIFY(!Content(*m_session).fetch(1, Action::Shown, {}).ok());
        QCOMPARE(splitFields(Content(*m_session).actions({"1"}, 3, QString()).value().value(0)).value(2),
                 QString("3"));
    }

    void retentionForbidsDeletion()
    {
        Records types = Vocabulary(*m_session).types().value();
        types.add({QString(), "Contract", "10;1;2"});
        QCOMPARE(textOf(Vocabulary(*m_session).saveTypes(types)), QString());
        QStringList record = fields(*m_session);
        record.replace(5, "1");
        QCOMPARE(textOf(Documents(*m_session).save(m_id, record)), QString());
        QCOMPARE(textOf(Documents(*m_session).setTrashed({m_id}, true)), QString());
        m_session->setClock([] { return QDateTime(QDate(2029, 1, 1), QTime()); });
        record = fields(*m_session);
        QVERIFY(record.last().contains(QLatin1Char('F')));
        record.replace(2, "-1");
        QVERIFY(!Documents(*m_session).save(m_id, record).ok());
        QVERIFY(!Content(*m_session).remove("1", QString()).ok());
        types = Vocabulary(*m_session).types().value();
        for (const char *span : {"9;11;0", ""}) {
            types.rows.replace(1, joinFields({"1", "Contract", QString::fromLatin1(span)}));
            QCOMPARE(Vocabulary(*m_session).saveTypes(types).error().code, ErrorCode::Refused);
        }
        m_session->setClock([] { return QDateTime(QDate(2030, 3, 4), QTime()); });
        QVERIFY(fields(*m_session).last().contains(QLatin1Char('F')));
        m_session->setClock([] { return QDateTime(QDate(2030, 3, 5), QTime()); });
        QVERIFY(!fields(*m_session).last().contains(QLatin1Char('F')));
    }

    void aRunningRetentionNeverEndsEarlier_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("refusal");
        const QString kept = "The document must be kept until 2030-02-03.";
        const QString ahead = "A document of this type cannot be dated after 2024-05-07";
        QTest::newRow("by another type") << "0"
                                         << "2020-02-03" << kept;
        QTest::newRow("by a type of a shorter period") << "2"
                                                       << "2020-02-03" << kept;
        QTest::newRow("by no date") << "1"
                                    << "" << kept;
        QTest::newRow("by an earlier date") << "1"
                                            << "2020-02-02" << kept;
        QTest::newRow("but later by a later date") << "1"
                                                   << "2024-05-07" << QString();
        QTest::newRow("but later by a later date and another type") << "2"
                                                                    << "2024-05-06" << QString();
        QTest::newRow("nor for ever") << "1"
                                      << "2024-05-08" << ahead;
    }

    void aRunningRetentionNeverEndsEarlier()
    {
        QFETCH(QString, type);
        QFETCH(QString, date);
        QFETCH(QString, refusal);
        Records types = Vocabulary(*m_session).types().value();
        types.add({QString(), "Contract", "10;0;0"});
        types.add({QString(), "Offer", "6;0;0"});
        QCOMPARE(textOf(Vocabulary(*m_session).saveTypes(types)), QString());
        m_session->setClock([] { return QDateTime(QDate(2024, 5, 6), QTime(12, 0)); });
        const auto save = [this](const QString &newType, const QString &newDate) {
            QStringList record = fields(*m_session);
            record.replace(5, newType);
            record.replace(7, newDate);
            return textOf(Documents(*m_session).save(m_id, record));
        };
        QCOMPARE(save("1", "2020-02-03"), QString());
        const QString text = save(type, date);
        QVERIFY2(refusal.isEmpty() ? text.isEmpty() : text.startsWith(refusal), qPrintable(text));
        if (!refusal.isEmpty())
            QCOMPARE(fields(*m_session).at(7), QString("2020-02-03"));
        // Once it is over the record is free.
        m_session->setClock([] { return QDateTime(QDate(2040, 5, 6), QTime(12, 0)); });
        QCOMPARE(save("0", ""), QString());
        // A date of the far future takes part in no new period either.
        QCOMPARE(save("0", "3024-01-01"), QString());
        types = Vocabulary(*m_session).types().value();
        types.rows.replace(0, joinFields({"0", "not assigned", "1;0;0"}));
        QCOMPARE(Vocabulary(*m_session).saveTypes(types).error().code, ErrorCode::Refused);
    }

    void aFileOfSeveralTransactionsComesBackAsItWas()
    {
        const QString path = writeFile("Übersicht v1.2.pdf", 20 * 1024 * 1024 + 7);
        const Result<qint64> id = Content(*m_session).store(path, true, {});
        QVERIFY2(id.ok(), id ? "" : qPrintable(id.error().text));
        const Result<QString> copy = Content(*m_session).fetch(id.value(), Action::Exported, {});
        QVERIFY2(copy.ok(), copy ? "" : qPrintable(copy.error().text));
        QVERIFY(outside::read(copy.value()) == outside::read(path));
        QCOMPARE(QFileInfo(copy.value()).completeSuffix(), QString("pdf"));
        const auto others = QFile::ReadGroup | QFile::ReadOther | QFile::ExeGroup | QFile::ExeOther;
        QVERIFY(!(QFile::permissions(copy.value()) & others));
        QVERIFY(!(QFile::permissions(QFileInfo(copy.value()).path()) & others));
        QCOMPARE(archive::check(m_archive->path()).value(), QStringList());
    }

    void theArchiveIsNotFiledUnderAnyName()
    {
        for (const char *suffix : {"", "-wal", "-shm"}) {
            const QString own = m_archive->path() + QLatin1String(suffix);
            const QString other = m_archive->path() + QLatin1String(".link") + QLatin1String(suffix);
            QCOMPARE(::link(QFile::encodeName(own).constData(), QFile::encodeName(other).constData()), 0);
            for (const QString &path : {own, other}) {
                const Result<qint64> stored = Content(*m_session).store(path, true, {});
                QVERIFY(!stored.ok());
                QCOMPARE(stored.error().text, QString("The archive cannot be filed in itself."));
            }
        }
    }

    void aCancelledUploadLeavesNothing()
    {
        const QString path = writeFile("large.bin", 20 * 1024 * 1024);
        const auto cancelLate = [](qint64 done) { return done < 18 * 1024 * 1024; };
        QVERIFY(!Content(*m_session).store(path, true, cancelLate).ok());
        QCOMPARE(m_session->database().value("SELECT count(*) FROM blob").toInt(), 1);
        QCOMPARE(m_session->database().value("SELECT count(*) FROM blob_piece").toInt(), 1);
    }

    void anUploadIsAbandonedWhenItsProcessIsGone()
    {
        QProcess gone;
        gone.start("true", QStringList());
        const qint64 deadPid = gone.processId();
        QVERIFY(gone.waitForFinished());
        Database &database = m_session->database();
        const auto blobs = [&database] {
            return database.texts("SELECT touched FROM blob WHERE touched IS NOT NULL ORDER BY id");
        };
        const QString mark = m_session->timestamp() + " %1 %2";
        const QString here = QSysInfo::machineHostName() + QLatin1Char('/') +
                             QFileInfo(QFile::symLinkTarget("/proc/self/ns/pid")).fileName();
        const QString living = mark.arg(here).arg(QCoreApplication::applicationPid());
        const QString elsewhere = mark.arg("another.example").arg(deadPid);
        for (const QString &touched : QStringList{mark.arg(here).arg(deadPid), living, elsewhere,
                                                  "2020-01-01T00:00:00 another.example 1"})
            database.run("INSERT INTO blob(touched) VALUES(?)", {touched});
        removeAbandonedUploads(*m_session);
        QCOMPARE(blobs(), (QStringList{living, elsewhere}));
    }

    void aLongFileNameKeepsItsSuffix()
    {
        const QString path = writeFile(QString("n").repeated(251) + ".pdf", 1);
        const QString id = QString::number(Content(*m_session).store(path, true, {}).value());
        QCOMPARE(m_session->database().value("SELECT file_name FROM document WHERE id = ?", {id}).toString(),
                 QString("n").repeated(250) + ".pdf");
    }

    void aSubArchiveHoldsItsOwnDocuments()
    {
        SubArchives archives(*m_session);
        const qint64 second = archives.create("Second", QString()).value();
        QVERIFY(!archives.create("Second", QString()).ok());
        QCOMPARE(textOf(Documents(*m_session).moveToSubArchive(1, second)), QString());
        QVERIFY(!Documents(*m_session).moveToSubArchive(1, 99).ok());
        m_session->setSubArchive(1);
        QCOMPARE(listDocuments(*m_session, {"1=1", "OPT:LIMIT;5"}).value().size(), 1);
        m_session->setSubArchive(second);
        QCOMPARE(listDocuments(*m_session, {"1=1", "OPT:LIMIT;5"}).value().size(), 2);
        QVERIFY(!archives.remove(second).ok());
        QCOMPARE(textOf(archives.remove(1)), QString());
        QVERIFY(!archives.find("1").ok());
    }

private:
    QStringList fields(Session &session) { return Documents(session).get(m_id).value().mid(1); }

    QString writeFile(const QString &name, int size)
    {
        QByteArray bytes(size, '\0');
        for (int i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i * 7 + i / 251);
        return outside::write(m_files.filePath(name), bytes);
    }

    QTemporaryDir m_files;
    std::unique_ptr<TestArchive> m_archive;
    std::unique_ptr<Session> m_session;
    QString m_id;
};

KELVA_TEST(TestDocuments)
#include "testdocuments.moc"
