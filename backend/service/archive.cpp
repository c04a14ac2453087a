#include "service/archive.h"

#include "service/blobs.h"
#include "service/folders.h"
#include "service/records.h"
#include "service/rights.h"
#include "store/database.h"
#include "store/password.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUuid>

#include <cerrno>
#include <unistd.h>

namespace kelva {
namespace {

void insertSeeds(Database &database, const NewArchive &archive)
{
    const QStringList states{QStringLiteral("New"), QStringLiteral("Resubmission"), QStringLiteral("Done")};
    for (int i = 0; i < states.size(); ++i)
        database.run(QStringLiteral("INSERT INTO status(id, name, position, system) VALUES(?, ?, ?, 1)"),
                     {i + 1, states.at(i), i});
    database.run(QStringLiteral("INSERT INTO document_type(id, name, position) VALUES(0, ?, 0)"),
                 {QStringLiteral("not assigned")});
    database.run(QStringLiteral("INSERT INTO subarchive(id, name) VALUES(1, ?)"),
                 {cleanText(archive.subArchive, 254)});
    const QString personal = rights::personalPrefix + archive.administrator;
    QStringList roles = rights::assignable();
    roles << rights::everyUser << personal;
    for (const QString &role : qAsConst(roles))
        database.run(QStringLiteral("INSERT INTO role VALUES(?)"), {role});
    roles.removeAll(rights::everyUser);
    const qint64 account =
        database.insert(QStringLiteral("INSERT INTO account(login, password, name) VALUES(?, ?, ?)"),
                        {archive.administrator, hashPassword(archive.password), archive.administrator});
    for (const QString &role : qAsConst(roles))
        database.run(QStringLiteral("INSERT INTO account_role VALUES(?, ?)"), {account, role});
}

Result<void> createAt(const QString &path, const NewArchive &archive)
{
    auto database = Database::open(path, Database::Mode::Create);
    if (!database)
        return database.error();
    Transaction transaction(*database.value(), Transaction::Kind::Write);
    insertSeeds(*database.value(), archive);
    return transaction.commit();
}

void removeDatabaseFile(const QString &path)
{
    for (const char *suffix : {"", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
}

/// Keeps the archive that a restored one takes the place of. Whoever works with it would go on writing to a
/// file that is no longer there, so nobody may.
Result<void> putAside(const QString &path)
{
    constexpr int shortWaitMs = 500;
    {
        auto old = Database::open(path, Database::Mode::ReadWrite, shortWaitMs);
        // What cannot be read as an archive is kept as the file it is.
        if (!old && old.error().code != ErrorCode::NotAnArchive)
            return old.error();
        if (old && old.value()->isUsedByOthers())
            return Error{ErrorCode::Busy,
                         QStringLiteral(
                             "The archive is in use. It can be restored when all programs that work with it "
                             "are closed.")};
    }
    // Numbered: what an earlier restore has kept is kept as well.
    QString kept = path + QStringLiteral(".before-restore");
    for (int number = 2; QFile::exists(kept); ++number)
        kept = QStringLiteral("%1.before-restore.%2").arg(path).arg(number);
    if (!QFile::rename(path, kept))
        return Error{ErrorCode::Storage, QStringLiteral("The archive %1 could not be put aside.").arg(path)};
    removeDatabaseFile(path);
    return {};
}

} // namespace

QString archive::home()
{
    const QString home = qEnvironmentVariable("KELVA_HOME");
    if (!home.isEmpty())
        return home;
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/kelva");
}

Result<QString> archive::fileFor(const QString &host, int port)
{
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) != 0)
        return Error{
            ErrorCode::BadInput,
            QStringLiteral("The server %1 cannot be reached: only archives of this computer, with the host "
                           "\"localhost\", are supported.")
                .arg(host)};
    if (port <= 0)
        return Error{ErrorCode::BadInput, QStringLiteral("The archive number %1 is not valid.").arg(port)};
    return QStringLiteral("%1/%2.kelva").arg(home()).arg(port);
}

Result<void> archive::create(const NewArchive &archive)
{
    if (archive.administrator.isEmpty() || cleanText(archive.administrator) != archive.administrator)
        return Error{ErrorCode::BadInput, QStringLiteral("The name of the administrator is not valid.")};
    if (archive.password.isEmpty())
        return Error{ErrorCode::BadInput, QStringLiteral("A password is needed.")};
    if (QFileInfo::exists(archive.path))
        return Error{ErrorCode::Storage, QStringLiteral("There is a file %1 already.").arg(archive.path)};
    // Under its name only when it is complete: a killed process leaves no half archive there.
    const QString unfinished =
        archive.path + QLatin1Char('.') + QUuid::createUuid().toString(QUuid::Id128).left(8);
    Result<void> done = createAt(unfinished, archive);
    if (done &&
        ::link(QFile::encodeName(unfinished).constData(), QFile::encodeName(archive.path).constData()) != 0)
        done = Error{ErrorCode::Storage,
                     errno == EEXIST ? QStringLiteral("There is a file %1 already.").arg(archive.path)
                                     : QStringLiteral("The file %1 cannot be made.").arg(archive.path)};
    removeDatabaseFile(unfinished);
    return done;
}

Result<QStringList> archive::check(const QString &path)
{
    auto database = Database::open(path, Database::Mode::ReadWrite);
    if (!database)
        return database.error();
    return database.value()->integrityFaults() + blobFaults(*database.value()) +
           folderFaults(*database.value());
}

Result<void> archive::backup(const QString &path, const QString &target)
{
    auto database = Database::open(path, Database::Mode::ReadWrite);
    if (!database)
        return database.error();
    return database.value()->backupTo(target);
}

Result<void> archive::restore(const QString &backup, const QString &path)
{
    auto source = Database::open(backup, Database::Mode::ReadOnly);
    if (!source)
        return source.error();
    if (const QStringList faults = source.value()->integrityFaults(); !faults.isEmpty())
        return Error{ErrorCode::NotAnArchive,
                     QStringLiteral("The backup is damaged: %1").arg(faults.first())};
    const QString unfinished = path + QStringLiteral(".restoring");
    removeDatabaseFile(unfinished);
    if (const Result<void> copied = source.value()->backupTo(unfinished); !copied)
        return copied;
    if (QFileInfo::exists(path)) {
        if (const Result<void> aside = putAside(path); !aside) {
            removeDatabaseFile(unfinished);
            return aside;
        }
    }
    if (!QFile::rename(unfinished, path))
        return Error{ErrorCode::Storage,
                     QStringLiteral("The archive %1 could not be put in place.").arg(path)};
    return {};
}

Result<QStringList> archive::subArchives(const QString &path)
{
    auto database = Database::open(path, Database::Mode::ReadWrite);
    if (!database)
        return database.error();
    QStringList list;
    for (Query row = database.value()->query(QStringLiteral("SELECT name, id FROM subarchive ORDER BY name"));
         row.next();)
        list << joinFields({row.text(0), row.text(1)});
    return database.value()->result(list);
}

} // namespace kelva
