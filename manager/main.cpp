#include "manager/commandline.h"
#include "manager/connectionmanager.h"
#include "manager/display.h"
#include "manager/profilestore.h"
#include "manager/terminationsignals.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <memory>

#include <unistd.h>

namespace {

constexpr int stopTimeoutMs = 3000;

QStringList argumentsOf(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromUtf8(argv[i]);
    return arguments;
}

int runWithoutWindow(kelva::ProfileStore &store)
{
    if (const auto loaded = store.load(); !loaded)
        return kelva::complain(loaded.error().text);
    kelva::TerminationSignals termination;
    QObject::connect(&termination, &kelva::TerminationSignals::requested, qApp, &QCoreApplication::quit);
    auto manager = std::make_unique<kelva::ConnectionManager>(store);
    if (const auto started = manager->start(); !started) {
        const bool other = started.error().code == kelva::ErrorCode::InUse;
        return kelva::complain(started.error().text,
                               other ? kelva::exitcode::runsAlready : kelva::exitcode::failed);
    }
    const int code = QCoreApplication::exec();
    // A thread that hangs in an archive would keep the process; the system takes its memory back as well.
    if (!manager->stop(stopTimeoutMs))
        ::_exit(code);
    return code;
}

} // namespace

int main(int argc, char *argv[])
{
    using Task = kelva::CommandLine::Task;
    const kelva::CommandLine command = kelva::parseCommandLine(argumentsOf(argc, argv));
    QCoreApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    QCoreApplication::setApplicationName(QStringLiteral("kelvamanager"));
    kelva::ProfileStore store;
    if (command.task != Task::RunWithoutWindow && command.task != Task::ShowWindow)
        return kelva::runCommand(command, store);
    if (command.task == Task::ShowWindow && !kelva::hasDisplay())
        return kelva::complain(QStringLiteral("There is no display. With --no-window it runs without one."));
    return runWithoutWindow(store);
}
