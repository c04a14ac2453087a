#include "support/kelvatest.h"

#include "testarchive.h"

#include "contract/recordformat.h"
#include "service/documents.h"
#include "service/folders.h"
#include "service/records.h"
#include "service/searches.h"
#include "service/users.h"
#include "service/vocabulary.h"
#include "service/workbench.h"

#include <QDataStream>

using namespace kelva;

class TestVocabulary : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_archive = std::make_unique<TestArchive>();
        m_session = m_archive->login();
    }

    void foldersComeParentsFirstAndByName()
    {
        QStringList oids;
        const Result<Records> folders = Folders(*m_session).list(Folders::Scope::All);
        for (const QString &row : folders.value().rows)
            oids << splitFields(row).at(0);
        QCOMPARE(oids, (QStringList{"2", "2.1", "1", "1.1", "1.2", "1.2.1"}));
    }

    void aNewFolderGetsTheNextNumberOfItsParent()
    {
        Folders folders(*m_session);
        QCOMPARE(folders.create("1", "New", "key", "a b").value(), QString("1.3"));
        QCOMPARE(folders.create("1.2.1", "Deep", "", "").value(), QString("1.2.1.1"));
        QCOMPARE(folders.create("-1", "Main", "", "").value(), QString("3"));
        QVERIFY(!folders.create("9.9", "Lost", "", "").ok());
        QVERIFY(!folders.create("1", "  ", "", "").ok());
        QCOMPARE(mainFolderOf("3") + ' ' + mainFolderOf("1.30.7"), QString("3 1.30"));
        QCOMPARE(mainFolderOf("12.3.7"), QString("2.3")); // a first level of two digits loses one
        QCOMPARE(folders.nextOid().value(), QString("4"));
    }

    void savingFoldersIsAllOrNothing()
    {
        m_archive->addDocument("Kept", "1.1");
        Records change;
        change.add({"1.2.1", "", "", "", "1.2", "0", "D"});
        change.add({"7", "Seven", "0", "", "-1", "1", "I", "words"});
        change.add({"1.1", "", "", "", "1", "0", "D"});
        const Result<void> saved = Folders(*m_session).save(change);
        QCOMPARE(saved.error().code, ErrorCode::InUse);
        QCOMPARE(Folders(*m_session).list(Folders::Scope::All).value().rows.size(), 6);
        change.rows.removeLast();
        change.add({"99", "", "", "", "", "0", "D"});
        QCOMPARE(textOf(Folders(*m_session).save(change)), QString());
        QCOMPARE(Folders(*m_session).list(Folders::Scope::All).value().rows.size(), 6);
        QVERIFY(!Folders(*m_session).save(change).ok());
    }

    void inactiveFoldersHideWhatIsBelowThem()
    {
        Records change;
        change.add({"1.2", "Letters", "I", "", "1", "1", "U", ""});
        QCOMPARE(textOf(Folders(*m_session).save(change)), QString());
        const Result<Records> folders = Folders(*m_session).list(Folders::Scope::InUse);
        for (const QString &row : folders.value().rows)
            QVERIFY(!row.startsWith("1.2"));
        // Clients know their names and show them nowhere else.
        const QByteArray block = workbenchBlock(*m_session).value();
        QDataStream stream(block);
        QStringList texts;
        QMap<int, QString> editors;
        QList<QStringList> lists;
        stream >> texts >> texts >> texts >> editors >> editors >> editors >> editors >> lists;
        QMap<QString, QString> flags;
        for (const QString &row : qAsConst(lists.at(3)))
            flags.insert(splitFields(row).at(0), splitFields(row).at(2));
        QCOMPARE(flags,
                 (QMap<QString, QString>{
                     {"1", "0"}, {"1.1", "0"}, {"1.2", "I"}, {"1.2.1", "0I"}, {"2", "0"}, {"2.1", "0"}}));
        QCOMPARE(lists.at(0), (QStringList{joinFields({"2", "Board"}), joinFields({"2.1", "Minutes"}),
                                           joinFields({"1", "Office"}), joinFields({"1.1", "Invoices"})}));
    }

    void aRowThatIsNoFolderIsPassedOver()
    {
        const int folders = Folders(*m_session).list(Folders::Scope::All).value().rows.size();
        for (const char *oid : {"''", "NULL", "'0.2'", "'1.x'"})
            QVERIFY(m_session->database().run(
                QString("INSERT INTO folder(oid, name) VALUES(%1, 'Bad')").arg(QLatin1String(oid))));
        QCOMPARE(Folders(*m_session).list(Folders::Scope::All).value().rows.size(), folders);
        QCOMPARE(archive::check(m_archive->path()).value(),
                 QStringList(QVector<QString>(4, "The folder \"Bad\" has no valid number.").toList()));
    }

    void theStatusListIsSavedAsAWhole()
    {
        const QString id = QString::number(m_archive->addDocument("x", "0"));
        Records list = Vocabulary(*m_session).status().value();
        list.rows.prepend(joinFields({"", "Urgent"}));
        list.pictures.prepend("PNG");
        QCOMPARE(textOf(Vocabulary(*m_session).saveStatus(list)), QString());
        list = Vocabulary(*m_session).status().value();
        QCOMPARE(list.rows.first(), joinFields({"4", "Urgent"}));
        QCOMPARE(list.pictures.first(), QByteArray("PNG"));
        QStringList record = Documents(*m_session).get(id).value().mid(1);
        record.replace(2, "4");
        QCOMPARE(textOf(Documents(*m_session).save(id, record)), QString());
        QVERIFY(Documents(*m_session).setTrashed({id}, true).ok());
        list.rows.removeFirst();
        list.pictures.removeFirst();
        QCOMPARE(Vocabulary(*m_session).saveStatus(list).error().code, ErrorCode::InUse);
        list.rows.removeFirst();
        QVERIFY(!Vocabulary(*m_session).saveStatus(list).ok());
        QCOMPARE(Vocabulary(*m_session).status().value().rows.size(), 4);
    }

    void typesKeepTheOrderSent()
    {
        Records list = Vocabulary(*m_session).types().value();
        list.rows.prepend(joinFields({"", "Contract", "10;0;0"}));
        list.rows.prepend(joinFields({"", "Invoice", "0;6;"}));
        QCOMPARE(textOf(Vocabulary(*m_session).saveTypes(list)), QString());
        QCOMPARE(Vocabulary(*m_session).types().value().rows,
                 (QStringList{joinFields({"1", "Invoice", "0;6;0"}), joinFields({"2", "Contract", "10;0;0"}),
                              joinFields({"0", "not assigned", "0;0;0"})}));
        // The first half of a leap year has 182 days, others have up to 184.
        list = Vocabulary(*m_session).types().value();
        list.rows.replace(0, joinFields({"1", "Invoice", "0;0;182"}));
        QCOMPARE(Vocabulary(*m_session).saveTypes(list).error().code, ErrorCode::Refused);
        list.rows.replace(0, joinFields({"1", "Invoice", "0;0;184"}));
        QCOMPARE(textOf(Vocabulary(*m_session).saveTypes(list)), QString());
        for (const char *span : {"-1;0;0", "x", "1;2;3;4", "99999999999;0;0"}) {
            list.rows.replace(0, joinFields({"", "Bad", QString::fromLatin1(span)}));
            QVERIFY2(!Vocabulary(*m_session).saveTypes(list).ok(), span);
        }
    }

    void dateBoundsOfAnEmptyArchiveAreToday()
    {
        m_session->setClock([] { return QDateTime(QDate(2022, 2, 2), QTime()); });
        QCOMPARE(Vocabulary(*m_session).dateBounds().value(), (QStringList{"2022-02-02", "2022-02-02"}));
        m_archive->addDocument("a", "0", "1999-12-31");
        m_archive->addDocument("b", "0", "2030-01-01");
        QCOMPARE(Vocabulary(*m_session).dateBounds().value(), (QStringList{"1999-12-31", "2030-01-01"}));
    }

    void searchesOpenToTheirRoles()
    {
        m_archive->addUser("clerk", {});
        const auto clerk = m_archive->login("clerk");
        const QString definition =
            QString("a") + recordformat::listSeparator + "b" + recordformat::rowSeparator;
        QVERIFY(Searches(*clerk).save("own", definition, {}).ok());
        QVERIFY(Searches(*m_session).save("all", definition, {"kelvaUSER"}).ok());
        QVERIFY(Searches(*m_session).save("boards", definition, {"board"}).ok());
        const auto names = [](Session &session, const QString &login) {
            QStringList list;
            const Result<QStringList> searches = Searches(session).list(login);
            for (const QString &row : searches.value())
                list << splitFields(row).at(1);
            return list;
        };
        QCOMPARE(names(*clerk, "clerk"), (QStringList{"all", "own"}));
        QCOMPARE(names(*clerk, "admin"), (QStringList{"all", "own"}));
        QCOMPARE(names(*m_session, "admin"), (QStringList{"all", "boards"}));
        QCOMPARE(splitFields(Searches(*clerk).list("clerk").value().at(1)),
                 (QStringList{"1", "own", definition, "r_clerk"}));
    }

    /// Searches: 1 the clerk's own, 2 the administrator's for everybody, 3 the clerk's, shared for him by the
    /// administrator, 4 another clerk's own.
    void whoMayChangeASearch_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("change"); // id, and the roles that it is to get
        QTest::addColumn<bool>("allowed");
        kelvatest::row("his own", "clerk", "1 r_clerk", true);
        kelvatest::row("his own, shared with everybody", "clerk", "1 r_clerk kelvaUSER", false);
        kelvatest::row("his own, shared with a role of his", "clerk", "1 r_clerk board", false);
        kelvatest::row("his own, given away", "clerk", "1 r_other", false);
        kelvatest::row("one for everybody", "clerk", "2 r_clerk", false);
        kelvatest::row("his own that was shared", "clerk", "3 r_clerk", false);
        kelvatest::row("somebody else's", "clerk", "4 r_clerk", false);
        kelvatest::row("none", "clerk", "77 r_clerk", false);
        kelvatest::row("administrator, somebody else's", "admin", "1 r_clerk board", true);
        kelvatest::row("administrator, a role that is not there", "admin", "2 nobody", false);
    }

    void whoMayChangeASearch()
    {
        QFETCH(QString, user);
        QFETCH(QString, change);
        QFETCH(bool, allowed);
        m_archive->addUser("clerk", {"board"});
        m_archive->addUser("other", {});
        const auto clerk = m_archive->login("clerk");
        const auto other = m_archive->login("other");
        QVERIFY(Searches(*clerk).save("own", "a", {}).ok());
        QVERIFY(Searches(*m_session).save("all", "b", {"r_admin", "kelvaUSER"}).ok());
        QVERIFY(Searches(*clerk).save("shared", "c", {"r_clerk"}).ok());
        QVERIFY(Searches(*m_session).update(3, "shared", "c", {"r_clerk", "board"}).ok());
        QVERIFY(Searches(*other).save("others", "d", {}).ok());
        const auto searches = [this] {
            return m_archive->owner()->database().texts(
                "SELECT s.id || name || definition || role FROM search"
                " s JOIN search_role r ON r.search = s.id");
        };
        const QStringList before = searches();
        QStringList roles = change.split(' ');
        const QString id = roles.takeFirst();
        Session &session = user == "admin" ? *m_session : *clerk;
        QCOMPARE(Searches(session).update(id.toLongLong(), "new", "x", roles).ok(), allowed);
        QCOMPARE(searches() != before, allowed);
        if (roles == QStringList("r_clerk"))
            QCOMPARE(Searches(session).remove(id).ok(), allowed);
        QVERIFY(allowed || searches() == before);
    }

    void hostileSearches()
    {
        Searches searches(*m_session);
        for (const QString &name : {QString(), QString("  "), QString("\n\t"), QString(QChar(0xFEFF))})
            QVERIFY(!searches.save(name, "a", {}).ok());
        QVERIFY(!searches.save("long", QString(2'000'000, 'x'), {}).ok());
        QCOMPARE(searches.list("admin").value(), QStringList());
        const QString name = QString("'; DROP TABLE search; --") + QChar(0xFEFF) + "<b>%1\n";
        QVERIFY(searches.save(name, QString("a") + QChar(0xFEFF) + QChar(u'\0') + "b", {}).ok());
        QVERIFY(searches.save(QString(1000, 'n'), QString(100'000, 'x'), {}).ok());
        const QStringList records = searches.list("admin").value();
        QCOMPARE(splitFields(records.at(0)),
                 (QStringList{"1", "'; DROP TABLE search; --<b>%1", "ab", "r_admin"}));
        QCOMPARE(splitFields(records.at(1)).at(1).size(), 254);
        QCOMPARE(splitFields(records.at(1)).at(2).size(), 100'000);
        QVERIFY(!searches.remove("1 OR 1 = 1").ok());
    }

    void theArchiveKeepsAnAdministrator()
    {
        Users users(*m_session);
        QVERIFY(!users.setRolesOf("admin", {"kelvaCLASSIFY"}).ok());
        QVERIFY(!users.setUsersOf("kelvaADMIN", {}).ok());
        QVERIFY(!users.remove({"1"}).ok());
        QVERIFY(users.rolesOf("admin").value().contains("kelvaADMIN"));
    }

    void usersComeAndGoWithTheirPersonalRole()
    {
        Users users(*m_session);
        for (const char *login : {"", " ", "admin",
                                  "a\xef\xbb\xbf"
                                  "b"})
            QVERIFY2(!users.create({QString::fromUtf8(login), "x", "", ""}).ok(), login);
        const qint64 id = users.create({"neu", "x", "Neuer Nutzer", "nn"}).value();
        QCOMPARE(users.rolesOf("neu").value(), QStringList{"r_neu"});
        QVERIFY(users.setRolesOf("neu", {"board"}).ok());
        QCOMPARE(users.rolesOf("neu").value(), (QStringList{"board", "r_neu"}));
        QCOMPARE(users.usersOf("board").value(),
                 QStringList{joinFields({QString::number(id), "neu", "Neuer Nutzer", "nn", "", "0"})});
        QVERIFY(!users.removeRoles({"r_neu"}).ok());
        QVERIFY(users.remove({QString::number(id)}).ok());
        QVERIFY(!users.roles().value().contains("r_neu"));
    }

    void aRestoreWaitsUntilNobodyWorks()
    {
        m_archive->addDocument("Before", "0");
        const QString copy = m_archive->path() + ".copy";
        QCOMPARE(textOf(archive::backup(m_archive->path(), copy)), QString());
        QCOMPARE(archive::restore(copy, m_archive->path()).error().code, ErrorCode::Busy);
        const QString elsewhere = m_archive->path() + ".other";
        QCOMPARE(textOf(archive::restore(copy, elsewhere)), QString());
        QCOMPARE(textOf(archive::restore(copy, elsewhere)), QString());
        const auto restored = Session::login(elsewhere, "admin", "secret");
        QVERIFY(restored.ok());
        QCOMPARE(Documents(*restored.value()).count("1=1").value(), 1);
    }

private:
    std::unique_ptr<TestArchive> m_archive;
    std::unique_ptr<Session> m_session;
};

KELVA_TEST(TestVocabulary)
#include "testvocabulary.moc"
