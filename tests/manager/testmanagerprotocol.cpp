#include "manager/managerprotocol.h"
#include "support/kelvatest.h"

using namespace kelva;

namespace {

QStringList describe(const QVector<Request> &requests)
{
    QStringList texts;
    for (const Request &request : requests) {
        if (request.kind == Request::Kind::ListProfiles)
            texts << "list";
        else if (request.kind == Request::Kind::ShowWindow)
            texts << "window";
        else if (request.kind == Request::Kind::ReloadProfile)
            texts << QString("reload %1").arg(request.profileId);
        else
            texts << QString("use %1 by %2 ").arg(request.profileId).arg(request.pid) + request.program +
                         (request.wasOnlyOne ? " only" : "");
    }
    return texts;
}

} // namespace

class TestManagerProtocol : public QObject
{
    Q_OBJECT

private slots:
    void requestsAreUnderstoodHoweverTheyArrive_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("list") << QByteArray("GETPROFILES\r\n") << QStringList{"list"};
        QTest::newRow("use, chosen") << QByteArray("USEPROFILE#12#1001#/opt/kelva/kelvaclient\r\n")
                                     << QStringList{"use 1001 by 12 /opt/kelva/kelvaclient"};
        QTest::newRow("use, the only one")
            << QByteArray("USEPROFILE#12#0#/opt/k#\r\n") << QStringList{"use 0 by 12 /opt/k only"};
        QTest::newRow("a path with marks in it")
            << QByteArray("USEPROFILE#12#7#/opt/c#/#1/ k\r\n") << QStringList{"use 7 by 12 /opt/c#/#1/ k"};
        QTest::newRow("such a path, the only one")
            << QByteArray("USEPROFILE#12#7#/opt/c#/k##\r\n") << QStringList{"use 7 by 12 /opt/c#/k# only"};
        QTest::newRow("a path with a line feed, in UTF-8")
            << QByteArray("USEPROFILE#12#7#/a\nü\r\n") << QStringList{"use 7 by 12 /a\nü"};
        QTest::newRow("reload, negative and large")
            << QByteArray("RELOADPROFILE#-1\r\nRELOADPROFILE#9223372036854775807\r\n")
            << QStringList{"reload -1", "reload 9223372036854775807"};
        QTest::newRow("three at once") << QByteArray("GETPROFILES\r\nUSEPROFILE#1#2#/p\r\nSHOWWINDOW\r\n")
                                       << QStringList{"list", "use 2 by 1 /p", "window"};
        QTest::newRow("the longest path")
            << "USEPROFILE#1#2#" + QByteArray(RequestParser::longestLine - 15, 'p') + "\r\n"
            << QStringList{"use 2 by 1 " + QString(RequestParser::longestLine - 15, 'p')};
        QTest::newRow("an unfinished one") << QByteArray("GETPROFILES\r\nGETPRO") << QStringList{"list"};
    }

    void requestsAreUnderstoodHoweverTheyArrive()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, expected);
        RequestParser whole;
        QCOMPARE(describe(whole.feed(bytes)), expected);
        QCOMPARE(whole.error(), QString());
        QCOMPARE(whole.isInsideRequest(), !bytes.endsWith("\r\n"));
        RequestParser byteByByte;
        QStringList came;
        for (const char byte : qAsConst(bytes))
            came << describe(byteByByte.feed(QByteArray(1, byte)));
        QCOMPARE(came, expected);
        QCOMPARE(byteByByte.error(), QString());
    }

    void garbageIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QList<QByteArray> lines{"",
                                      "getprofiles",
                                      "GETPROFILES#1",
                                      "\nGETPROFILES",
                                      QByteArray("GETPROFILES\0", 12),
                                      "RELOADPROFILE# 1",
                                      "RELOADPROFILE#+1",
                                      "RELOADPROFILE#9223372036854775808",
                                      "CHANGEPASSWORD#1#c2VjcmV0",
                                      "CHANGEPASSWORD#1#c2VjcmV0#!",
                                      "USEPROFILE#1#2",
                                      "USEPROFILE#1#2##",
                                      "USEPROFILE#0#2#/p",
                                      "USEPROFILE#4294967295#2#/p",
                                      "USEPROFILE##2#/p",
                                      QByteArray(RequestParser::longestLine + 1, 'x')};
        for (const QByteArray &line : lines)
            QTest::newRow(qPrintable(QString::fromLatin1(line.left(40).toPercentEncoding(" #/"))))
                << line + "\r\n";
        QTest::newRow("no end in sight") << QByteArray(RequestParser::longestLine + 1, 'x');
        QTest::newRow("a path too long")
            << "USEPROFILE#1#2#" + QByteArray(RequestParser::longestLine, 'p') + "\r\n";
    }

    void garbageIsRefused()
    {
        QFETCH(QByteArray, bytes);
        RequestParser whole;
        QCOMPARE(whole.feed(bytes).size(), 0);
        QVERIFY(!whole.error().isEmpty());
        RequestParser byteByByte;
        for (const char byte : qAsConst(bytes))
            QCOMPARE(byteByByte.feed(QByteArray(1, byte)).size(), 0);
        QVERIFY(!byteByByte.error().isEmpty());
    }
};

KELVA_TEST(TestManagerProtocol)
#include "testmanagerprotocol.moc"
