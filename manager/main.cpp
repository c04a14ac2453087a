#include "manager/commandline.h"
#include "manager/connectionmanager.h"
#include "manager/displayprobe.h"
#include "manager/managerwindow.h"
#include "manager/profilestore.h"
#include "manager/terminationsignals.h"

#include <QApplication>
#include <QTextCodec>

#include <memory>

#include <unistd.h>

using namespace kelva;

namespace {

constexpr int stopTimeoutMs = 3000;

QStringList argumentsOf(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromUtf8(argv[i]);
    return arguments;
}

void nameApplication()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    QCoreApplication::setApplicationName(QStringLiteral("kelvamanager"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KELVA_VERSION));
}

int startFailed(const Error &error)
{
    return complain(error.text, error.code == ErrorCode::InUse ? exitcode::runsAlready : exitcode::failed);
}

/// A thread that hangs in an archive would keep the process; the system takes its memory back as well.
void endProcess(bool finished, int code)
{
    if (!finished)
        ::_exit(code);
}

int runWithoutWindow(ProfileStore &store)
{
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::requested, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    ProfileList profiles(store);
    if (!profiles.fault().isEmpty())
        return complain(profiles.fault());
    ConnectionManager manager(profiles);
    if (const Result<void> started = manager.start(); !started)
        return startFailed(started.error());
    const int code = QCoreApplication::exec();
    endProcess(manager.stop(stopTimeoutMs), code);
    return code;
}

int runWithWindow(ProfileStore &store)
{
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::requested, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    ProfileList profiles(store);
    auto manager = std::make_unique<ConnectionManager>(profiles);
    if (const Result<void> started = manager->start(); !started) {
        // One without a window leaves the window to this process.
        if (started.error().code != ErrorCode::InUse || ManagerServer::ask("SHOWWINDOW") != "NOWINDOW")
            return startFailed(started.error());
        manager.reset();
    }
    ManagerWindow window(profiles, manager.get());
    QObject::connect(&window, &ManagerWindow::quitRequested, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    if (manager)
        QObject::connect(manager.get(), &ConnectionManager::windowWanted, &window, &ManagerWindow::present);
    window.present();
    const int code = QApplication::exec();
    const bool stopped = !manager || manager->stop(stopTimeoutMs);
    endProcess(window.finish(stopTimeoutMs) && stopped, code);
    return code;
}

} // namespace

int main(int argc, char *argv[])
{
    using Task = CommandLine::Task;
    const CommandLine command = parseCommandLine(argumentsOf(argc, argv));
    if (command.task == Task::ShowWindow) {
        DisplayProbe display;
        if (!display.isReachable())
            return complain(
                QStringLiteral("No display can be reached. With --no-window it runs without one."));
        QGuiApplication::setFallbackSessionManagementEnabled(false);
        QApplication application(argc, argv);
        display.close();
        nameApplication();
        // In the background there is no window, and a box that closes must not end it.
        QGuiApplication::setQuitOnLastWindowClosed(false);
        ProfileStore store;
        return runWithWindow(store);
    }
    QCoreApplication application(argc, argv);
    nameApplication();
    ProfileStore store;
    return command.task == Task::RunWithoutWindow ? runWithoutWindow(store) : runCommand(command, store);
}
