#include "support/kelvatest.h"
#include "support/outside.h"

#include "testarchive.h"

#include "contract/recordformat.h"
#include "service/content.h"
#include "service/documentlist.h"
#include "service/documents.h"
#include "service/folders.h"
#include "service/loginthrottle.h"
#include "service/records.h"
#include "service/settings.h"
#include "service/subarchives.h"
#include "service/users.h"
#include "service/vocabulary.h"

#include <QTemporaryDir>

using namespace kelva;

/// "clerk" may not see the folder "Board" (2, 2.1), "member" may.
class TestRights : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_open = m_archive.addDocument("Open letter", "1.2");
        m_secret = m_archive.addDocument("Secret minutes", "2.1");
        m_archive.addDocument("Unsorted", "0");
        m_archive.addUser("clerk", {"kelvaCLASSIFY", "kelvaHISTORY", "kelvaVERSIONING"});
        m_archive.addUser("member", {"kelvaCLASSIFY", "board"});
        m_archive.addUser("reader", {"kelvaALLDOCS"});
        m_archive.addUser("boss", {"kelvaADMIN", "kelvaCLASSIFY"});
    }

    void aForbiddenFolderNeverShowsUp_data()
    {
        QTest::addColumn<QStringList>("filters");
        QTest::newRow("in the whole list") << QStringList{"1=1"};
        QTest::newRow("in a limited list") << QStringList{"1=1", "OPT:LIMIT;1000"};
        QTest::newRow("when asked for by folder")
            << QStringList{"(folder = '2' OR folder like '2.%')", "OPT:LIMIT;10"};
        QTest::newRow("when asked for by id") << QStringList{"docid = 2"};
        QTest::newRow("when asked for by number of the record") << QStringList{"docs_id in (1,2,3)"};
        QTest::newRow("behind an or") << QStringList{"1=1 or folder = '2.1'"};
        QTest::newRow("by a word") << QStringList{"to_tsvector(bemerkung) @@ to_tsquery('secret')",
                                                  "OPT:LIMIT;10"};
        QTest::newRow("by a contained text") << QStringList{"bemerkung ilike '%secret%'"};
        QTest::newRow("by a selection") << QStringList{"OPT:SELECTION;2", "1=1", "OPT:LIMIT;10"};
        QTest::newRow("by the full text")
            << QStringList{QString("OPT:FULLTEXT") + recordformat::fieldSeparator + "secret"};
        QTest::newRow("with rights ignored by somebody who may not")
            << QStringList{"OPT:IGNORERIGHTS", "docid = 2"};
    }

    void aForbiddenFolderNeverShowsUp()
    {
        QFETCH(QStringList, filters);
        const auto clerk = m_archive.login("clerk");
        const Result<QStringList> list = listDocuments(*clerk, filters);
        QVERIFY2(list.ok(), list ? "" : qPrintable(list.error().text));
        QVERIFY(!descriptionsOf(list.value()).contains("Secret minutes"));
        const auto member = m_archive.login("member");
        QVERIFY(descriptionsOf(listDocuments(*member, filters).value()).contains("Secret minutes"));
    }

    void aForbiddenDocumentCanNotBeTouched()
    {
        const auto clerk = m_archive.login("clerk");
        const QString id = QString::number(m_secret);
        Documents documents(*clerk);
        QVERIFY(!documents.get(id).ok());
        QVERIFY(!documents.save(id, {"", "changed", "1", "1_1"}).ok());
        QVERIFY(!documents.setTrashed({id}, true).ok());
        QVERIFY(!documents.history(id).ok());
        QVERIFY(!documents.moveToSubArchive(2, 1).ok());
        QVERIFY(!documents.classify(2, "mine", "1.1").ok());
        QVERIFY(!Content(*clerk).fetch(2, Action::Shown, {}).ok());
        QCOMPARE(Content(*clerk).info({"2"}).value(), QStringList());
        QCOMPARE(Content(*clerk).actions({"2"}, -1, QString()).value(), QStringList());
        QCOMPARE(Content(*clerk).search("secret").value(), QStringList());
        QCOMPARE(documents.count("bemerkung ilike '%secret%'").value(), 0);
        QVERIFY(!Vocabulary(*clerk).descriptions().value().contains("Secret minutes"));
        const Result<Records> folders = Folders(*clerk).list(Folders::Scope::InUse);
        for (const QString &row : folders.value().rows)
            QVERIFY(!row.startsWith("2"));
    }

    void aDocumentCanNotBeMovedWhereItsEditorSeesNothing()
    {
        const auto clerk = m_archive.login("clerk");
        const QString id = QString::number(m_open);
        QStringList fields = Documents(*clerk).get(id).value().mid(1);
        fields.replace(4, "2.1");
        QCOMPARE(textOf(Documents(*clerk).save(id, fields)), QString("The folder does not exist."));
    }

    void seeingEverythingDoesNotMeanWriting()
    {
        const auto reader = m_archive.login("reader");
        const QStringList record = Documents(*reader).get(QString::number(m_secret)).value();
        QCOMPARE(record.last(), QString());
        QVERIFY(!Documents(*reader).save(QString::number(m_secret), record.mid(1)).ok());
        const Result<void> setting =
            Settings(*reader).save("kelvaGlobalSettings", "x", {"1", QString()}, true);
        QCOMPARE(setting.error().code, ErrorCode::Refused);
    }

    void kelvaAlldocsOpensForReadingAlone()
    {
        m_archive.addUser("auditor", {"kelvaALLDOCS", "kelvaCLASSIFY", "kelvaVERSIONING"});
        const auto auditor = m_archive.login("auditor");
        const QString id = QString::number(m_secret);
        const QStringList rows =
            listDocuments(*auditor, {QString("docs_id in (%1,%2)").arg(m_open).arg(m_secret)}).value();
        QCOMPARE(splitFields(rows.at(1)).mid(2, 1) + splitFields(rows.at(1)).mid(11),
                 (QStringList{"Secret minutes", ""}));
        QCOMPARE(splitFields(rows.at(2)).last(), QString("W"));
        const QStringList record = Documents(*auditor).get(id).value();
        QCOMPARE(record.last(), QString());
        QCOMPARE(Documents(*auditor).save(id, record.mid(1)).error().code, ErrorCode::Refused);
        QCOMPARE(Documents(*auditor).setTrashed({id}, true).error().code, ErrorCode::Refused);
        QTemporaryDir files;
        QCOMPARE(Content(*auditor)
                     .store(outside::write(files.filePath("Secret minutes.txt"), "new"), false, {})
                     .error()
                     .code,
                 ErrorCode::Refused);
        QCOMPARE(Content(*auditor)
                     .store(outside::write(files.filePath("Open letter.txt"), "new"), false, {})
                     .value(),
                 1);
    }

    void whoStoredAFileLosesItWithTheEntry()
    {
        TestArchive own;
        own.addUser("clerk", {"kelvaCLASSIFY"});
        own.addUser("boss", {"kelvaADMIN", "kelvaCLASSIFY"});
        const auto clerk = own.login("clerk");
        const auto boss = own.login("boss");
        QTemporaryDir files;
        const qint64 id =
            Content(*clerk).store(outside::write(files.filePath("a.txt"), "x"), true, {}).value();
        QCOMPARE(Content(*clerk).info({QString::number(id)}).value().size(), 1);
        QCOMPARE(Documents(*boss).classify(id, "a", "1.1").error().code, ErrorCode::NotFound);
        QCOMPARE(textOf(Documents(*clerk).classify(id, "a", "1.1")), QString());
        QVERIFY(Content(*clerk).fetch(id, Action::Shown, {}).ok());
        QVERIFY(own.owner()->database().run("UPDATE classification SET folder = '2.1'"));
        for (Session *session : {clerk.get(), boss.get()}) {
            QCOMPARE(Documents(*session).classify(id, "a", "1.1").error().code, ErrorCode::NotFound);
            QCOMPARE(Content(*session).fetch(id, Action::Shown, {}).error().code, ErrorCode::NotFound);
            QCOMPARE(Content(*session).info({QString::number(id)}).value(), QStringList());
        }
    }

    void aNewUserOfAnOldNameInheritsNothing()
    {
        TestArchive own;
        QTemporaryDir files;
        const QString file = outside::write(files.filePath("a.txt"), "x");
        QStringList seen;
        for (int generation = 0; generation < 2; ++generation) {
            own.addUser("clerk", {"kelvaCLASSIFY"});
            const auto clerk = own.login("clerk");
            if (generation == 0) {
                QCOMPARE(Content(*clerk).store(file, true, {}).value(), 1);
                QCOMPARE(Content(*clerk).store(file, true, {}).value(), 2);
                QCOMPARE(textOf(Documents(*clerk).classify(2, "Filed", "1.1")), QString());
            }
            seen << QString::number(Content(*clerk).info({"1"}).value().size()) +
                        descriptionsOf(listDocuments(*clerk, {"OPT:MINE"}).value()).join(' ');
            QVERIFY(Users(*own.owner()).remove({QString::number(clerk->userId())}).ok());
        }
        QCOMPARE(seen, (QStringList{"1Filed", "0"}));
    }

    void whatIsNotSeenIsNotCounted()
    {
        TestArchive own;
        own.addUser("clerk", {"kelvaCLASSIFY"});
        own.addUser("reader", {"kelvaALLDOCS"});
        own.addDocument("Harmless", "1.2", "2020-02-03");
        own.addDocument("Payroll", "2.1", "1999-01-01");
        QCOMPARE(textOf(Documents(*own.owner()).classify(2, "Cover sheet", "1.2")), QString());
        QTemporaryDir files;
        QVERIFY(Content(*own.owner()).store(outside::write(files.filePath("a.txt"), "x"), true, {}).ok());
        const auto clerk = own.login("clerk");
        const auto facts = [](Session &session) {
            QStringList occupied;
            const Records folders = Folders(session).list(Folders::Scope::InUse).value();
            for (int i = 0; i < folders.rows.size(); ++i)
                if (folders.fields(i, 9).at(7).isEmpty())
                    occupied << folders.fields(i, 9).at(0);
            return QStringList{Vocabulary(session).dateBounds().value().at(0),
                               QString::number(SubArchives(session).countDocuments(1).value()),
                               QString::number(Content(session).search("payroll").value().size()),
                               QString::number(Content(session).search("sheet").value().size()),
                               QString::number(Content(session).info({"3"}).value().size()),
                               occupied.join(' ')};
        };
        QCOMPARE(facts(*clerk), (QStringList{"2020-02-03", "2", "0", "1", "0", "1 1.2"}));
        QCOMPARE(facts(*own.login("reader")), (QStringList{"1999-01-01", "3", "1", "1", "1", "2 2.1 1 1.2"}));
        QCOMPARE(Folders(*clerk).list(Folders::Scope::All).error().code, ErrorCode::Refused);
        // A folder that is seen tells nothing of what lies in a hidden one below it.
        QCOMPARE(textOf(Folders(*own.owner()).setRoles("2.1", {"board"})), QString());
        QCOMPARE(textOf(Folders(*own.owner()).setRoles("2", {})), QString());
        QCOMPARE(facts(*clerk).last(), QString("1 1.2"));
        // Where no folder has a role, entries are open to all, files without one are not.
        QCOMPARE(textOf(Folders(*own.owner()).setRoles("2.1", {})), QString());
        QCOMPARE(facts(*clerk), (QStringList{"1999-01-01", "2", "1", "1", "0", "2 2.1 1 1.2"}));
        QCOMPARE(Content(*clerk).fetch(3, Action::Shown, {}).error().code, ErrorCode::NotFound);
    }

    void administeringDoesNotMeanSeeing()
    {
        const auto boss = m_archive.login("boss");
        QVERIFY(!descriptionsOf(listDocuments(*boss, {"1=1"}).value()).contains("Secret minutes"));
        QCOMPARE(Documents(*boss).count("folder = '2.1'").value(), 1);
        const QStringList ignoring = listDocuments(*boss, {"OPT:IGNORERIGHTS", "docid = 2"}).value();
        QCOMPARE(descriptionsOf(ignoring), QStringList{"Secret minutes"});
        QVERIFY(!splitFields(ignoring.at(1)).last().contains(QLatin1Char('W')));
        QVERIFY(Folders(*boss).list(Folders::Scope::All).value().rows.size() >
                Folders(*boss).list(Folders::Scope::InUse).value().rows.size());
    }

    void rightsTakenAwayAreGoneAtOnce()
    {
        const auto member = m_archive.login("member");
        QVERIFY(Documents(*member).get(QString::number(m_secret)).ok());
        const auto boss = m_archive.login("boss");
        QVERIFY(Users(*boss).setRolesOf("member", {"kelvaCLASSIFY"}).ok());
        QVERIFY(!Documents(*member).get(QString::number(m_secret)).ok());
        QVERIFY(Users(*boss).setRolesOf("member", {"kelvaCLASSIFY", "board"}).ok());
        QVERIFY(Documents(*member).get(QString::number(m_secret)).ok());
    }

    void aSessionEndsWithItsAccount()
    {
        m_archive.addUser("guest", {"kelvaCLASSIFY", "kelvaALLDOCS"});
        const auto guest = m_archive.login("guest");
        const auto refusals = [&] {
            QStringList texts;
            const auto note = [&texts](const auto &result) {
                texts << (result ? QString() : result.error().text);
            };
            note(Documents(*guest).get(QString::number(m_open)));
            note(listDocuments(*guest, {"1=1"}));
            note(Content(*guest).fetch(1, Action::Shown, {}));
            note(Content(*guest).search("open"));
            note(Folders(*guest).list(Folders::Scope::InUse));
            note(Vocabulary(*guest).descriptions());
            note(guest->requireAccount());
            texts.removeDuplicates();
            return texts;
        };
        QCOMPARE(refusals(), QStringList(QString()));
        const QStringList gone{"Your user account has expired or was deleted. Please log in again."};
        const auto boss = m_archive.login("boss");
        QVERIFY(Users(*boss).setPasswordExpired("guest", true).ok());
        QCOMPARE(refusals(), gone);
        QCOMPARE(textOf(Users(*guest).changeOwnPassword("secret", "other")), QString());
        QCOMPARE(refusals(), QStringList(QString()));
        QVERIFY(Users(*boss).remove({QString::number(guest->userId())}).ok());
        QCOMPARE(refusals(), gone);
    }

    void guessingPasswordsIsSlow()
    {
        qint64 now = 5'000'000;
        LoginThrottle throttle([&now] { return now; });
        for (int i = 0; i < 5; ++i)
            QCOMPARE(throttle.begin("clerk"), 0);
        QCOMPARE(throttle.begin("clerk"), 1);
        QCOMPARE(throttle.begin("member"), 0); // nobody else waits
        now += 1000;
        QCOMPARE(throttle.begin("clerk"), 0);
        QCOMPARE(throttle.begin("clerk"), 2);
        for (int i = 0; i < 60; ++i) {
            now += 60 * 1000;
            QCOMPARE(throttle.begin("clerk"), 0); // never locked out for longer
        }
        QCOMPARE(throttle.begin("clerk"), 60);
        now += 60 * 1000;
        QCOMPARE(throttle.begin("clerk"), 0);
        throttle.succeeded("clerk");
        QCOMPARE(throttle.begin("clerk"), 0);
        QCOMPARE(throttle.begin("clerk"), 0);

        m_archive.addUser("guessed", {});
        ErrorCode last = ErrorCode::NotFound;
        for (int i = 0; i < 6; ++i)
            last = Session::login(m_archive.path(), "guessed", "wrong").error().code;
        QCOMPARE(last, ErrorCode::Refused);
        QCOMPARE(Session::login(m_archive.path(), "guessed", "secret").error().code, ErrorCode::Refused);
        QCOMPARE(Users::changeExpiredPassword(m_archive.path(), "guessed", "secret", "x").error().code,
                 ErrorCode::Refused);
        QVERIFY(Session::login(m_archive.path(), "clerk", "secret").ok());
    }

    void aRefusedChangeDoesNotOpenFolders()
    {
        // The folders that a session sees stand in a temporary table, which a refused operation takes back
        // too.
        const auto clerk = m_archive.login("clerk");
        QVERIFY(!Documents(*clerk).save("77", {"", "", "1", "1_1"}).ok());
        QCOMPARE(descriptionsOf(listDocuments(*clerk, {"1=1"}).value()),
                 (QStringList{"Unsorted", "Open letter"}));
    }

    void theOnlyRoleOfAFolderCanNotBeDeleted()
    {
        const auto boss = m_archive.login("boss");
        const Result<void> removed = Users(*boss).removeRoles({"board"});
        QVERIFY(!removed.ok());
        QCOMPARE(removed.error().code, ErrorCode::InUse);
    }

    void aLockedFolderIsTheWayToAnOpenOne()
    {
        const auto boss = m_archive.login("boss");
        QVERIFY(Folders(*boss).setRoles("2.1", {"publicFolder"}).ok());
        const auto clerk = m_archive.login("clerk");
        const Result<Records> folders = Folders(*clerk).list(Folders::Scope::InUse);
        const QStringList &rows = folders.value().rows;
        QVERIFY(rows.contains(joinFields({"2", "Board", "0", "", "", "0", "L", "", ""})));
        QVERIFY(rows.contains(joinFields({"2.1", "Minutes", "0", "", "2", "0", "", "", ""})));
        QVERIFY(Folders(*boss).setRoles("2.1", {}).ok());
    }

private:
    TestArchive m_archive;
    qint64 m_open = 0;
    qint64 m_secret = 0;
};

KELVA_TEST(TestRights)
#include "testrights.moc"
