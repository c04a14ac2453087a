#include "support/kelvatest.h"
#include "support/outside.h"

#include "contract/privatefile.h"
#include "server/exportfilename.h"
#include "server/openeddocuments.h"
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

    void names()
    {
        const QString pdf = "/tmp/x/scan-a1.pdf";
        const std::tuple<QString, QString, int, QString> table[] = {
            {"Invoice", pdf, 0, "1234_Invoice.pdf"},
            {"Invoice", pdf, 1, "1234_1_Invoice.pdf"},
            {"Report.pdf", pdf, 0, "1234_Report.pdf"},
            {"  Größe of   May ", pdf, 0, "1234_GrößeofMay.pdf"},
            {"***", pdf, 0, "1234_.pdf"},
            {"../../etc/passwd", pdf, 0, "1234_....etcpasswd.pdf"},
            {"..", pdf, 0, "1234_...pdf"},
            {QString("a\nb\tc\r") + QChar(0), pdf, 0, "1234_abc.pdf"},
            {"-rf", pdf, 0, "1234_rf.pdf"},
            {"  ", pdf, 0, "1234_scana1.pdf"},
            {QString("gnp") + QChar(0x202E) + "fdp.exe", pdf, 0, "1234_gnpfdp.exe.pdf"},
            {"Invoice", "/tmp/x/scan", 0, "1234_Invoice"},
            {QString(300, 'x'), pdf, 0, "1234_" + QString(100, 'x') + ".pdf"},
            {QString(100, QChar(0xE4)), "/tmp/x." + QString(60, 's'), 0, // 255 bytes
             "1234_" + QString(94, QChar(0xE4)) + '.' + QString(60, 's')},
        };
        for (const auto &[proposal, path, counter, expected] : table) {
            const QString name = exportFileName(1234, proposal, path, counter);
            QCOMPARE(name, expected);
            QVERIFY(name.toUtf8().size() <= 255);
        }
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

    void progress()
    {
        const qint64 mb = 1024 * 1024;
        const std::tuple<qint64, qint64, qint64, QString> table[] = {
            {50 * mb, 100 * mb, 10000, "50 5 MBytes / sec|Verstrichen: 00:00:10 noch 00:00:10 "},
            {10 * mb, 1000 * mb, 400000, "1 0.025 MBytes / sec|Verstrichen: 00:06:40 noch 11:00:00 "},
            {3000 * mb, 6000 * mb, 100000, "50 30 MBytes / sec|Verstrichen: 00:01:40 noch 00:01:40 "},
        };
        for (const auto &[current, total, elapsed, expected] : table) {
            const TransferProgress progress = transferProgress(current, total, elapsed);
            QCOMPARE(QString::number(progress.percent) + ' ' + QString(progress.text).replace("\r\n", "|"),
                     expected);
        }
    }
};

KELVA_TEST(TestTransferRules)
#include "testtransferrules.moc"
