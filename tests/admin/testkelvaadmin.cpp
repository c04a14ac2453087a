#include "support/kelvatest.h"
#include "support/outside.h"

#include "service/archive.h"
#include "service/content.h"
#include "service/session.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

outside::Outcome run(const QStringList &arguments, const QByteArray &input = {})
{
    return outside::run(KELVAADMIN, arguments, input);
}

/// What it says when it refuses; else how it ended.
QString refusal(const QStringList &arguments, const QByteArray &input = {})
{
    const outside::Outcome outcome = run(arguments, input);
    return outcome.code == 1 ? outcome.errors : "ended with " + QString::number(outcome.code);
}

QString home(const QString &name)
{
    return QDir(kelva::archive::home()).filePath(name);
}

bool canLogIn(const QString &path, const QString &user, const QString &password)
{
    return kelva::Session::login(path, user, password).ok();
}

} // namespace

class TestKelvaAdmin : public QObject
{
    Q_OBJECT

private slots:
    void usersOfANewArchive()
    {
        QCOMPARE(run({"create", "11", "chief"}, "first\n").code, 0);
        const QString path = home("11.kelva");
        QVERIFY(canLogIn(path, "chief", "first"));
        QCOMPARE(
            run({"add-user", "11", "clerk", "--name", "A. Clerk", "--role", "kelvaCLASSIFY"}, "pass\n").code,
            0);
        QVERIFY(canLogIn(path, "clerk", "pass"));
        QCOMPARE(run({"set-password", path, "clerk"}, "other\n").code, 0);
        QVERIFY(!canLogIn(path, "clerk", "pass"));
        QVERIFY(canLogIn(path, "clerk", "other"));
        QVERIFY(refusal({"add-user", "11", "half", "--role", "nosuch"}, "pass\n").contains("no role nosuch"));
        QVERIFY(!canLogIn(path, "half", "pass"));
        // What is there already is not overwritten.
        QVERIFY(refusal({"create", "11", "thief"}, "mine\n").contains("11.kelva already"));
        QVERIFY(!canLogIn(path, "thief", "mine"));
        QVERIFY(refusal({"add-user", "11", "clerk"}, "again\n").contains("clerk already"));
        QVERIFY(canLogIn(path, "clerk", "other"));
    }

    void backupsComeBack()
    {
        QCOMPARE(run({"create", "12", "chief"}, "first\n").code, 0);
        QCOMPARE(run({"backup", "12", home("12.backup")}).code, 0);
        QCOMPARE(run({"set-password", "12", "chief"}, "second\n").code, 0);
        QCOMPARE(run({"restore", home("12.backup"), "12"}).code, 0);
        QVERIFY(canLogIn(home("12.kelva"), "chief", "first"));
        QCOMPARE(run({"restore", home("12.backup"), "12"}).code, 0);
        QVERIFY(canLogIn(home("12.kelva.before-restore"), "chief", "second")); // what the first one kept
        outside::write(home("13.kelva"), QByteArray(5000, 'x'));
        QVERIFY(refusal({"check", "13"}).contains("is no archive"));
        QVERIFY(refusal({"restore", home("13.kelva"), "12"}).contains("is no archive"));
        QCOMPARE(run({"check", "12"}).code, 0);
    }

    void theTextsOfAllFilesAreTaken()
    {
        QCOMPARE(run({"sample", "15", "--documents", "20"}).code, 0);
        const outside::Outcome first = run({"index", "15"});
        QCOMPARE(first.output, QString("20 done, 0 failed.\n"));
        QCOMPARE(first.code, 0);
        QCOMPARE(run({"index", "15"}).output, QString("0 done, 0 failed.\n"));
        QVERIFY(refusal({"index", "16"}).contains("no archive at"));
    }

    void earlierVersionsStayReadable()
    {
        QCOMPARE(run({"create", "17", "chief"}, "first\n").code, 0);
        QTemporaryDir files;
        {
            const auto session = kelva::Session::login(home("17.kelva"), "chief", "first");
            QVERIFY(session.ok());
            for (const char *text : {"one", "two"})
                QVERIFY(kelva::Content(*session.value())
                            .store(outside::write(files.filePath("a.txt"), text), false, {})
                            .ok());
        }
        const QStringList paths{files.filePath("1-a.txt"), files.filePath("2-a.txt")};
        const outside::Outcome outcome = run({"export-versions", "17", "1", files.path()});
        QCOMPARE(outcome.output.split('\n', Qt::SkipEmptyParts), paths);
        QCOMPARE(outside::read(paths.at(0)) + outside::read(paths.at(1)), QByteArray("onetwo"));
        // What stands there is kept, and nothing is left beside it.
        QVERIFY(QFile::remove(paths.at(0)));
        outside::write(paths.at(1), "mine");
        QVERIFY(refusal({"export-versions", "17", "1", files.path()}).contains("2-a.txt"));
        QCOMPARE(outside::read(paths.at(1)), QByteArray("mine"));
        QVERIFY(!QFile::exists(paths.at(0)));
        QVERIFY(refusal({"export-versions", "17", "2", files.path()}).contains("does not exist"));
    }

    void wrongCommandLines()
    {
        for (const QStringList &arguments :
             {QStringList(), QStringList{"frobnicate", "1"}, QStringList{"add-user", "1"},
              QStringList{"check", "1", "--fast"}, QStringList{"sample", "14", "--documents", "many"}}) {
            const outside::Outcome outcome = run(arguments);
            QCOMPARE(outcome.code, 2);
            QVERIFY(outcome.errors.startsWith("kelvaadmin: "));
        }
        QVERIFY(!QFile::exists(home("14.kelva")));
    }
};

KELVA_TEST(TestKelvaAdmin)
#include "testkelvaadmin.moc"
