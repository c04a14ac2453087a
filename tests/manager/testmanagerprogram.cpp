#include "manager/commandline.h"
#include "manager/managerserver.h"
#include "manager/managersurroundings.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include "server/kelvalogindata.h"

#include <QDir>
#include <QProcess>
#include <QSharedMemory>

#include <csignal>

#include <sys/shm.h>

using namespace kelva;

namespace {

using outside::Outcome;

Outcome run(const QStringList &arguments, const QByteArray &input = {})
{
    return outside::run(KELVA_MANAGER_PROGRAM, arguments, input);
}

const QStringList addOffice{"--add-profile", "Büro", "--port", "1", "--user", "admin"};

class RunningManager
{
public:
    RunningManager()
    {
        // Where the tests are to outlive a terminal, a child would inherit that it ignores this.
        const auto before = ::signal(SIGHUP, SIG_DFL);
        process.start(KELVA_MANAGER_PROGRAM, {"--no-window"});
        process.waitForStarted();
        ::signal(SIGHUP, before);
        QTRY_VERIFY(ManagerServer::isAnswering());
    }
    ~RunningManager()
    {
        process.terminate();
        if (!process.waitForFinished())
            process.kill();
        process.waitForFinished();
    }
    QProcess process;
};

} // namespace

/// The program itself, as a script sees it.
class TestManagerProgram : public QObject
{
    Q_OBJECT

private slots:
    void aProfileIsAddedToTheOneThatRuns()
    {
        ManagerSurroundings s;
        RunningManager running;
        QCOMPARE(run({"--list"}).output, QString());
        const Outcome added = run(addOffice + QStringList{"--line2", "Zweite Zeile"}, "secret\n");
        QCOMPARE(added.errors, QString());
        QCOMPARE(added.code, exitcode::done);
        kelvaLoginData login;
        kelvaProfileData profile;
        QString message;
        QVERIFY2(login.getProfileById(profile, message, added.output.trimmed().toInt()), qPrintable(message));
        QCOMPARE(profile.name + '|' + profile.user + '|' + profile.password, QString("Büro|admin|secret"));
        QCOMPARE(profile.displayLine1 + '|' + profile.displayLine2, QString("Büro|Zweite Zeile"));
        QVERIFY(QSharedMemory(s.store.load().value().first().blockKey()).attach());
        const QString id = added.output.trimmed();
        QCOMPARE(run({"--list"}).output, id + "\tBüro\tlocalhost\t1\tadmin\tArchive\n");
        QCOMPARE(run({"--remove-profile", id}).code, exitcode::done);
        QCOMPARE(run({"--remove-profile", id}).code, exitcode::failed);
        QVERIFY(!login.getProfileById(profile = {}, message, id.toInt()));
    }

    void refusedProfilesAreNotAdded()
    {
        ManagerSurroundings s;
        const Outcome wrongPassword = run(addOffice, "wrong\n");
        QVERIFY(wrongPassword.errors.contains("Wrong username or password"));
        const Outcome noPassword = run(addOffice);
        QVERIFY(noPassword.errors.contains("password"));
        const Outcome noSuchArchive = run(addOffice + QStringList{"--archive", "77"}, "secret\n");
        QVERIFY(noSuchArchive.errors.contains("key 77"));
        for (const Outcome &refused : {wrongPassword, noPassword, noSuchArchive}) {
            QCOMPARE(refused.code, exitcode::failed);
            QCOMPARE(refused.errors.count('\n'), 1);
        }
        QVERIFY(s.store.load().value().isEmpty());
    }

    void itEndsCleanly()
    {
        ManagerSurroundings s;
        const Profile profile = s.added(s.profile("Office"));
        for (const int signal : {SIGTERM, SIGHUP}) {
            QCOMPARE(run({"--running"}).code, exitcode::failed);
            RunningManager running;
            QCOMPARE(run({"--running"}).code, exitcode::done);
            const Outcome second = run({"--no-window"});
            QCOMPARE(second.code, exitcode::runsAlready);
            QVERIFY(second.errors.contains("running already"));
            QTRY_VERIFY(QSharedMemory(profile.blockKey()).attach());
            QCOMPARE(::kill(static_cast<pid_t>(running.process.processId()), signal), 0);
            QVERIFY(running.process.waitForFinished());
            QCOMPARE(running.process.exitStatus(), QProcess::NormalExit);
            QCOMPARE(running.process.exitCode(), exitcode::done);
            QVERIFY(!QFile::exists(QDir::tempPath() + '/' + socketName()));
            QVERIFY(!QSharedMemory(profile.blockKey()).attach());
        }
    }

    void whatAKilledOneLeftIsRemoved()
    {
        ManagerSurroundings s;
        const Profile profile = s.added(s.profile("Office"));
        const QString keyFile = QSharedMemory(profile.blockKey()).nativeKey();
        int segment = -1;
        {
            RunningManager running;
            QTRY_VERIFY((segment = ::shmget(::ftok(qPrintable(keyFile), 'Q'), 0, 0)) >= 0);
            running.process.kill();
            QVERIFY(running.process.waitForFinished());
        }
        // Nobody will publish it again, and nothing names it any more.
        QVERIFY(s.store.remove(profile.id).ok());
        QVERIFY(QFile::remove(keyFile));
        shmid_ds state = {};
        QCOMPARE(::shmctl(segment, IPC_STAT, &state), 0);
        RunningManager next;
        QCOMPARE(run({"--running"}).code, exitcode::done);
        QTRY_VERIFY(::shmctl(segment, IPC_STAT, &state) != 0);
    }

    void withoutADisplayItSaysSo()
    {
        ManagerSurroundings s;
        const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
        const QByteArray display = qgetenv("DISPLAY");
        for (const char *variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            qunsetenv(variable);
        const Outcome none = run({});
        qputenv("DISPLAY", ":4711");
        const Outcome unreachable = run({});
        qputenv("QT_QPA_PLATFORM", platform);
        display.isEmpty() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", display);
        for (const Outcome &refused : {none, unreachable}) {
            QCOMPARE(refused.code, exitcode::failed);
            QVERIFY2(refused.errors.contains("--no-window") && refused.errors.count('\n') == 1,
                     qPrintable(refused.errors));
        }
    }

    void wrongCommandLines()
    {
        for (const QStringList &arguments :
             {QStringList{"--nowindow"}, QStringList{"--list", "--no-window"},
              QStringList{"--list", "--port", "1"}, QStringList{"--add-profile", "x", "--user", "admin"}}) {
            const Outcome refused = run(arguments);
            QCOMPARE(refused.code, exitcode::wrongUsage);
            QCOMPARE(refused.output, QString());
            QVERIFY(refused.errors.startsWith("kelvamanager: "));
        }
    }
};

KELVA_TEST(TestManagerProgram)
#include "testmanagerprogram.moc"
