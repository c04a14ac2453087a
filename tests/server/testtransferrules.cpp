#include "support/kelvatest.h"
#include "support/outside.h"

#include "server/exportfilename.h"
#include "server/openeddocuments.h"
#include "contract/privatefile.h"
#include "server/transferprogress.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

class TestTransferRules : public QObject
{
    Q_OBJECT

private slots:
    void settingsAreClosedToOthers()
    {
        const QTemporaryDir directory;
        const QString path = directory.filePath("new/settings.ini");
        constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        for (int i = 0; i < 2; ++i) {
            makePrivateFile(path);
            QSettings settings(path, QSettings::IniFormat);
            settings.setValue("password", i);
            settings.sync();
            QCOMPARE(QFile::permissions(path) & others, QFile::Permissions());
            QVERIFY(QFile::setPermissions(path, QFile::permissions(path) | others));
        }
        QCOMPARE(QSettings(path, QSettings::IniFormat).value("password").toInt(), 1);
    }

    void names_data()
    {
        QTest::addColumn<QString>("proposal");
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("counter");
        QTest::addColumn<QString>("name");
        const QString pdf = "/tmp/x/scan-a1.pdf";
        kelvatest::row("description and suffix", "Invoice", pdf, 0, "1234_Invoice.pdf");
        kelvatest::row("the second of its name", "Invoice", pdf, 1, "1234_1_Invoice.pdf");
        kelvatest::row("a suffix is not doubled", "Report.pdf", pdf, 0, "1234_Report.pdf");
        kelvatest::row("blanks go", "  Invoice of   May ", pdf, 0, "1234_InvoiceofMay.pdf");
        kelvatest::row("umlauts stay", "Größe Äpfel", pdf, 0, "1234_GrößeÄpfel.pdf");
        kelvatest::row("nothing is left of the name", "***", pdf, 0, "1234_.pdf");
        kelvatest::row("a path", "../../etc/passwd", pdf, 0, "1234_....etcpasswd.pdf");
        kelvatest::row("the parent directory", "..", pdf, 0, "1234_...pdf");
        kelvatest::row("lines, tabs and a null", QString("a\nb\tc\r") + QChar(0), pdf, 0, "1234_abc.pdf");
        kelvatest::row("a dash", "-rf", pdf, 0, "1234_rf.pdf");
        kelvatest::row("no name: that of the file", "  ", pdf, 0, "1234_scana1.pdf");
        kelvatest::row("a turned direction", QString("gnp") + QChar(0x202E) + "fdp.exe", pdf, 0,
                       "1234_gnpfdp.exe.pdf");
        kelvatest::row("without a suffix", "Invoice", "/tmp/x/scan", 0, "1234_Invoice");
        kelvatest::row("a hundred characters", QString(300, 'x'), pdf, 0,
                       "1234_" + QString(100, 'x') + ".pdf");
        kelvatest::row("255 bytes", QString(100, QChar(0xE4)), "/tmp/x." + QString(60, 's'), 0,
                       "1234_" + QString(94, QChar(0xE4)) + '.' + QString(60, 's'));
    }

    void names()
    {
        QFETCH(QString, proposal);
        QFETCH(QString, path);
        QFETCH(int, counter);
        const QString name = exportFileName(1234, proposal, path, counter);
        QTEST(name, "name");
        QVERIFY(name.toUtf8().size() <= 255);
    }

    void openedCopiesAreClearedUp()
    {
        const QTemporaryDir directory;
        QSettings settings(directory.filePath("settings.ini"), QSettings::IniFormat);
        const QDateTime now = QDateTime::currentDateTime();
        const auto copy = [&](const QString &name, int hoursAgo) {
            const QString path = outside::write(directory.filePath(name), "as fetched");
            openeddocuments::note(settings, path, now.addSecs(-3600 * hoursAgo));
            return path;
        };
        const QString young = copy("young", 23);
        const QString old = copy("old; and odd", 25);
        const QString gone = copy("gone", 25);
        const QString changed = copy("changed", 100);
        const QString replaced = copy("replaced", 1);
        QFile open(copy("open", 25));
        QVERIFY(QFile::remove(gone) && open.open(QIODevice::ReadOnly));
        outside::write(changed, "by the user");
        QVERIFY(QFile::remove(replaced) && QFile::link(young, replaced));
        QCOMPARE(openeddocuments::clearUp(settings, now), QStringList(changed));
        QVERIFY(QFile::exists(young) && QFile::exists(changed) && open.exists());
        QVERIFY(!QFile::exists(old));
        // Said once; what was open goes when it is so no more.
        open.close();
        QCOMPARE(openeddocuments::clearUp(settings, now), QStringList());
        QVERIFY(!open.exists());
        QVERIFY(QFile::exists(changed));
    }

    void progress_data()
    {
        QTest::addColumn<qint64>("current");
        QTest::addColumn<qint64>("total");
        QTest::addColumn<qint64>("elapsed");
        QTest::addColumn<QString>("text");
        const qint64 mb = 1024 * 1024;
        kelvatest::row("half of it", 50 * mb, 100 * mb, qint64(10000),
                       "50 5 MBytes / sec|Verstrichen: 00:00:10 noch 00:00:10 ");
        kelvatest::row("hours", 10 * mb, 1000 * mb, qint64(400) * 1000,
                       "1 0.025 MBytes / sec|Verstrichen: 00:06:40 noch 11:00:00 ");
        kelvatest::row("more than an int", qint64(3000) * mb, qint64(6000) * mb, qint64(100000),
                       "50 30 MBytes / sec|Verstrichen: 00:01:40 noch 00:01:40 ");
    }

    void progress()
    {
        QFETCH(qint64, current);
        QFETCH(qint64, total);
        QFETCH(qint64, elapsed);
        const TransferProgress progress = transferProgress(current, total, elapsed);
        QTEST(QString::number(progress.percent) + ' ' + QString(progress.text).replace("\r\n", "|"), "text");
    }
};

KELVA_TEST(TestTransferRules)
#include "testtransferrules.moc"
