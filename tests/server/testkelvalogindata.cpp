#include "support/dialogscript.h"
#include "support/fakemanager.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include "contract/recordformat.h"
#include "server/kelvalogindata.h"

#include <QComboBox>
#include <QDataStream>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

class TestKelvaLoginData : public QObject
{
    Q_OBJECT

private slots:
    void theArchiveIndexIsChecked()
    {
        for (const qint64 index : {qint64(1), qint64(-1), qint64(1) << 40}) {
            QByteArray bytes = FakeManager::profileRecord(7, "Office", m_entry, index);
            QDataStream stream(&bytes, QIODevice::ReadOnly);
            stream.setVersion(10);
            kelvaProfileData profile;
            stream >> profile;
            QCOMPARE(profile.archiveEntry, QString());
            QCOMPARE(profile.displayLine1, QString("First line"));
        }
    }

    void oneProfileIsTakenWithoutAsking()
    {
        FakeManager manager;
        manager.listAnswer = FakeManager::profileList({FakeManager::profileRecord(7, "Office", m_entry)});
        DialogScript script;
        kelvaLoginData login;
        kelvaProfileData profile;
        QString message;
        QVERIFY(login.getProfile(profile, message, nullptr, false));
        QCOMPARE(profile.id, 7);
        // With a "#" behind: there was nothing to choose.
        QTRY_COMPARE(manager.requests,
                     QStringList({"GETPROFILES", QString("USEPROFILE#%1#7#%2#")
                                                     .arg(QCoreApplication::applicationPid())
                                                     .arg(QCoreApplication::applicationFilePath())}));
    }

    void severalProfilesAreAskedFor()
    {
        FakeManager manager;
        manager.listAnswer = FakeManager::profileList({FakeManager::profileRecord(7, "Office", m_entry),
                                                       FakeManager::profileRecord(9, "Archive", m_entry)});
        DialogScript script;
        script.expectDialog("Kelva - Login", false);
        kelvaLoginData login;
        kelvaProfileData profile;
        QString message;
        QVERIFY(!login.getProfile(profile, message, nullptr, false));
        QVERIFY(login.getIsUserCanceled());
        QCOMPARE(message, QString());
        QCOMPARE(manager.requests, QStringList("GETPROFILES"));
        script.expectDialog("Kelva - Login", true, [](QWidget *dialog) {
            auto *profiles = dialog->findChild<QComboBox *>("m_cbProfiles");
            QCOMPARE(profiles->count(), 2);
            profiles->setCurrentIndex(1);
        });
        QVERIFY(login.getProfile(profile, message, nullptr, false));
        QCOMPARE(profile.id, 9);
        QTRY_COMPARE(manager.requests.size(), 3);
        QVERIFY(!manager.requests.last().endsWith('#'));
    }

    void aManagerThatDoesNotRunIsStartedOnce()
    {
        const QTemporaryDir directory;
        const QString started = directory.filePath("started");
        const QString program =
            outside::write(directory.filePath("kelvamanager"),
                           "#!/bin/sh\necho \"$@\" >>'" + started.toUtf8() + ".new' && mv '" +
                               started.toUtf8() + ".new' '" + started.toUtf8() + "'\n");
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        std::unique_ptr<FakeManager> manager;
        QTimer look;
        connect(&look, &QTimer::timeout, this, [&] {
            if (manager || !QFile::exists(started))
                return;
            manager = std::make_unique<FakeManager>();
            manager->listAnswer =
                FakeManager::profileList({FakeManager::profileRecord(7, "Office", m_entry)});
        });
        look.start(10);
        kelvaLoginData login;
        kelvaProfileData profile;
        QString message;
        // Tests have none beside them: nothing is started and nothing is waited for.
        QVERIFY(!login.getProfile(profile, message, nullptr, false));
        QVERIFY(!message.isEmpty());
        login.setManagerProgram(program);
        login.reloadProfile(7); // is no reason to start one
        QVERIFY(!QFile::exists(started));
        QVERIFY2(login.getProfile(profile, message, nullptr, false), qPrintable(message));
        QCOMPARE(profile.name, QString("Office"));
        QCOMPARE(outside::read(started), QByteArray("--no-window\n"));
    }

    void damagedAnswersGiveTheLoadFailure()
    {
        const QByteArray record = FakeManager::profileRecord(7, "Office", m_entry);
        const QByteArray whole = FakeManager::profileList({record});
        QByteArray billions = record;
        billions.replace(QByteArray("\x00\x00\x00\x01", 4), QByteArray("\x7f\xff\xff\xff", 4));
        const QByteArray answers[] = {QByteArray(),
                                      whole.left(5),
                                      whole.left(whole.size() / 2),
                                      FakeManager::profileList({record.left(30)}),
                                      QByteArray("\x7f\xff\xff\xff\xff\xff\xff\xff garbage", 16),
                                      QByteArray(64, '\xff'), // a negative size
                                      FakeManager::profileList({billions})};
        for (const QByteArray &answer : answers) {
            FakeManager manager;
            manager.listAnswer = answer;
            manager.closeAfterAnswer = true;
            kelvaLoginData login;
            kelvaProfileData profile;
            QString message;
            QVERIFY(!login.getProfile(profile, message, nullptr, false));
            QCOMPARE(message, QString("The profile information could not be loaded. Please start the "
                                      "Connection Manager!"));
            QVERIFY(!login.getIsUserCanceled());
        }
    }

    void profilesAreFoundById()
    {
        FakeManager manager;
        manager.listAnswer = FakeManager::profileList({FakeManager::profileRecord(7, "Old", m_entry),
                                                       FakeManager::profileRecord(9, "Other", m_entry),
                                                       FakeManager::profileRecord(7, "New", m_entry)});
        kelvaLoginData login;
        QString message;
        kelvaProfileData profile;
        QVERIFY(login.getProfileById(profile, message, 7));
        QCOMPARE(profile.name, QString("New")); // of equal ids the last one
        QCOMPARE(manager.requests, QStringList("GETPROFILES"));

        kelvaProfileData missing;
        QVERIFY(!login.getProfileById(missing, message, 0));
        QCOMPARE(message, QString());

        manager.listAnswer = FakeManager::profileList({});
        QVERIFY(!login.getProfile(missing, message, nullptr, false));
        QVERIFY(message.startsWith("You are not connected to any profile."));
    }

private:
    const QString m_entry = QString("Main archive") + recordformat::fieldSeparator + "1";
};

KELVA_TEST(TestKelvaLoginData)
#include "testkelvalogindata.moc"
