#include "support/kelvatest.h"

#include "app/desktoppalette.h"
#include "app/proxysettings.h"
#include "app/screenfitter.h"
#include "app/startoptions.h"
#include "widgets/plainbox.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <QTemporaryDir>

class TestStartRules : public QObject
{
    Q_OBJECT

private slots:
    void arguments_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QStringList>("folders");
        QTest::addColumn<bool>("skip");
        QTest::newRow("none") << QStringList{"kelva"} << "" << QStringList() << false;
        QTest::newRow("the last profile wins")
            << QStringList{"kelva", "-profile:3", "-profile:5"} << "5" << QStringList() << false;
        QTest::newRow("an empty profile wins, too")
            << QStringList{"-profile:3", "-profile:"} << "" << QStringList() << false;
        QTest::newRow("folders in turn")
            << QStringList{"-folderid:1", "-folderid:1.2"} << "" << QStringList{"1", "1.2"} << true;
        QTest::newRow("others are ignored")
            << QStringList{"--profile:3", "x", "-Profile:4"} << "" << QStringList() << false;
    }

    void arguments()
    {
        QFETCH(QStringList, arguments);
        const StartOptions options = parseStartOptions(arguments);
        QTEST(options.profileId, "profile");
        QTEST(options.folderOids, "folders");
        QTEST(options.skipResubmissions, "skip");
    }

    void aDarkDesktopIsNotFollowed()
    {
        const QPalette light = QApplication::style()->standardPalette();
        QPalette desktop = light;
        desktop.setColor(QPalette::Text, Qt::darkBlue);
        QCOMPARE(programPalette(desktop, light).color(QPalette::Text), QColor(Qt::darkBlue));
        for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
            desktop.setColor(role, Qt::black);
        for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
            desktop.setColor(role, Qt::white);
        const QPalette palette = programPalette(desktop, light);
        QCOMPARE(palette.color(QPalette::Text), light.color(QPalette::Text));
        QCOMPARE(palette.color(QPalette::Window), QColor(243, 249, 255));
    }

    void windowsStayWithinTheScreen_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<QRect>("place");
        QTest::newRow("large") << QRect(0, 0, 988, 689) << QRect(10, 20, 640, 380);
        QTest::newRow("high") << QRect(100, 50, 400, 571) << QRect(100, 20, 400, 380);
        QTest::newRow("beside") << QRect(900, -50, 100, 100) << QRect(550, 20, 100, 100);
        QTest::newRow("small") << QRect(100, 50, 200, 100) << QRect(100, 50, 200, 100);
    }

    void windowsStayWithinTheScreen()
    {
        QFETCH(QRect, window);
        QTEST(ScreenFitter::fitted(window, QRect(10, 20, 640, 380)), "place");
    }

    void longTextsGoIntoTheDetails()
    {
        QCOMPARE(plainbox::beginningOf("short\ntext"), QString("short\ntext"));
        QCOMPARE(plainbox::beginningOf(QString("line\n").repeated(5000)).count('\n'), 7);
        QCOMPARE(plainbox::beginningOf(QString(100000, 'x')).size(), 601);
    }

    void proxies_data()
    {
        QTest::addColumn<int>("use");
        QTest::addColumn<int>("logon");
        QTest::addColumn<QString>("proxy");
        QTest::newRow("true is not checked") << 1 << 2 << "system";
        QTest::newRow("without a login") << 2 << 0 << "proxy.example:8080 /";
        QTest::newRow("with a login") << 2 << 2 << "proxy.example:8080 me/pw";
    }

    void proxies()
    {
        QFETCH(int, use);
        QFETCH(int, logon);
        const QTemporaryDir directory;
        QSettings settings(directory.filePath("proxy.ini"), QSettings::IniFormat);
        settings.setValue("proxyUse", use);
        settings.setValue("proxyLogon", logon);
        settings.setValue("proxyHost", "proxy.example");
        settings.setValue("proxyPort", 8080);
        settings.setValue("proxyUser", "me");
        settings.setValue("proxyPass", "pw");
        const ProxySettings result = readProxySettings(settings);
        const QString text = result.useSystem
                                 ? QString("system")
                                 : QString("%1:%2 %3/%4")
                                       .arg(result.proxy.hostName(), QString::number(result.proxy.port()),
                                            result.proxy.user(), result.proxy.password());
        QTEST(text, "proxy");
        QCOMPARE(result.proxy.type(), QNetworkProxy::DefaultProxy);
    }
};

KELVA_TEST(TestStartRules)
#include "teststartrules.moc"
