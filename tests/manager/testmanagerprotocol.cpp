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
    void requestsAreUnderstoodHoweverTheyArrive()
    {
        const QByteArray longest(RequestParser::longestLine - 15, 'p');
        const QPair<QByteArray, QString> table[] = {
            {"GETPROFILES\r\n", "list"},
            {"USEPROFILE#12#1001#/opt/kelva/kelvaclient\r\n", "use 1001 by 12 /opt/kelva/kelvaclient"},
            {"USEPROFILE#12#7#/opt/c#/#1/ k\r\n", "use 7 by 12 /opt/c#/#1/ k"},
            {"USEPROFILE#12#0#/opt/c#/k##\r\n", "use 0 by 12 /opt/c#/k# only"},
            {"USEPROFILE#12#7#/a\nü\r\n", "use 7 by 12 /a\nü"},
            {"RELOADPROFILE#-1\r\nRELOADPROFILE#9223372036854775807\r\n",
             "reload -1|reload 9223372036854775807"},
            {"GETPROFILES\r\nUSEPROFILE#1#2#/p\r\nSHOWWINDOW\r\n", "list|use 2 by 1 /p|window"},
            {"USEPROFILE#1#2#" + longest + "\r\n", "use 2 by 1 " + QString::fromLatin1(longest)},
            {"GETPROFILES\r\nGETPRO", "list"},
        };
        for (const auto &[bytes, expected] : table) {
            RequestParser whole;
            QCOMPARE(describe(whole.feed(bytes)).join('|'), expected);
            QCOMPARE(whole.error(), QString());
            QCOMPARE(whole.isInsideRequest(), !bytes.endsWith("\r\n"));
            RequestParser byteByByte;
            QStringList came;
            for (const char byte : bytes)
                came << describe(byteByByte.feed(QByteArray(1, byte)));
            QCOMPARE(came.join('|'), expected);
            QCOMPARE(byteByByte.error(), QString());
        }
    }

    void garbageIsRefused()
    {
        const QByteArray tooLong(RequestParser::longestLine + 1, 'x');
        const QByteArray table[] = {"\r\n",
                                    "getprofiles\r\n",
                                    "GETPROFILES#1\r\n",
                                    "\nGETPROFILES\r\n",
                                    QByteArray("GETPROFILES\0\r\n", 14),
                                    "RELOADPROFILE# 1\r\n",
                                    "RELOADPROFILE#+1\r\n",
                                    "RELOADPROFILE#9223372036854775808\r\n",
                                    "CHANGEPASSWORD#1#c2VjcmV0\r\n",
                                    "CHANGEPASSWORD#1#c2VjcmV0#!\r\n",
                                    "USEPROFILE#1#2\r\n",
                                    "USEPROFILE#1#2##\r\n",
                                    "USEPROFILE#0#2#/p\r\n",
                                    "USEPROFILE#4294967295#2#/p\r\n",
                                    "USEPROFILE##2#/p\r\n",
                                    "USEPROFILE#1#2#/" + tooLong.mid(15) + "\r\n",
                                    tooLong + "\r\n",
                                    tooLong}; // no end in sight
        for (const QByteArray &bytes : table) {
            RequestParser whole;
            QCOMPARE(whole.feed(bytes).size(), 0);
            QVERIFY2(!whole.error().isEmpty(), bytes.left(40).constData());
            RequestParser byteByByte;
            for (const char byte : bytes)
                QCOMPARE(byteByByte.feed(QByteArray(1, byte)).size(), 0);
            QVERIFY2(!byteByByte.error().isEmpty(), bytes.left(40).constData());
        }
    }
};

KELVA_TEST(TestManagerProtocol)
#include "testmanagerprotocol.moc"
