#include "manager/commandline.h"

#include "contract/recordformat.h"
#include "manager/managerserver.h"
#include "manager/profilecheck.h"
#include "manager/profilestore.h"
#include "service/consolepassword.h"

#include <QCommandLineParser>
#include <QTextStream>

namespace kelva {
namespace {

const char helpText[] =
    R"(Usage: kelvamanager [--no-window]
       kelvamanager --add-profile NAME --port N --user LOGIN [OPTION...]
       kelvamanager --remove-profile ID
       kelvamanager --list | --running

Keeps the profiles with which Kelva logs in, and answers the Kelva programs of this user.

  --no-window           run without a window
  --add-profile NAME    log in, add a profile and print its id; the password is read as one line from
                        standard input
    --host HOST         localhost, an archive of this computer, unless given
    --port N            of localhost the number of the archive
    --user LOGIN        who logs in
    --archive KEY       key of one of its archives; the first unless given
    --line1 TEXT        shown when Kelva starts and in its title; the profile's name unless given
    --line2 TEXT        shown when Kelva starts
  --remove-profile ID   remove a profile
  --list                print the profiles, one in a line: id, name, host, port, user and archive, with
                        tabs between them
  --running             exit with 0 when a Connection Manager of this user runs, otherwise with 1
  --help                this text
  --version             the version

A Connection Manager that runs takes over what these commands change.
Exit code: 0 done, 1 failed, 2 wrong command line, 3 the Connection Manager is running already.
)";

QString option(const char *name)
{
    return QString::fromLatin1(name);
}

QTextStream &out()
{
    static QTextStream stream(stdout);
    stream.setCodec("UTF-8");
    return stream;
}

int addProfile(const CommandLine &command, ProfileStore &store)
{
    Profile profile;
    profile.name = command.name;
    profile.host = command.host;
    profile.port = command.port;
    profile.user = command.user;
    profile.password = readConsolePassword();
    profile.displayLine1 = command.line1;
    profile.displayLine2 = command.line2;
    profile = tidied(profile);
    const Result<QStringList> archives = loadArchives(profile);
    if (!archives)
        return complain(archives.error().text);
    profile.archives = archives.value();
    if (!command.archive.isEmpty())
        profile.archiveIndex = archiveIndexOf(profile.archives, command.archive);
    if (profile.archiveIndex < 0)
        return complain(QStringLiteral("There is no archive with the key %1.").arg(command.archive));
    if (const Result<void> valid = validate(profile); !valid)
        return complain(valid.error().text);
    if (const Result<ProfileFindings> checked = checkProfile(profile); !checked)
        return complain(checked.error().text);
    const Result<Profile> added = store.add(profile);
    if (!added)
        return complain(added.error().text);
    out() << added.value().id << QLatin1Char('\n') << Qt::flush;
    return exitcode::done;
}

int removeProfile(const QString &id, ProfileStore &store)
{
    bool isNumber = false;
    const qint64 number = id.toLongLong(&isNumber);
    if (!isNumber)
        return complain(QStringLiteral("--remove-profile takes the id of a profile, see --list."),
                        exitcode::wrongUsage);
    if (const Result<void> removed = store.remove(number); !removed)
        return complain(removed.error().text);
    return exitcode::done;
}

int listProfiles(const ProfileStore &store)
{
    const Result<QList<Profile>> profiles = store.load();
    if (!profiles)
        return complain(profiles.error().text);
    for (const Profile &profile : profiles.value())
        out() << QStringList{QString::number(profile.id),
                             profile.name,
                             profile.host,
                             profile.port,
                             profile.user,
                             profile.archiveName()}
                     .join(QLatin1Char('\t'))
              << QLatin1Char('\n');
    out().flush();
    return exitcode::done;
}

CommandLine wrong(const QString &text)
{
    CommandLine command;
    command.task = CommandLine::Task::Wrong;
    command.error = text;
    return command;
}

struct TaskOption
{
    const char *name;
    CommandLine::Task task;
};

const TaskOption taskOptions[] = {{"help", CommandLine::Task::Help},
                                  {"version", CommandLine::Task::Version},
                                  {"no-window", CommandLine::Task::RunWithoutWindow},
                                  {"add-profile", CommandLine::Task::AddProfile},
                                  {"remove-profile", CommandLine::Task::RemoveProfile},
                                  {"list", CommandLine::Task::ListProfiles},
                                  {"running", CommandLine::Task::AskWhetherRunning}};
const char *const profileOptions[] = {"host", "port", "user", "archive", "line1", "line2"};

} // namespace

CommandLine parseCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    for (const char *name : {"help", "version", "no-window", "list", "running"})
        parser.addOption({option(name), QString()});
    for (const char *name : {"add-profile", "remove-profile"})
        parser.addOption({option(name), QString(), QStringLiteral("VALUE")});
    for (const char *name : profileOptions)
        parser.addOption({option(name), QString(), QStringLiteral("VALUE")});
    if (!parser.parse(QStringList(QStringLiteral("kelvamanager")) + arguments))
        return wrong(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return wrong(QStringLiteral("\"%1\" is not understood.").arg(parser.positionalArguments().first()));
    CommandLine command;
    int tasks = 0;
    for (const TaskOption &candidate : taskOptions)
        if (parser.isSet(option(candidate.name)) && ++tasks == 1)
            command.task = candidate.task;
    // --help and --version win over everything.
    const bool explains =
        command.task == CommandLine::Task::Help || command.task == CommandLine::Task::Version;
    if (tasks > 1 && !explains)
        return wrong(QStringLiteral("Only one of the commands can be given."));
    if (command.task != CommandLine::Task::AddProfile && !explains)
        for (const char *name : profileOptions)
            if (parser.isSet(option(name)))
                return wrong(QStringLiteral("--%1 goes with --add-profile only.").arg(option(name)));
    command.name = parser.value(option("add-profile"));
    command.id = parser.value(option("remove-profile"));
    command.host = parser.isSet(option("host")) ? parser.value(option("host")) : QStringLiteral("localhost");
    command.port = parser.value(option("port"));
    command.user = parser.value(option("user"));
    command.archive = parser.value(option("archive"));
    command.line1 = parser.isSet(option("line1")) ? parser.value(option("line1")) : command.name;
    command.line2 = parser.value(option("line2"));
    if (command.task == CommandLine::Task::AddProfile && (command.port.isEmpty() || command.user.isEmpty()))
        return wrong(QStringLiteral("--add-profile needs --port and --user."));
    return command;
}

int runCommand(const CommandLine &command, ProfileStore &store)
{
    switch (command.task) {
    case CommandLine::Task::AddProfile:
        return addProfile(command, store);
    case CommandLine::Task::RemoveProfile:
        return removeProfile(command.id, store);
    case CommandLine::Task::ListProfiles:
        return listProfiles(store);
    case CommandLine::Task::AskWhetherRunning:
        return ManagerServer::isAnswering() ? exitcode::done : exitcode::failed;
    case CommandLine::Task::Version:
        out() << QStringLiteral("kelvamanager %1\n").arg(QStringLiteral(KELVA_VERSION)) << Qt::flush;
        return exitcode::done;
    case CommandLine::Task::Wrong:
        return complain(command.error + QStringLiteral(" See kelvamanager --help."), exitcode::wrongUsage);
    default:
        out() << QString::fromUtf8(helpText) << Qt::flush;
        return exitcode::done;
    }
}

int complain(const QString &text, int code)
{
    QTextStream stream(stderr);
    stream.setCodec("UTF-8");
    stream << QStringLiteral("kelvamanager: ") << text << QLatin1Char('\n');
    return code;
}

} // namespace kelva
