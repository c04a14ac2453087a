#pragma once

#include <QString>
#include <QStringList>

namespace kelva {

class ProfileStore;

/// What the command line asks for.
struct CommandLine
{
    enum class Task {
        ShowWindow,
        RunWithoutWindow,
        AddProfile,
        RemoveProfile,
        ListProfiles,
        AskWhetherRunning,
        Help,
        Version,
        Wrong
    };

    Task task = Task::ShowWindow;
    QString error; ///< of Wrong
    QString name;
    QString host;
    QString port;
    QString user;
    QString archive; ///< key; empty for the first
    QString line1;
    QString line2;
    QString id; ///< of the profile to remove
};

namespace exitcode {

constexpr int done = 0;
constexpr int failed = 1;
constexpr int wrongUsage = 2;
constexpr int runsAlready = 3;

} // namespace exitcode

/// Arguments without the program's name.
CommandLine parseCommandLine(const QStringList &arguments);

/// Carries out every task but the two that run the Connection Manager. Returns an exit code.
int runCommand(const CommandLine &command, ProfileStore &store);
/// Writes one line to standard error and returns the code.
int complain(const QString &text, int code = exitcode::failed);

} // namespace kelva
