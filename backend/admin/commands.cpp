#include "admin/commands.h"

#include "admin/samplearchive.h"
#include "indexer/indexer.h"
#include "service/archive.h"
#include "service/consolepassword.h"
#include "service/content.h"
#include "service/rights.h"
#include "service/session.h"
#include "service/users.h"

#include <QCommandLineParser>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

#include <functional>

namespace kelva {

namespace {

constexpr int workFailed = 1;
constexpr int wrongUsage = 2;

const char helpText[] =
    R"(Usage: kelvaadmin COMMAND ARCHIVE [ARGUMENT...] [OPTION...]

ARCHIVE is the number of an archive of this machine or the path of its file.

  create ARCHIVE LOGIN        make an archive with its first administrator
  sample ARCHIVE              make an archive with users and documents to try Kelva with
  add-user ARCHIVE LOGIN      add a user
  set-password ARCHIVE LOGIN  give a user a new password
  check ARCHIVE               read everything and report what is damaged
  index ARCHIVE               take the texts of all files that the full-text search does not know yet
  backup ARCHIVE FILE         copy an archive, which may be in use
  restore FILE ARCHIVE        put a backup in place; the present archive is kept beside it
  export-versions ARCHIVE DOCUMENT DIRECTORY
                              write every version of a document's file, as "<version>-<name>"

A password is read as one line from standard input.

  --documents N     sample: number of documents (2000)
  --seed N          sample: another number makes another archive (1)
  --name TEXT       add-user: the user's full name
  --role NAME       add-user: a role to give; may be repeated
  --help            this text
  --version         the version
)";

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

int complain(const QString &text, int code = workFailed)
{
    QTextStream(stderr) << QStringLiteral("kelvaadmin: ") << text << QLatin1Char('\n');
    return code;
}

template<typename T>
int outcome(const Result<T> &result, const QString &success)
{
    if (!result)
        return complain(result.error().text);
    out() << success << QLatin1Char('\n');
    out().flush();
    return 0;
}

Result<QString> archiveFile(const QString &argument)
{
    static const QRegularExpression digits(QStringLiteral("^\\d+$"));
    if (!digits.match(argument).hasMatch())
        return argument;
    bool isNumber = false;
    const int number = argument.toInt(&isNumber);
    if (!isNumber)
        return Error{ErrorCode::BadInput,
                     QStringLiteral("%1 is too large for the number of an archive.").arg(argument)};
    return archive::fileFor(QStringLiteral("localhost"), number);
}

/// A command's words behind its name, the first of which is turned into the archive's path.
struct Call
{
    QString path;
    QStringList rest;
    const QCommandLineParser &options;
};

int create(const Call &call)
{
    NewArchive fresh;
    fresh.path = call.path;
    fresh.administrator = call.rest.at(0);
    fresh.password = readConsolePassword();
    return outcome(archive::create(fresh), QStringLiteral("Created %1.").arg(call.path));
}

int sample(const Call &call)
{
    bool countOk = false;
    bool seedOk = false;
    SampleOptions options;
    options.path = call.path;
    options.documents = call.options.value(QStringLiteral("documents")).toInt(&countOk);
    options.seed = call.options.value(QStringLiteral("seed")).toUInt(&seedOk);
    options.today = QDate::currentDate();
    if (!countOk || options.documents < 0 || options.documents > 10000000 || !seedOk)
        return complain(QStringLiteral("--documents and --seed take whole numbers."), wrongUsage);
    const bool talks = options.documents > 20000;
    const Result<void> made = createSampleArchive(options, [talks](int done) {
        if (talks && done % 100000 == 0)
            out() << done << QStringLiteral(" documents\n") << Qt::flush;
    });
    return outcome(made, QStringLiteral("Created %1 with %2 documents. Every user's password is \"%3\".")
                             .arg(call.path, QString::number(options.documents), options.password));
}

int addUser(const Call &call)
{
    auto session = Session::openAsOwner(call.path, QStringLiteral("kelvaadmin"));
    if (!session)
        return complain(session.error().text);
    NewUser user;
    user.login = call.rest.at(0);
    user.name = call.options.value(QStringLiteral("name"));
    user.password = readConsolePassword();
    Users users(*session.value());
    // Before the user is made: half a user would stand in the way of a second try.
    const Result<QStringList> known = users.roles();
    if (!known)
        return complain(known.error().text);
    const QStringList wanted = call.options.values(QStringLiteral("role"));
    for (const QString &role : wanted)
        if (!known.value().contains(role))
            return complain(QStringLiteral("There is no role %1. There are: %2.")
                                .arg(role, known.value().join(QStringLiteral(", "))));
    if (const Result<qint64> made = users.create(user); !made)
        return complain(made.error().text);
    const QStringList roles = call.options.values(QStringLiteral("role"))
                              << rights::personalPrefix + user.login;
    return outcome(users.setRolesOf(user.login, roles), QStringLiteral("Added %1.").arg(user.login));
}

int setPassword(const Call &call)
{
    auto session = Session::openAsOwner(call.path, QStringLiteral("kelvaadmin"));
    if (!session)
        return complain(session.error().text);
    const QString login = call.rest.at(0);
    return outcome(Users(*session.value()).setPassword(login, readConsolePassword()),
                   QStringLiteral("Changed the password of %1.").arg(login));
}

int check(const Call &call)
{
    const Result<QStringList> faults = archive::check(call.path);
    if (!faults)
        return complain(faults.error().text);
    for (const QString &fault : faults.value())
        complain(fault);
    if (!faults.value().isEmpty())
        return workFailed;
    out() << QStringLiteral("%1 is sound.\n").arg(call.path) << Qt::flush;
    return 0;
}

int index(const Call &call)
{
    auto indexer = Indexer::open(call.path);
    if (!indexer)
        return complain(indexer.error().text);
    int done = 0;
    int failed = 0;
    for (;;) {
        const Result<Indexer::Step> step = indexer.value()->processNext();
        if (!step)
            return complain(step.error().text);
        if (step.value() == Indexer::Step::Nothing)
            break;
        ++(step.value() == Indexer::Step::Done ? done : failed);
    }
    out() << QStringLiteral("%1 done, %2 failed.\n").arg(done).arg(failed) << Qt::flush;
    return 0;
}

int backup(const Call &call)
{
    return outcome(archive::backup(call.path, call.rest.at(0)),
                   QStringLiteral("Copied to %1.").arg(call.rest.at(0)));
}

int restore(const Call &call)
{
    const Result<QString> target = archiveFile(call.rest.at(0));
    if (!target)
        return complain(target.error().text);
    return outcome(archive::restore(call.path, target.value()),
                   QStringLiteral("Restored %1.").arg(target.value()));
}

int exportVersions(const Call &call)
{
    auto session = Session::openAsOwner(call.path, QStringLiteral("kelvaadmin"));
    if (!session)
        return complain(session.error().text);
    const Result<QStringList> files =
        Content(*session.value()).exportVersions(call.rest.at(0).toLongLong(), call.rest.at(1));
    return outcome(files, files ? files.value().join(QLatin1Char('\n')) : QString());
}

struct Command
{
    const char *name;
    int words; ///< behind the first
    int (*run)(const Call &);
};

const Command commands[] = {{"create", 1, create},
                            {"sample", 0, sample},
                            {"add-user", 1, addUser},
                            {"set-password", 1, setPassword},
                            {"check", 0, check},
                            {"index", 0, index},
                            {"backup", 1, backup},
                            {"restore", 1, restore},
                            {"export-versions", 2, exportVersions}};

} // namespace

int runCommand(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addOptions({{QStringLiteral("documents"), QString(), QStringLiteral("N"), QStringLiteral("2000")},
                       {QStringLiteral("seed"), QString(), QStringLiteral("N"), QStringLiteral("1")},
                       {QStringLiteral("name"), QString(), QStringLiteral("TEXT")},
                       {QStringLiteral("role"), QString(), QStringLiteral("NAME")},
                       {QStringLiteral("help"), QString()},
                       {QStringLiteral("version"), QString()}});
    if (!parser.parse(QStringList(QStringLiteral("kelvaadmin")) + arguments))
        return complain(parser.errorText() + QStringLiteral(" See kelvaadmin --help."), wrongUsage);
    if (parser.isSet(QStringLiteral("help"))) {
        out() << QString::fromUtf8(helpText) << Qt::flush;
        return 0;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        out() << QStringLiteral("kelvaadmin %1\n").arg(QStringLiteral(KELVA_VERSION)) << Qt::flush;
        return 0;
    }
    const QStringList words = parser.positionalArguments();
    for (const Command &command : commands) {
        if (words.value(0) != QLatin1String(command.name))
            continue;
        if (words.size() != command.words + 2)
            break;
        // The backup of restore is a path even when its name is a number.
        const Result<QString> path =
            command.run == restore ? Result<QString>(words.at(1)) : archiveFile(words.at(1));
        if (!path)
            return complain(path.error().text);
        return command.run({path.value(), words.mid(2), parser});
    }
    return complain(words.isEmpty() ? QStringLiteral("a command is missing. See kelvaadmin --help.")
                                    : QStringLiteral("\"%1\" is not called like this. See kelvaadmin --help.")
                                          .arg(words.join(QLatin1Char(' '))),
                    wrongUsage);
}

} // namespace kelva
