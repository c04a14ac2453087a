#include "manager/managersurroundings.h"
#include "manager/profilefile.h"
#include "support/kelvatest.h"

#include <QDir>
#include <QFileInfo>

using namespace kelva;

class TestProfileStore : public QObject
{
    Q_OBJECT

private slots:
    void profilesComeBackAsTheyWere()
    {
        ProfileFixture s;
        QVERIFY(s.store.load().value().isEmpty());
        Profile odd = s.profile("Zoë \"quoted\" \\ 日本");
        odd.password = QString::fromUtf8("  blanks, ü, \xf0\x9f\x94\x91 and \\ ");
        odd.archiveIndex = 1;
        const Profile first = s.added(odd);
        const Profile second = s.added(s.profile("Second"));
        odd.id = first.id;
        const QList<Profile> loaded = ProfileStore().load().value();
        QCOMPARE(loaded.size(), 2);
        QVERIFY(loaded.at(0) == odd);
        QVERIFY(loaded.at(1) == second);
        QCOMPARE(loaded.at(0).archiveName() + '/' + loaded.at(0).archiveKey(), QString("Attic/2"));
    }

    void idsAreNeverReused()
    {
        ProfileFixture s;
        const qint64 first = s.added(s.profile("One")).id;
        const qint64 second = s.added(s.profile("Two")).id;
        QVERIFY(s.store.remove(second).ok());
        QCOMPARE(s.store.remove(second).error().code, ErrorCode::NotFound);
        QVERIFY(s.added(s.profile("Three")).id > second);
        QVERIFY(s.store.remove(first).ok());
        QCOMPARE(s.store.load().value().size(), 1);
    }

    void onlyTheOwnerMayRead()
    {
        ProfileFixture s;
        s.added(s.profile("One"));
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                          QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
        const QString directory = QFileInfo(s.store.file()).absolutePath();
        QCOMPARE(QFile::permissions(s.store.file()) & others, QFile::Permissions());
        QCOMPARE(QFile::permissions(directory) & others, QFile::Permissions());
        // An editor has saved it open to everybody.
        QVERIFY(
            QFile::setPermissions(s.store.file(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
        QVERIFY(s.store.load().ok());
        QCOMPARE(QFile::permissions(s.store.file()) & others, QFile::Permissions());
    }

    void damagedFilesAreKept()
    {
        const std::tuple<QByteArray, QByteArray, const char *> table[] = {
            {"", "", "is damaged"},                           // an empty file
            {"", "[1, 2]", "\"format\" is missing or wrong"}, // another one
            {"\"format\": 1", "\"format\": 2", "newer version"},
            {"\"id\": 1001", "\"id\": \"x\"", "\"id\" of profile 1"},
            {"\"id\": 1001", "\"id\": 1002", "not unique"},
            {"\"nextId\": 1003", "\"nextId\": 1002", "not unique"}, // is still to be given
            {"\"port\": \"1\"", "\"port\": 1", "\"port\" of profile 1"},
            {"\"password\"", "\"passw0rd\"", "\"password\" of profile 1"},
            {"\"key\"", "\"kez\"", "\"archives\" of profile 1"},
            {"\"archiveIndex\": 0", "\"archiveIndex\": 1e30", "\"archiveIndex\" of profile 1"},
        };
        for (const auto &[from, to, text] : table) {
            ProfileFixture s;
            s.added(s.profile("One"));
            s.added(s.profile("Two"));
            QByteArray bytes = from.isEmpty() ? to : s.readFile();
            const int at = bytes.indexOf(from);
            QVERIFY2(at >= 0, from.constData());
            bytes.replace(at, from.size(), from.isEmpty() ? "" : to);
            s.writeFile(bytes);
            const auto loaded = s.store.load();
            QVERIFY(!loaded.ok());
            QVERIFY2(loaded.error().text.contains(text), qPrintable(loaded.error().text));
            QVERIFY(loaded.error().text.contains(s.store.file()));
            QCOMPARE(s.store.add(s.profile("New")).error().text, loaded.error().text);
            QCOMPARE(s.store.remove(1001).error().text, loaded.error().text);
            QCOMPARE(s.readFile(), bytes);
        }
    }

    void everyTruncationIsNoticed()
    {
        ProfileFixture s;
        s.added(s.profile("One"));
        const QByteArray whole = s.readFile().trimmed();
        for (int size = 0; size < whole.size(); ++size)
            QVERIFY2(!parseProfileFile(whole.left(size)).ok(), qPrintable(QString::number(size)));
    }

    void aDamagedFileCanBeSetAside()
    {
        ProfileFixture s;
        s.writeFile("damaged");
        const QString first = s.store.setAside().value();
        s.writeFile("damaged again");
        const QString second = s.store.setAside().value();
        QVERIFY(first != second && QFile::exists(first) && QFile::exists(second));
        QVERIFY(s.store.load().value().isEmpty());
        QCOMPARE(s.store.setAside().error().code, ErrorCode::Storage);
    }

    void changesOfOthersAreNotOverwritten()
    {
        ProfileFixture s;
        const Profile original = s.added(s.profile("One"));
        Profile mine = original;
        mine.user = "anna";
        Profile theirs = original;
        theirs.password = "new";
        QVERIFY(ProfileStore().replace(original, theirs).ok());
        QVERIFY(ProfileStore().add(s.profile("Theirs")).ok());
        QCOMPARE(s.store.replace(original, mine).error().code, ErrorCode::Conflict);
        QCOMPARE(s.store.add(s.profile("ONE")).error().code, ErrorCode::InUse);
        Profile renamed = theirs;
        renamed.name = "Theirs";
        QCOMPARE(s.store.replace(theirs, renamed).error().code, ErrorCode::InUse);
        renamed.name = "one";
        QVERIFY(s.store.replace(theirs, renamed).ok());
        QCOMPARE(s.store.load().value().first().password, QString("new"));
        QCOMPARE(s.store.load().value().size(), 2);
    }

    void aFailedSaveKeepsTheOldFile()
    {
        ProfileFixture s;
        // A directory stands where the new file would go.
        QVERIFY(QDir().mkpath(s.store.file()));
        const auto refused = s.store.add(s.profile("One"));
        QCOMPARE(refused.error().code, ErrorCode::Storage);
        QVERIFY(refused.error().text.contains(s.store.file()));
        QVERIFY(QFileInfo(s.store.file()).isDir());
    }

    void invalidProfilesAreExplained()
    {
        using Field = QString Profile::*;
        const std::tuple<Field, QString, QString> table[] = {
            {&Profile::name, " Office ", ""},
            {&Profile::port, " 007 ", ""},
            {&Profile::name, "  ", "name"},
            {&Profile::host, "archive.example", "archive.example"},
            {&Profile::port, "0", "port"},
            {&Profile::port, "4294967297", "port"},
            {&Profile::port, "1/../2", "port"},
            {&Profile::password, "", "password"},
            {&Profile::displayLine1, "a\nb", "line breaks"},
            {&Profile::name, QString("a") + QChar(0xFEFF), "254 characters"},
            {&Profile::displayLine2, QString(255, 'x'), "254 characters"},
        };
        ProfileFixture s;
        for (const auto &[field, value, text] : table) {
            Profile profile = s.profile("Office");
            profile.*field = value;
            const Result<void> valid = validate(tidied(profile));
            QCOMPARE(valid.ok(), text.isEmpty());
            QVERIFY2(valid.ok() || valid.error().text.contains(text), qPrintable(value));
        }
        Profile profile = s.profile("Office");
        profile.archives.clear();
        QVERIFY(validate(tidied(profile)).error().text.contains("load the archives"));
    }
};

KELVA_TEST(TestProfileStore)
#include "testprofilestore.moc"
