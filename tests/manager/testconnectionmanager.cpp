#include "manager/connectionmanager.h"
#include "manager/managersurroundings.h"
#include "manager/profileblock.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include "contract/localpeer.h"
#include "contract/recordformat.h"
#include "folders/workbenchdata.h"
#include "server/kelvalogindata.h"
#include "service/folders.h"
#include "service/records.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QSharedMemory>
#include <QThread>
#include <QTimer>

#include <atomic>

using namespace kelva;

namespace {

QStringList folderNames(const Profile &profile)
{
    WorkbenchData data;
    QStringList names;
    if (readWorkbenchData(profile.blockKey(), data))
        for (const QString &folder : qAsConst(data.folders))
            names << splitFields(folder).value(1);
    return names;
}

bool hasBlock(const Profile &profile)
{
    return QSharedMemory(profile.blockKey()).attach();
}

void addFolder(Session &session, const QString &name)
{
    const Result<QString> made = Folders(session).create("1", name, QString(), QString());
    QVERIFY2(made.ok(), made ? "" : qPrintable(made.error().text));
}

/// A connected client that speaks for itself.
struct Client
{
    Client()
    {
        socket.connectToServer(socketName());
        QTRY_VERIFY(socket.state() == QLocalSocket::ConnectedState);
    }
    void send(const QByteArray &bytes)
    {
        socket.write(bytes);
        socket.flush();
    }
    bool isCutOff() const { return socket.state() == QLocalSocket::UnconnectedState; }

    QLocalSocket socket;
};

} // namespace

class TestConnectionManager : public QObject
{
    Q_OBJECT

private slots:
    void aClientGetsItsProfileAndItsBlock()
    {
        ManagerSurroundings s;
        const Profile stored = s.added(s.profile("Office"));
        StartedManager started(s.store);
        kelvaLoginData login;
        kelvaProfileData profile;
        QString message;
        QVERIFY2(login.getProfile(profile, message, nullptr, false), qPrintable(message));
        QCOMPARE(profile.id, stored.id);
        QCOMPARE(profile.name + '|' + profile.host + '|' + profile.port, QString("Office|localhost|1"));
        QCOMPARE(profile.user + '|' + profile.password, QString("admin|secret"));
        QCOMPARE(profile.flag, true);
        QCOMPARE(profile.archiveEntry, QString("Archive") + recordformat::fieldSeparator + "1");
        QCOMPARE(profile.displayLine1 + '|' + profile.displayLine2, QString("Müller & Söhne|Second"));
        QCOMPARE(profile.extraList1, QStringList({"a", "b"}));
        QCOMPARE(profile.extraList2, QStringList(""));
        WorkbenchData data;
        QVERIFY(readWorkbenchData(::workbenchKey("admin", "localhost", 1, profile.id), data));
        QTRY_COMPARE(started.manager.countUsers(stored.id), 1);
        QCOMPARE(started.manager.countUsers(stored.id + 1), 0);
    }

    void aReloadIsAnsweredWithTheNewVocabulary()
    {
        ManagerSurroundings s;
        const Profile profile = s.added(s.profile("Office"));
        StartedManager started(s.store);
        const auto session = s.archive.login("admin", "secret");
        kelvaLoginData login;
        // One after the other, faster than file times can tell them apart.
        for (int i = 0; i < 10; ++i) {
            const QString name = QString("Fresh %1").arg(i);
            addFolder(*session, name);
            login.reloadProfile(profile.id);
            QVERIFY2(folderNames(profile).contains(name), qPrintable(name));
        }
    }

    void aChangedPasswordIsTakenOver()
    {
        ManagerSurroundings s;
        const Profile profile = s.added(s.profile("Office"));
        StartedManager started(s.store);
        const auto stored = [&s] { return s.store.load().value().first(); };
        const QString fresh = QString::fromUtf8("n#w \xc3\xbc|\xe2\x82\xac");
        kelvaLoginData login;
        QVERIFY(!login.changePassword(profile.id, "another", fresh));
        QVERIFY(!login.changePassword(profile.id + 1, "secret", fresh));
        QVERIFY(!login.changePassword(profile.id, "secret", QString()));
        QVERIFY(stored() == profile);
        QVERIFY(login.changePassword(profile.id, "secret", fresh));
        Profile expected = profile;
        expected.password = fresh;
        QVERIFY(stored() == expected);
        kelvaProfileData told;
        QString message;
        QVERIFY(login.getProfile(told, message, nullptr, false));
        QCOMPARE(told.password, fresh);
    }

    void blocksReturnWhenTheTemporaryDirectoryWasSwept()
    {
        ManagerSurroundings s;
        const Profile profile = s.added(s.profile("Office"));
        ProfileBlock block;
        QVERIFY(block.renew(profile).ok());
        QDir directory(QDir::tempPath());
        const QStringList keyFiles = directory.entryList({"qipc_*"});
        QVERIFY(!keyFiles.isEmpty());
        for (const QString &file : keyFiles)
            QVERIFY(directory.remove(file));
        QVERIFY(!hasBlock(profile));
        const Result<void> renewed = block.renew(profile);
        QVERIFY2(renewed.ok(), qPrintable(textOf(renewed)));
        QVERIFY(folderNames(profile).contains("Office"));
    }

    void aStuckBlockHoldsUpNobody()
    {
        ManagerSurroundings s;
        const Profile stuck = s.added(s.profile("Stuck"));
        const Profile free = s.added(s.profile("Free"));
        BlockPublisher blocks;
        blocks.setProfiles({stuck, free});
        bool ready = false;
        blocks.renew({stuck.id, free.id}, 30000, [&ready](bool) { ready = true; });
        QTRY_VERIFY(ready);
        // A client that was stopped while it read.
        QSharedMemory reader(stuck.blockKey());
        QVERIFY(reader.attach());
        QVERIFY(reader.lock());
        addFolder(*s.archive.login("admin", "secret"), "Fresh");
        QString freeReady;
        QString allReady;
        const auto noteIn = [](QString &answer) {
            return [&answer](bool inTime) { answer = inTime ? "in time" : "late"; };
        };
        blocks.renew({free.id}, 30000, noteIn(freeReady));
        blocks.renew({stuck.id, free.id}, 200, noteIn(allReady));
        QTRY_COMPARE(freeReady, QString("in time"));
        QVERIFY(folderNames(free).contains("Fresh"));
        QTRY_COMPARE(allReady, QString("late"));
        QVERIFY(!blocks.finish(0));
        reader.unlock();
        QVERIFY(blocks.finish(10000));
        QVERIFY(folderNames(stuck).contains("Fresh"));
    }

    void theProfileFileIsFollowed()
    {
        ManagerSurroundings s;
        s.archive.addUser("anna", {"kelvaCLASSIFY"});
        const Profile first = s.added(s.profile("All"));
        StartedManager started(s.store);
        QTRY_VERIFY(folderNames(first).contains("Board"));
        const Profile second = ProfileStore().add(s.profile("Some", "anna")).value();
        QTRY_VERIFY(folderNames(second).contains("Office"));
        QVERIFY(!folderNames(second).contains("Board"));
        QVERIFY(s.store.remove(first.id).ok());
        QTRY_VERIFY(!hasBlock(first));
        QVERIFY(hasBlock(second));
        s.writeFile("{ damaged");
        QTRY_VERIFY(started.profiles.fault().contains("damaged"));
        // What it knew before serves on.
        kelvaLoginData login;
        kelvaProfileData profile;
        QString message;
        QVERIFY(login.getProfileById(profile, message, static_cast<int>(second.id)));
        QCOMPARE(s.readFile(), QByteArray("{ damaged"));
    }

    void requestsOfOneConnectionAreAnsweredInTurn()
    {
        ManagerSurroundings s;
        const Profile profile = s.added(s.profile("Office"));
        StartedManager started(s.store);
        Client client;
        const QByteArray list = profileListAnswer({profile});
        client.send("RELOADPROFILE#5\r\nGETPROFILES\r\nRELOADPROFILE#" + QByteArray::number(profile.id) +
                    "\r\nSHOWWINDOW\r\n");
        const QByteArray expected = "There is no such profile.\r\n" + list + "OK\r\nNOWINDOW\r\n";
        QTRY_COMPARE(client.socket.bytesAvailable(), qint64(expected.size()));
        QCOMPARE(client.socket.readAll(), expected);
        // And one that leaves without waiting.
        {
            Client hasty;
            hasty.send("USEPROFILE#" + QByteArray::number(QCoreApplication::applicationPid()) + "#" +
                       QByteArray::number(profile.id) + "#/opt/k\r\n");
        }
        QTRY_COMPARE(started.manager.countUsers(profile.id), 1);
    }

    void cutOffClients()
    {
        ProfileFixture s;
        s.added(s.profile("Office"));
        StartedManager started(s.store);
        for (const QByteArray &bytes :
             {QByteArray(8 * 1024 * 1024, 'G'), QByteArray("GETPROFILES\r\nGETPROFILE\r\n"),
              QByteArray("GETPROFILES\r\n").repeated(100)}) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("a client was cut off"));
            Client client;
            client.send(bytes);
            QTRY_VERIFY2(client.isCutOff(), bytes.left(30).constData());
            Client next;
            next.send("GETPROFILES\r\n");
            QTRY_VERIFY(next.socket.bytesAvailable() > 8);
        }
    }

    void impatienceSparesThoseThatChoose()
    {
        ProfileFixture s;
        QLocalServer::removeServer(socketName());
        QLocalServer server;
        QVERIFY(server.listen(socketName()));
        const auto accept = [&server](int patienceMs) {
            auto *connection = new ManagerConnection(
                server.nextPendingConnection(),
                [](const Request &, const Answer &answer) { answer("OK\r\n"); }, &server);
            connection->setPatience(patienceMs);
        };
        Client chooses;
        QTRY_VERIFY(server.hasPendingConnections());
        accept(1);
        chooses.send("GETPROFILES\r\n");
        QTRY_VERIFY(chooses.socket.canReadLine());
        Client half;
        QTRY_VERIFY(server.hasPendingConnections());
        accept(50);
        half.send("GETPROF");
        Client silent;
        QTRY_VERIFY(server.hasPendingConnections());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("too slow"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("too slow"));
        accept(50);
        QTRY_VERIFY(half.isCutOff() && silent.isCutOff());
        QVERIFY(!chooses.isCutOff());
    }

    void connectionsAreLimited()
    {
        ProfileFixture s;
        s.added(s.profile("Office"));
        StartedManager started(s.store);
        std::vector<std::unique_ptr<Client>> clients;
        for (int i = 0; i < ManagerServer::mostConnections; ++i)
            clients.push_back(std::make_unique<Client>());
        Client oneMore;
        oneMore.send("GETPROFILES\r\n");
        QTRY_VERIFY(oneMore.socket.bytesAvailable() > 8);
        QTRY_VERIFY(clients.front()->isCutOff());
        QVERIFY(!clients.back()->isCutOff());
    }

    void onlyOneManagerRuns()
    {
        ProfileFixture s;
        ProfileList profiles(s.store);
        const QString socketFile = QDir::tempPath() + '/' + socketName();
        {
            ConnectionManager first(profiles);
            QVERIFY(first.start().ok());
            ConnectionManager second(profiles);
            QCOMPARE(second.start().error().code, ErrorCode::InUse);
            QVERIFY(ManagerServer::isAnswering());
            QCOMPARE(QFile::permissions(socketFile) &
                         (QFile::ReadOther | QFile::WriteOther | QFile::WriteGroup),
                     QFile::Permissions());
        }
        QVERIFY(!QFile::exists(socketFile));
        {
            // The temporary directory was swept.
            ConnectionManager first(profiles);
            QVERIFY(first.start().ok());
            QVERIFY(QFile::remove(socketFile) && QFile::remove(socketFile + ".lock"));
            QTRY_VERIFY(ManagerServer::isAnswering());
            ConnectionManager second(profiles);
            QCOMPARE(second.start().error().code, ErrorCode::InUse);
            Client client;
            QVERIFY(isPeerOfUser(client.socket));
            QVERIFY(!isPeerOfUser(client.socket, ::getuid() + 1));
        }
        // One that lost its lock file is found by its answer.
        QLocalServer other;
        QVERIFY(other.listen(socketName()));
        ConnectionManager third(profiles);
        QCOMPARE(third.start().error().code, ErrorCode::InUse);
        QVERIFY(QFile::exists(socketFile));
    }

    void anAnswerWithoutEndIsNotWaitedFor()
    {
        QLocalServer::removeServer(socketName());
        QLocalServer chatty;
        QVERIFY(chatty.listen(socketName()));
        std::atomic<bool> asked{false};
        const std::unique_ptr<QThread> asking(QThread::create([&asked] {
            if (ManagerServer::ask("SHOWWINDOW").isEmpty())
                asked = true;
        }));
        asking->start();
        QTRY_VERIFY(chatty.hasPendingConnections());
        QLocalSocket *socket = chatty.nextPendingConnection();
        // Drop by drop: each is in time, all together never end.
        QTimer drops;
        connect(&drops, &QTimer::timeout, socket, [socket] { socket->write("x"), socket->flush(); });
        drops.start(100);
        QTRY_VERIFY_WITH_TIMEOUT(asked, 10000);
        asking->wait();
    }
};

KELVA_TEST(TestConnectionManager)
#include "testconnectionmanager.moc"
