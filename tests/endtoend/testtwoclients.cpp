#include "support/kelvatest.h"
#include "support/outside.h"

#include <QDir>
#include <QProcess>

namespace {

QString program(const char *name)
{
    return QStringLiteral(KELVA_PROGRAMS "/") + QLatin1String(name);
}

bool runs(const char *name, const QStringList &arguments, const QByteArray &input = {})
{
    return outside::run(program(name), arguments, input).code == 0;
}

/// What a client said after a command.
struct Answer
{
    QString shown;
    QString boxes;
};

/// A client process that is logged in and shows its list.
class Client
{
public:
    Client()
    {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(QStringLiteral(CLIENT_DRIVER), QStringList());
    }
    ~Client()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(5000))
            m_process.kill();
        m_process.waitForFinished();
    }

    bool isReady() { return readLine() == "ready"; }
    void tell(const QString &command) { m_process.write(command.toUtf8() + '\n'); }
    Answer hear()
    {
        const QString line = readLine();
        return {line.section('\t', 0, 0), line.section('\t', 1)};
    }
    Answer ask(const QString &command)
    {
        tell(command);
        return hear();
    }

private:
    QString readLine()
    {
        for (int i = 0; i < 300 && !m_process.canReadLine(); ++i)
            m_process.waitForReadyRead(100);
        return QString::fromUtf8(m_process.readLine()).remove('\n');
    }

    QProcess m_process;
};

} // namespace

/// Two client processes on one archive, with the real plug-ins and the real Connection Manager.
class TestTwoClients : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(runs("kelvaadmin", {"sample", "1", "--documents", "3"}));
        QVERIFY(
            runs("kelvamanager", {"--add-profile", "Sample", "--port", "1", "--user", "meier"}, "kelva\n"));
        m_manager.setStandardErrorFile(QProcess::nullDevice());
        m_manager.start(program("kelvamanager"), {"--no-window"});
        QTRY_VERIFY(!QDir(QDir::tempPath()).entryList({"Kelva-*"}, QDir::System).isEmpty());
    }

    void cleanupTestCase()
    {
        m_manager.terminate();
        QVERIFY(m_manager.waitForFinished());
        QVERIFY(runs("kelvaadmin", {"check", "1"}));
    }

    void aChangeByTheOtherIsShownAndNotOverwritten()
    {
        Client here;
        Client there;
        QVERIFY(here.isReady() && there.isReady());
        const QString before = here.ask("refresh").shown;
        const Answer saved = there.ask("append T");
        QCOMPARE(saved.shown + saved.boxes, before + "T");
        const Answer refused = here.ask("append H");
        QCOMPARE(refused.boxes, QString("Warning"));
        QCOMPARE(refused.shown, before + "T");
        const Answer again = here.ask("append H");
        QCOMPARE(again.shown + again.boxes, before + "TH");
        QCOMPARE(there.ask("refresh").shown, before + "TH");
    }

    void editsAtTheSameMomentAreSavedOrRefused()
    {
        constexpr int rounds = 25;
        Client here;
        Client there;
        QVERIFY(here.isReady() && there.isReady());
        QString expected = here.ask("refresh").shown;
        int refused = 0;
        for (int i = 0; i < rounds; ++i) {
            here.tell("append h");
            there.tell("append t");
            const Answer fromHere = here.hear();
            const Answer fromThere = there.hear();
            const QString stored = here.ask("refresh").shown;
            QCOMPARE(there.ask("refresh").shown, stored);
            // A refusal comes with a box; whatever came without one is in the archive, whoever was first.
            QString added = stored.mid(expected.size());
            QCOMPARE(stored.left(expected.size()), expected);
            refused += (fromHere.boxes.isEmpty() ? 0 : 1) + (fromThere.boxes.isEmpty() ? 0 : 1);
            QCOMPARE(added.count('h'), fromHere.boxes.isEmpty() ? 1 : 0);
            QCOMPARE(added.count('t'), fromThere.boxes.isEmpty() ? 1 : 0);
            QVERIFY(!added.isEmpty());
            expected = stored;
        }
        QVERIFY2(refused > 0, "the two never met");
    }

private:
    QProcess m_manager;
};

KELVA_TEST(TestTwoClients)
#include "testtwoclients.moc"
