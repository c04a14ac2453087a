#include "store/schema.h"

#include "store/database.h"

#include <QStringList>

#include <iterator>

namespace kelva {
namespace {

void runAll(Database &database, const QStringList &statements)
{
    for (const QString &statement : statements)
        database.run(statement);
}

void createPeople(Database &database)
{
    runAll(
        database,
        {
            QStringLiteral("CREATE TABLE property(name TEXT PRIMARY KEY, value) WITHOUT ROWID"),
            QStringLiteral(
                "CREATE TABLE counter(name TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID"),
            QStringLiteral("INSERT INTO counter VALUES('vocabulary', 1)"),
            QStringLiteral(
                "CREATE TABLE account(id INTEGER PRIMARY KEY AUTOINCREMENT, login TEXT NOT NULL UNIQUE,"
                " password TEXT NOT NULL, name TEXT NOT NULL DEFAULT '', short_name TEXT NOT NULL DEFAULT '',"
                " expired INTEGER NOT NULL DEFAULT 0, directory INTEGER NOT NULL DEFAULT 0)"),
            QStringLiteral("CREATE TABLE role(name TEXT PRIMARY KEY) WITHOUT ROWID"),
            QStringLiteral("CREATE TABLE account_role("
                           " account INTEGER NOT NULL REFERENCES account(id) ON DELETE CASCADE,"
                           " role TEXT NOT NULL REFERENCES role(name) ON DELETE CASCADE,"
                           " PRIMARY KEY(account, role)) WITHOUT ROWID"),
            QStringLiteral("CREATE INDEX account_role_role ON account_role(role)"),
            QStringLiteral(
                "CREATE TABLE directory_profile(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,"
                " data BLOB NOT NULL)"),
            QStringLiteral(
                "CREATE TABLE mobile_device(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,"
                " device TEXT NOT NULL, active INTEGER NOT NULL, subarchive INTEGER NOT NULL)"),
            QStringLiteral(
                "CREATE TABLE setting(section TEXT NOT NULL, name TEXT NOT NULL, value BLOB NOT NULL,"
                " owner TEXT NOT NULL DEFAULT '', PRIMARY KEY(section, name)) WITHOUT ROWID"),
            QStringLiteral("CREATE TABLE search(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,"
                           " definition TEXT NOT NULL, owner TEXT NOT NULL)"),
            QStringLiteral(
                "CREATE TABLE search_role(search INTEGER NOT NULL REFERENCES search(id) ON DELETE CASCADE,"
                " role TEXT NOT NULL REFERENCES role(name) ON DELETE CASCADE,"
                " PRIMARY KEY(search, role)) WITHOUT ROWID"),
        });
}

void createVocabulary(Database &database)
{
    runAll(
        database,
        {
            QStringLiteral("CREATE TABLE folder(oid TEXT PRIMARY KEY, name TEXT NOT NULL, flag TEXT NOT NULL "
                           "DEFAULT '0',"
                           " key TEXT NOT NULL DEFAULT '', keywords TEXT NOT NULL DEFAULT '', picture BLOB)"),
            QStringLiteral(
                "CREATE TABLE folder_role(folder TEXT NOT NULL REFERENCES folder(oid) ON DELETE CASCADE,"
                " role TEXT NOT NULL, PRIMARY KEY(folder, role)) WITHOUT ROWID"),
            QStringLiteral("CREATE INDEX folder_role_role ON folder_role(role)"),
            QStringLiteral("CREATE TABLE folder_structure(folder TEXT NOT NULL, position INTEGER NOT NULL,"
                           " record TEXT NOT NULL, picture BLOB, PRIMARY KEY(folder, position))"),
            QStringLiteral("CREATE TABLE status(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,"
                           " position INTEGER NOT NULL, system INTEGER NOT NULL DEFAULT 0, picture BLOB)"),
            QStringLiteral(
                "CREATE TABLE document_type(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,"
                " position INTEGER NOT NULL, years INTEGER NOT NULL DEFAULT 0,"
                " months INTEGER NOT NULL DEFAULT 0, days INTEGER NOT NULL DEFAULT 0, picture BLOB)"),
            QStringLiteral("CREATE TABLE attribute(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,"
                           " kind TEXT NOT NULL, not_unique INTEGER NOT NULL DEFAULT 0,"
                           " not_active INTEGER NOT NULL DEFAULT 0)"),
            QStringLiteral("CREATE TABLE attribute_value("
                           " attribute INTEGER NOT NULL REFERENCES attribute(id) ON DELETE CASCADE,"
                           " position INTEGER NOT NULL, value TEXT NOT NULL,"
                           " PRIMARY KEY(attribute, position)) WITHOUT ROWID"),
            QStringLiteral(
                "CREATE TABLE subarchive(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE,"
                " comment TEXT NOT NULL DEFAULT '')"),
        });
}

void createDocuments(Database &database)
{
    runAll(database,
           {
               // While touched is set, the upload has not come to its end.
               QStringLiteral(
                   "CREATE TABLE blob(id INTEGER PRIMARY KEY AUTOINCREMENT, size INTEGER NOT NULL DEFAULT 0,"
                   " sha256 BLOB, touched TEXT)"),
               QStringLiteral("CREATE INDEX blob_unfinished ON blob(touched) WHERE touched IS NOT NULL"),
               QStringLiteral("CREATE TABLE blob_piece(id INTEGER PRIMARY KEY,"
                              " blob INTEGER NOT NULL REFERENCES blob(id) ON DELETE CASCADE,"
                              " number INTEGER NOT NULL, data BLOB NOT NULL)"),
               QStringLiteral("CREATE UNIQUE INDEX blob_piece_place ON blob_piece(blob, number)"),
               QStringLiteral(
                   "CREATE TABLE document(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                   " subarchive INTEGER NOT NULL REFERENCES subarchive(id), file_name TEXT NOT NULL,"
                   " creator TEXT NOT NULL, created TEXT NOT NULL, version INTEGER NOT NULL DEFAULT 0,"
                   " deleted INTEGER NOT NULL DEFAULT 0)"),
               QStringLiteral("CREATE INDEX document_place ON document(subarchive, file_name)"),
               QStringLiteral("CREATE TABLE file_version(document INTEGER NOT NULL REFERENCES document(id),"
                              " version INTEGER NOT NULL, blob INTEGER NOT NULL REFERENCES blob(id),"
                              " creator TEXT NOT NULL, created TEXT NOT NULL,"
                              " PRIMARY KEY(document, version)) WITHOUT ROWID"),
               QStringLiteral("CREATE INDEX file_version_blob ON file_version(blob)"),
               QStringLiteral(
                   "CREATE TABLE event(id INTEGER PRIMARY KEY AUTOINCREMENT, document INTEGER NOT NULL,"
                   " action INTEGER NOT NULL, time TEXT NOT NULL, login TEXT NOT NULL,"
                   " comment TEXT NOT NULL DEFAULT '')"),
               QStringLiteral("CREATE INDEX event_place ON event(document, action, login, time)"),
               // state: 0 to do, 4 done, 6 failed
               QStringLiteral("CREATE TABLE file_text(document INTEGER PRIMARY KEY REFERENCES document(id),"
                              " state INTEGER NOT NULL DEFAULT 0, text TEXT NOT NULL DEFAULT '')"),
               QStringLiteral("CREATE INDEX file_text_state ON file_text(state)"),
           });
}

void createRecords(Database &database)
{
    runAll(
        database,
        {
            QStringLiteral(
                "CREATE TABLE classification(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                " document INTEGER NOT NULL REFERENCES document(id), subarchive INTEGER NOT NULL,"
                " trashed INTEGER NOT NULL DEFAULT 0, folder TEXT NOT NULL DEFAULT '0',"
                " status INTEGER NOT NULL DEFAULT 1, docart INTEGER NOT NULL DEFAULT 0, cdate TEXT,"
                " defdate TEXT, revision INTEGER NOT NULL DEFAULT 1, notes INTEGER NOT NULL DEFAULT 0,"
                " closed INTEGER NOT NULL DEFAULT 0, creator TEXT NOT NULL, changeid TEXT NOT NULL,"
                " ctimestamp TEXT NOT NULL, mandant TEXT NOT NULL DEFAULT '',"
                " bemerkung TEXT NOT NULL DEFAULT '',"
                " version TEXT GENERATED ALWAYS AS ('1_' || revision) VIRTUAL)"),
            QStringLiteral("CREATE INDEX classification_document ON classification(document)"),
            // The row id ends every index, so that equal keys come in the order of a list; the folder stands
            // behind it for the check of rights.
            QStringLiteral("CREATE INDEX classification_folder ON classification(folder, trashed, id, "
                           "status, docart, cdate)"),
            QStringLiteral(
                "CREATE INDEX classification_status ON classification(status, trashed, id, folder)"),
            QStringLiteral(
                "CREATE INDEX classification_docart ON classification(docart, trashed, id, folder)"),
            QStringLiteral("CREATE INDEX classification_mandant ON classification(mandant, trashed, id)"),
            QStringLiteral(
                "CREATE INDEX classification_creator ON classification(creator, trashed, id, folder)"),
            QStringLiteral("CREATE INDEX classification_cdate ON classification(cdate, trashed, id, folder)"),
            QStringLiteral("CREATE INDEX classification_defdate ON classification(defdate, status)"
                           " WHERE defdate IS NOT NULL"),
            QStringLiteral("CREATE INDEX classification_trash ON classification(id) WHERE trashed = 1"),
            // Earlier states of a record; the latest is the record itself.
            QStringLiteral(
                "CREATE TABLE revision(classification INTEGER NOT NULL REFERENCES classification(id),"
                " number INTEGER NOT NULL, mandant TEXT NOT NULL, bemerkung TEXT NOT NULL,"
                " status INTEGER NOT NULL, folder TEXT NOT NULL, docart INTEGER NOT NULL,"
                " changeid TEXT NOT NULL, cdate TEXT, ctimestamp TEXT NOT NULL, defdate TEXT,"
                " attributes TEXT NOT NULL DEFAULT '{}', PRIMARY KEY(classification, number)) WITHOUT ROWID"),
            QStringLiteral(
                "CREATE TABLE note(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                " classification INTEGER NOT NULL REFERENCES classification(id), author TEXT NOT NULL,"
                " created TEXT NOT NULL, text TEXT NOT NULL)"),
            QStringLiteral("CREATE INDEX note_classification ON note(classification)"),
            QStringLiteral("CREATE TRIGGER note_added AFTER INSERT ON note BEGIN"
                           " UPDATE classification SET notes = notes + 1 WHERE id = new.classification; END"),
            QStringLiteral("CREATE TRIGGER note_removed AFTER DELETE ON note BEGIN"
                           " UPDATE classification SET notes = notes - 1 WHERE id = old.classification; END"),
        });
}

/// A full-text table over one column and the triggers that keep it. They fire for changes of this column
/// alone.
void createFullText(Database &database, const QString &name, const QString &table, const QString &key,
                    const QString &column, const QString &tokenizer)
{
    const auto fill = [&](QString text) {
        return text.replace(QLatin1String("@name"), name)
            .replace(QLatin1String("@table"), table)
            .replace(QLatin1String("@key"), key)
            .replace(QLatin1String("@column"), column)
            .replace(QLatin1String("@tokenizer"), tokenizer);
    };
    runAll(database,
           {
               fill(QStringLiteral(
                   "CREATE VIRTUAL TABLE @name USING fts5(@column, content='@table', content_rowid='@key',"
                   " columnsize=0, tokenize='@tokenizer')")),
               fill(QStringLiteral(
                   "CREATE TRIGGER @name_added AFTER INSERT ON @table WHEN new.@column <> '' BEGIN"
                   " INSERT INTO @name(rowid, @column) VALUES(new.@key, new.@column); END")),
               fill(QStringLiteral(
                   "CREATE TRIGGER @name_removed AFTER DELETE ON @table WHEN old.@column <> '' BEGIN"
                   " INSERT INTO @name(@name, rowid, @column) VALUES('delete', old.@key, old.@column); END")),
               fill(QStringLiteral(
                   "CREATE TRIGGER @name_changed AFTER UPDATE OF @column ON @table"
                   " WHEN old.@column IS NOT new.@column BEGIN"
                   " INSERT INTO @name(@name, rowid, @column) SELECT 'delete', old.@key, old.@column"
                   " WHERE old.@column <> '';"
                   " INSERT INTO @name(rowid, @column) SELECT new.@key, new.@column"
                   " WHERE new.@column <> ''; END")),
           });
}

const QString wordTokens = QStringLiteral("unicode61 remove_diacritics 0");
const QString trigramTokens = QStringLiteral("trigram");

void createVersion1(Database &database)
{
    createPeople(database);
    createVocabulary(database);
    createDocuments(database);
    createRecords(database);
    createFullText(database, schema::wordTable(QStringLiteral("bemerkung")), QStringLiteral("classification"),
                   QStringLiteral("id"), QStringLiteral("bemerkung"), wordTokens);
    createFullText(database, schema::trigramTable(QStringLiteral("bemerkung")),
                   QStringLiteral("classification"), QStringLiteral("id"), QStringLiteral("bemerkung"),
                   trigramTokens);
    createFullText(database, schema::wordTable(QStringLiteral("text")), QStringLiteral("file_text"),
                   QStringLiteral("document"), QStringLiteral("text"), wordTokens);
}

/// Who takes the text of a file at the moment, since when (seconds since 1970), and how often it was begun.
void createVersion2(Database &database)
{
    runAll(database,
           {
               QStringLiteral("ALTER TABLE file_text ADD COLUMN claimant TEXT NOT NULL DEFAULT ''"),
               QStringLiteral("ALTER TABLE file_text ADD COLUMN claimed INTEGER NOT NULL DEFAULT 0"),
               QStringLiteral("ALTER TABLE file_text ADD COLUMN attempts INTEGER NOT NULL DEFAULT 0"),
           });
}

/// What belongs to a user is his account's, whatever its login is called; the names stay for people to read.
void createVersion3(Database &database)
{
    const struct
    {
        const char *table;
        const char *login;
    } tables[] = {
        {"document", "creator"}, {"classification", "creator"}, {"note", "author"}, {"event", "login"}};
    for (const auto &[table, login] : tables) {
        database.run(QStringLiteral("ALTER TABLE %1 ADD COLUMN account INTEGER").arg(QLatin1String(table)));
        database.run(
            QStringLiteral("UPDATE %1 SET account = (SELECT a.id FROM account a WHERE a.login = %1.%2)")
                .arg(QLatin1String(table), QLatin1String(login)));
    }
    database.run(QStringLiteral("DROP INDEX classification_creator"));
    database.run(QStringLiteral(
        "CREATE INDEX classification_account ON classification(account, trashed, id, folder)"));
}

/// Step n leads from version n to n + 1. A step never changes once archives of its version exist.
using Step = void (*)(Database &);
const Step steps[] = {createVersion1, createVersion2, createVersion3};

} // namespace

int schema::currentVersion()
{
    return static_cast<int>(std::size(steps));
}

Result<void> schema::upgrade(Database &database, int from, int to)
{
    for (int version = from; version < to; ++version) {
        Transaction transaction(database, Transaction::Kind::Write);
        // Another program may have taken the step while this one waited for the lock.
        if (database.value(QStringLiteral("PRAGMA user_version")).toInt() != version)
            continue;
        steps[version](database);
        database.run(QStringLiteral("PRAGMA user_version = %1").arg(version + 1));
        if (const Result<void> done = transaction.commit(); !done)
            return done;
    }
    return {};
}

QString schema::attributeColumn(qint64 attributeId)
{
    return QStringLiteral("attr%1").arg(attributeId);
}

QString schema::wordTable(const QString &column)
{
    return QStringLiteral("words_") + column;
}

QString schema::trigramTable(const QString &column)
{
    return QStringLiteral("trigrams_") + column;
}

void schema::addAttributeColumn(Database &database, qint64 attributeId, const QString &sqlType, bool freeText,
                                bool indexed)
{
    const QString column = attributeColumn(attributeId);
    database.run(QStringLiteral("ALTER TABLE classification ADD COLUMN %1 %2").arg(column, sqlType));
    if (indexed)
        database.run(
            QStringLiteral("CREATE INDEX classification_%1 ON classification(%1, trashed, id, folder)")
                .arg(column));
    if (freeText) {
        createFullText(database, wordTable(column), QStringLiteral("classification"), QStringLiteral("id"),
                       column, wordTokens);
        createFullText(database, trigramTable(column), QStringLiteral("classification"), QStringLiteral("id"),
                       column, trigramTokens);
    }
}

} // namespace kelva
