#include "support/kelvatest.h"
#include "support/outside.h"

#include "testarchive.h"

#include "service/attributes.h"
#include "service/bulkload.h"
#include "service/content.h"
#include "service/documentlist.h"
#include "service/documents.h"
#include "service/filetexts.h"
#include "service/folders.h"
#include "service/operation.h"
#include "service/searches.h"
#include "service/settings.h"
#include "service/subarchives.h"
#include "service/users.h"
#include "service/vocabulary.h"
#include "service/workbench.h"

#include <QDir>
#include <QRegularExpression>

using namespace kelva;

namespace {

/// 'r' when it leaves the archive as it is, 'w' when it changes it; then for nobody (no role), a clerk
/// (kelvaCLASSIFY), an administrator (kelvaADMIN), a helper (kelvaHISTORY, kelvaCREATEFOLDER) and the archive
/// on a medium: '+' done, '-' refused.
struct Case
{
    const char *operation;
    const char *expected;
    std::function<std::optional<ErrorCode>(Session &)> call;
};

template<typename Call>
Case of(const char *operation, const char *expected, Call call)
{
    return {operation, expected, [call](Session &session) -> std::optional<ErrorCode> {
                const auto result = call(session);
                return result ? std::nullopt : std::optional(result.error().code);
            }};
}

#define CALL(expression) [=](Session &s) { return expression; }

} // namespace

/// Who may call what: every operation of the service, by every kind of session.
class TestOperations : public QObject
{
    Q_OBJECT

private:
    QList<Case> cases() const
    {
        Records folder;
        folder.add({"1", "Bureau", "0", "", "", "1", "U", ""});
        const NewUser newcomer{"newcomer", "secret", "New", "N"};
        const QString record = m_record;
        const QString trashed = m_trashed;
        const QString helper = m_helper;
        const QString file = m_file;
        BulkDocument bulk;
        bulk.fileName = "bulk.txt";
        bulk.created = "2020-02-03T04:05:06";
        return {
            of("Attributes::list", "r+++++", CALL(Attributes(s).list())),
            of("Attributes::save", "w--+--", CALL(Attributes(s).save({joinFields({"-1", "A", "Numeric"})}))),
            of("Attributes::saveValues", "w--+--", CALL(Attributes(s).saveValues(1, {"Place", "here"}))),
            of("Attributes::values", "r+++++", CALL(Attributes(s).values(1))),
            of("BulkLoad::add", "r--+--", CALL(BulkLoad(s).add(bulk))),
            of("BulkLoad::addEvent", "r--+--", CALL(BulkLoad(s).addEvent(1, 0, bulk.created, "x"))),
            of("BulkLoad::finish", "w--+--", CALL(BulkLoad(s).finish())),
            of("Content::actions", "r+++++", CALL(Content(s).actions({"1"}, -1, ""))),
            of("Content::exportVersions", "w--+--",
               CALL(Content(s).exportVersions(1, QTemporaryDir(QDir::tempPath() + "/x").path()))),
            of("Content::fetch", "w+++++", CALL(Content(s).fetch(1, Action::Shown, {}))),
            of("Content::info", "r+++++", CALL(Content(s).info({"1"}))),
            of("Content::record", "w++++-", CALL(Content(s).record(1, Action::Printed))),
            of("Content::remove", "w--+--", CALL(Content(s).remove("2", "no use"))),
            of("Content::search", "r+++++", CALL(Content(s).search("letter"))),
            of("Content::size", "r+++++", CALL(Content(s).size(1))),
            of("Content::store", "w-+---", CALL(Content(s).store(file, true, {}))),
            of("Documents::classify", "w-+---", CALL(Documents(s).classify(1, "again", "1.1"))),
            of("Documents::close", "w--+--", CALL(Documents(s).close(trashed))),
            of("Documents::count", "r+++++", CALL(Documents(s).count("status = 1"))),
            of("Documents::countInFolder", "r+++++", CALL(Documents(s).countInFolder("1.2"))),
            of("Documents::get", "r+++++", CALL(Documents(s).get(record))),
            of("Documents::history", "r---++", CALL(Documents(s).history(record))),
            of("Documents::moveToSubArchive", "w-+---", CALL(Documents(s).moveToSubArchive(1, 2))),
            of("Documents::save", "w-+---",
               CALL(Documents(s).save(record, Documents(s).get(record).value().mid(1)))),
            of("Documents::setTrashed", "w-+---", CALL(Documents(s).setTrashed({record}, true))),
            of("FileTexts::counts", "r+++++", CALL(FileTexts(s).counts())),
            of("FileTexts::recreate", "w--+--", CALL(FileTexts(s).recreate())),
            of("Folders::create", "w--++-", CALL(Folders(s).create("1", "New", "", ""))),
            of("Folders::list", "r+++++", CALL(Folders(s).list(Folders::Scope::WithInactive))),
            of("Folders::list, all", "r--+--", CALL(Folders(s).list(Folders::Scope::All))),
            of("Folders::nextOid", "r+++++", CALL(Folders(s).nextOid())),
            of("Folders::roles", "r--+--", CALL(Folders(s).roles("2"))),
            of("Folders::save", "w--+--", CALL(Folders(s).save(folder))),
            of("Folders::saveStructure", "w--+--", CALL(Folders(s).saveStructure("1", folder))),
            of("Folders::setRoles", "w--+--", CALL(Folders(s).setRoles("2", {}))),
            of("Folders::structure", "r+++++", CALL(Folders(s).structure("1"))),
            of("Searches::list", "r+++++", CALL(Searches(s).list(QString()))),
            of("Searches::remove", "w-++--", CALL(Searches(s).remove("1"))),
            of("Searches::save", "w++++-", CALL(Searches(s).save("Mine", "x", {}))),
            of("Searches::update", "w-++--", CALL(Searches(s).update(1, "Other", "y", {}))),
            of("Settings::get", "r+++++", CALL(Settings(s).get("kelvaGlobalSettings", "key"))),
            of("Settings::get, secret", "r--+--", CALL(Settings(s).get("SSL", "key"))),
            of("Settings::save", "w--+--", CALL(Settings(s).save("SSL", "key", {"2", ""}, true))),
            of("SubArchives::countDocuments", "r+++++", CALL(SubArchives(s).countDocuments(1))),
            of("SubArchives::create", "w--+--", CALL(SubArchives(s).create("Third", ""))),
            of("SubArchives::find", "r+++++", CALL(SubArchives(s).find("1"))),
            of("SubArchives::list", "r+++++", CALL(SubArchives(s).list())),
            of("SubArchives::name", "r+++++", CALL(SubArchives(s).name(1))),
            of("SubArchives::remove", "w--+--", CALL(SubArchives(s).remove(2))),
            of("SubArchives::rename", "w--+--", CALL(SubArchives(s).rename(2, "Other"))),
            of("Users::changeOwnPassword", "w++++-", CALL(Users(s).changeOwnPassword("secret", "other"))),
            of("Users::create", "w--+--", CALL(Users(s).create(newcomer))),
            of("Users::createRoles", "w--+--", CALL(Users(s).createRoles({"new"}))),
            of("Users::list", "r--+--", CALL(Users(s).list())),
            of("Users::remove", "w--+--", CALL(Users(s).remove({helper}))),
            of("Users::removeRoles", "w--+--", CALL(Users(s).removeRoles({"free"}))),
            of("Users::roles", "r+++++", CALL(Users(s).roles())),
            of("Users::rolesOf", "r--+--", CALL(Users(s).rolesOf("admin"))),
            of("Users::rolesOf, own", "r+++++", CALL(Users(s).rolesOf(s.login()))),
            of("Users::setPassword", "w--+--", CALL(Users(s).setPassword("helper", "other"))),
            of("Users::setPasswordExpired", "w--+--", CALL(Users(s).setPasswordExpired("helper", true))),
            of("Users::setRolesOf", "w--+--", CALL(Users(s).setRolesOf("helper", {"kelvaADMIN"}))),
            of("Users::setUsersOf", "w--+--", CALL(Users(s).setUsersOf("kelvaADMIN", {"admin", "helper"}))),
            of("Users::update", "w--+--",
               CALL(Users(s).update(helper.toLongLong(), {"helper", "", "H", ""}))),
            of("Users::usersOf", "r--+--", CALL(Users(s).usersOf("board"))),
            of("Vocabulary::classifyFields", "r+++++", CALL(Vocabulary(s).classifyFields())),
            of("Vocabulary::dateBounds", "r+++++", CALL(Vocabulary(s).dateBounds())),
            of("Vocabulary::descriptions", "r+++++", CALL(Vocabulary(s).descriptions())),
            of("Vocabulary::saveStatus", "w--+--",
               CALL(Vocabulary(s).saveStatus(Vocabulary(s).status().value()))),
            of("Vocabulary::saveTypes", "w--+--",
               CALL(Vocabulary(s).saveTypes(Vocabulary(s).types().value()))),
            of("Vocabulary::status", "r+++++", CALL(Vocabulary(s).status())),
            of("Vocabulary::types", "r+++++", CALL(Vocabulary(s).types())),
            of("listDocuments", "r+++++", CALL(listDocuments(s, {"1=1"}))),
            of("workbenchBlock", "r+++++", CALL(workbenchBlock(s))),
        };
    }

    static QString source(const QString &path) { return outside::read(KELVA_SOURCES + path); }

    /// Of everything that a session can be asked for, by the headers.
    static QStringList declared()
    {
        // What operations are made of.
        const QStringList parts{"BlobWriter::readAll", "BlobWriter::finish", "conditionFor", "permit"};
        static const QRegularExpression line("^(?:class (\\w+)$|    explicit (\\w+)\\(Session &|(?:    "
                                             ")?Result<.*> (\\w+)\\((Session &)?|(private:))");
        QStringList names;
        for (const QString &header : QDir(KELVA_SOURCES "/backend/service").entryList({"*.h"})) {
            QString owner;
            bool isPublic = false;
            for (const QString &text : source("/backend/service/" + header).split('\n')) {
                const QRegularExpressionMatch match = line.match(text);
                if (!match.captured(1).isEmpty() || !match.captured(5).isEmpty())
                    isPublic = false;
                else if (!match.captured(2).isEmpty()) {
                    owner = match.captured(2);
                    isPublic = true;
                } else if (match.hasMatch() && isPublic)
                    names << owner + "::" + match.captured(3);
                else if (!match.captured(4).isEmpty() && !text.startsWith(' '))
                    names << match.captured(3);
            }
        }
        for (const QString &part : parts)
            if (names.removeAll(part) == 0)
                names << "no such part: " + part;
        names.sort();
        names.removeDuplicates();
        return names;
    }

    std::unique_ptr<Session> open(const QString &path, int actor) const
    {
        auto session =
            actor == 4
                ? Session::openOffline(path)
                : Session::openAsUser(path, QStringList{"nobody", "clerk", "boss", "helper"}.at(actor));
        return session ? std::move(session.value()) : nullptr;
    }

private slots:
    void initTestCase()
    {
        m_record = QString::number(m_archive.addDocument("Open letter", "1.2"));
        m_trashed = QString::number(m_archive.addDocument("Old letter", "1.2"));
        m_archive.addUser("nobody", {});
        m_archive.addUser("clerk", {"kelvaCLASSIFY"});
        m_archive.addUser("boss", {"kelvaADMIN"});
        m_archive.addUser("helper", {"kelvaHISTORY", "kelvaCREATEFOLDER"});
        const auto owner = m_archive.owner();
        QVERIFY(owner->database().run("UPDATE classification SET trashed = 1, status = -1 WHERE id = ?",
                                      {m_trashed.toInt()}));
        QVERIFY(Attributes(*owner).save({joinFields({"-1", "Place", "ComboBox"})}).ok());
        QVERIFY(SubArchives(*owner).create("Second", "").ok());
        QVERIFY(Users(*owner).createRoles({"free"}).ok());
        QVERIFY(Searches(*m_archive.login("clerk")).save("Letters", "x", {}).ok());
        for (const QString section : {"SSL", "kelvaGlobalSettings"})
            QVERIFY(Settings(*owner).save(section, "key", {"1", ""}, false).ok());
        m_helper = owner->database().value("SELECT id FROM account WHERE login = 'helper'").toString();
        m_file = outside::write(m_files.filePath("new.txt"), "new");
        QVERIFY(owner->database().backupTo(m_files.filePath("template.kelva")).ok());
    }

    void onlyWhoMayCallsAnOperation_data()
    {
        QTest::addColumn<int>("index");
        const QList<Case> all = cases();
        for (int i = 0; i < all.size(); ++i)
            QTest::newRow(all.at(i).operation) << i;
    }

    void onlyWhoMayCallsAnOperation()
    {
        QFETCH(int, index);
        const Case tried = cases().at(index);
        const bool writes = tried.expected[0] == 'w';
        QString path;
        std::unique_ptr<Database> watcher;
        for (int actor = 0; actor < 5; ++actor) {
            if (!watcher) {
                path = m_files.filePath(QString("%1-%2.kelva").arg(index).arg(actor));
                QVERIFY(QFile::copy(m_files.filePath("template.kelva"), path));
                auto opened = Database::open(path, Database::Mode::ReadWrite);
                QVERIFY(opened.ok());
                watcher = std::move(opened.value());
            }
            const auto session = open(path, actor);
            QVERIFY(session);
            // Grows when another connection has written anything at all.
            const int before = watcher->value("PRAGMA data_version").toInt();
            const std::optional<ErrorCode> error = tried.call(*session);
            const bool changed = watcher->value("PRAGMA data_version").toInt() != before;
            const bool allowed = tried.expected[actor + 1] == '+';
            const QByteArray who = "as actor " + QByteArray::number(actor);
            QVERIFY2(allowed ? !error : error == ErrorCode::Refused, who.constData());
            QVERIFY2(changed == (allowed && writes && actor < 4), who.constData());
            if (changed)
                watcher.reset();
        }
    }

    void everyOperationIsInTheTable()
    {
        QStringList listed;
        QStringList functions;
        for (const Operation &operation : operations()) {
            listed << operation.name;
            functions << QString(operation.name).section(',', 0, 0);
        }
        functions.removeDuplicates();
        functions.sort();
        QCOMPARE(functions, declared());
        QStringList tried;
        for (const Case &row : cases())
            tried << row.operation;
        QCOMPARE(tried, listed);
    }

    void theTableIsTheOneInTheDocumentation()
    {
        const QMap<Permission, QString> words{
            {Permission::Anybody, "anybody"},
            {Permission::Writer, "anybody, not offline; decided by record"},
            {Permission::OldPassword, "the old password, not offline"},
            {Permission::Classify, "`kelvaCLASSIFY`"},
            {Permission::ReadHistory, "`kelvaHISTORY`, or offline"},
            {Permission::CreateFolders, "`kelvaCREATEFOLDER` or `kelvaADMIN`"},
            {Permission::Administer, "`kelvaADMIN`"},
        };
        QStringList expected;
        for (const Operation &operation : operations())
            expected << QString("| `%1` | %2 |").arg(operation.name, words.value(operation.permission));
        QCOMPARE(source("/docs/rights.md").split('\n').filter(QRegularExpression("^\\| `")), expected);
    }

    void whatIsNotInTheTableIsForNobody()
    {
        const auto owner = m_archive.owner();
        const auto opened = read(*owner, "Users::listt", [](Database &) -> Result<void> { return {}; });
        QCOMPARE(opened.error().code, ErrorCode::Refused);
    }

private:
    TestArchive m_archive;
    QTemporaryDir m_files;
    QString m_record;
    QString m_trashed;
    QString m_helper;
    QString m_file;
};

KELVA_TEST(TestOperations)
#include "testoperations.moc"
