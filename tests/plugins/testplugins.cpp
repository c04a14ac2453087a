#include "support/kelvatest.h"
#include "support/outside.h"

#include "contract/classifyinterface.h"
#include "contract/kelvaarchiveclientinterface.h"
#include "contract/recordformat.h"
#include "folders/workbenchdata.h"
#include "service/archive.h"
#include "service/session.h"
#include "service/users.h"
#include "service/workbench.h"

#include <QCoreApplication>
#include <QFile>
#include <QPluginLoader>
#include <QSharedMemory>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

using recordformat::fieldSeparator;

namespace {

constexpr int port = 4711;

QString record(const QStringList &fields)
{
    return fields.join(fieldSeparator);
}

} // namespace

class TestPlugins : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        const QString path = kelva::archive::fileFor("LocalHost", port).value();
        QFile::remove(path);
        QFile::remove(offlinePath());
        kelva::NewArchive archive;
        archive.path = path;
        archive.administrator = "admin";
        archive.password = "secret";
        QVERIFY(kelva::archive::create(archive).ok());
        m_classify.reset(
            load<ClassifyInterface>("libclassifyclient.so", CLASSIFY_INTERFACE_IID)->createClient(QString()));
        m_files.reset(
            load<kelvaArchiveClientInterface>("libkelvaarchiveclient.so", KELVA_ARCHIVE_CLIENT_INTERFACE_IID)
                ->createClient(QString()));
    }

    void cleanup()
    {
        m_classify.reset();
        m_files.reset();
        QFile::remove(offlinePath());
    }

    void anExpiredPasswordIsReplacedWithoutASession()
    {
        QVERIFY(connectBoth());
        QVERIFY(m_classify->createUser({record({"clerk", "first", "A clerk", "c"})}));
        QVERIFY(connectAs("clerk", "first"));
        expire("clerk");
        QVERIFY(!connectAs("clerk", "wrong"));
        QCOMPARE(m_classify->lastMessage(), QString("Wrong username or password!"));
        QVERIFY(!connectAs("clerk", "first"));
        QVERIFY(m_classify->lastMessage().startsWith("Password expired"));
        QVERIFY(!m_classify->changeExpiredPassword("localhost", "wrong", "second", "clerk", port));
        QVERIFY(m_classify->changeExpiredPassword("localhost", "first", "second", "clerk", port));
        QVERIFY(connectAs("clerk", "second"));
        QCOMPARE(m_classify->getUserRights(), QStringList{"r_clerk"});
        QVERIFY(m_files->connectToArchive("localhost", port) && m_files->login("clerk", "second"));
    }

    void anArchiveOfANewerVersionSaysOnlyThat()
    {
        QFile file(kelva::archive::fileFor("localhost", port).value());
        QVERIFY(file.open(QIODevice::ReadWrite));
        constexpr int schemaVersion = 60;
        file.seek(schemaVersion);
        file.write(QByteArray::fromHex("00ffffff"));
        file.close();
        QVERIFY(!connectAs("admin", "secret"));
        QCOMPARE(m_classify->lastMessage(), QString("WRONGVERSION"));
        QCOMPARE(m_classify->getDocuments({"1=1"}), QStringList());
        QVERIFY(!m_classify->lastError().isEmpty());
    }

    void aFileIsArchivedListedAndFoundByItsWords()
    {
        QVERIFY(connectBoth());
        QVERIFY(m_files->selectArchive("1"));
        const QString name = "O'Brien & Söhne.html";
        QVERIFY2(m_files->uploadDocument(
                     " ", outside::write(m_directory.filePath(name), "<p>turpen<b>tine</b>"), true),
                 qPrintable(m_files->lastError()));
        const QString id = QString::number(m_files->getLastDocId());
        QVERIFY(m_classify->archiveDocument(id.toInt(), name, "1", "0"));
        const QStringList rows = m_classify->getDocuments({"docid = " + id});
        QCOMPARE(rows.value(1).split(fieldSeparator).value(2), name);
        const QString record = rows.at(1).section(fieldSeparator, 0, 0).section('#', 1);
        QVERIFY(m_classify->moveToTrash({record}));
        QCOMPARE(m_classify->getDocuments({"1=1"}).size(), 1);
        QVERIFY(m_classify->restoreFromTrash({record}));
        QCOMPARE(m_classify->countDocuments("(trashed = false)", true), 1);
        QVERIFY(m_classify->countDocuments("status =", true) < 0);
        QStringList actions;
        QString path;
        QVERIFY(m_files->downloadDocument(id.toInt(), path, 1));
        QVERIFY(m_files->getDocumentActions({id}, actions, 1, "admin"));
        QCOMPARE(actions.value(0).split(fieldSeparator).value(2), QString("1"));

        QTRY_COMPARE_WITH_TIMEOUT(m_files->searchDocuments("turpentine"), QStringList{::record({id, id})},
                                  30000);
        QStringList states{"old"};
        QVERIFY(m_classify->recreateIndex());
        const auto isProcessed = [&] {
            return m_classify->getIndexerInfo(states) && states == QStringList{::record({"4", "1"})};
        };
        QTRY_VERIFY_WITH_TIMEOUT(isProcessed(), 30000);
        m_classify->disconnectClient();
        QVERIFY(!m_classify->getIndexerInfo(states));
        QCOMPARE(states, QStringList());
    }

    void settingsAreNotOverwrittenUnasked()
    {
        QVERIFY(connectBoth());
        QByteArray value;
        QString owner;
        QVERIFY(!m_classify->getSetting("kelvaGlobalSettings", "color", value, owner));
        QCOMPARE(m_classify->lastError(), QString("No data found."));
        for (const auto &[color, overwrite, kept] :
             {std::tuple("blue", false, "blue"), {"red", false, "blue"}, {"red", true, "red"}}) {
            QCOMPARE(m_classify->saveSetting("kelvaGlobalSettings", "color", color, QString(), overwrite),
                     color == QByteArray(kept));
            QVERIFY(m_classify->getSetting("kelvaGlobalSettings", "color", value, owner));
            QCOMPARE(value, QByteArray(kept));
        }
    }

    void vocabularyChangedByOthersIsAnnounced()
    {
        QVERIFY(connectBoth());
        const std::unique_ptr<ClassifyInterface> other(m_classify->createClient(QString()));
        QVERIFY(other->connectClient("localhost", port, "admin", "secret"));
        QSignalSpy own(m_classify.get(), SIGNAL(serverRequest(QString)));
        QSignalSpy others(other.get(), SIGNAL(serverRequest(QString)));
        QVERIFY(m_classify->createFolder("-1", "Office", QString(), QString()));
        QVERIFY(others.wait());
        QCOMPARE(others.value(0).value(0).toString(), QString("DORELOADALL"));
        QCOMPARE(own.size(), 0);
    }

    void anArchiveBesideTheProgramIsBrowsedOffline()
    {
        QVERIFY(connectBoth());
        QVERIFY(m_classify->createFolder("-1", "Office", QString(), QString()));
        QVERIFY(m_classify->createFolder("1", "Invoices", "K1", "bill"));
        QVERIFY(m_classify->saveAttributes({record({"-1", "Customer", "String", "false", "false"}),
                                            record({"-2", "Colour", "ComboBox", "false", "false"}),
                                            record({"-3", "Amount", "Numeric", "false", "false"}),
                                            record({"-4", "Paid", "CheckBox", "false", "false"}),
                                            record({"-5", "Due", "Date", "false", "false"}),
                                            record({"-6", "Old", "String", "false", "true"})}));
        QVERIFY(m_classify->saveAttributeValues(-2, {"Colour", "red", "", "blue"}));
        m_classify->disconnectClient();
        QVERIFY(
            kelva::archive::backup(kelva::archive::fileFor("localhost", port).value(), offlinePath()).ok());
        QFile::setPermissions(offlinePath(), QFile::ReadOwner);

        QVERIFY(m_classify->getConnectionMode().startsWith("Offline"));
        QStringList archives;
        m_classify->getArchiveList(archives);
        QCOMPARE(archives, QStringList{record({"Archive", "1"})});
        m_classify->setProfileId(17);
        QVERIFY2(connectAs("meier", QString()), qPrintable(m_classify->lastError()));
        QCOMPARE(m_classify->getDocuments({"1=1"}).size(), 1);
        QVERIFY(!m_classify->createFolder("-1", "x", "", ""));
        QCOMPARE(m_classify->lastError(), QString("The archive is read-only."));
        QVERIFY(m_files->connectToArchive(QString(), 0) && m_files->login(QString(), QString()));

        WorkbenchData block;
        QVERIFY(readWorkbenchData(workbenchKey("meier", "localhost", port, 17), block));
        QCOMPARE(block.searchColumns.size(), 17);
        QCOMPARE(block.searchColumns.at(2), record({"Description", "bemerkung"}));
        QCOMPARE(block.searchColumns.at(13), record({"Amount", "attr3"}));
        QCOMPARE(block.comboColumns.value(12).split(recordformat::listSeparator),
                 (QStringList{"red", "", "blue"}));
        QCOMPARE(block.lineColumns.keys(), (QList<int>{11, 13}));
        QCOMPARE(block.lineColumns.value(13), QString("type:Numeric"));
        QCOMPARE(block.checkColumns.keys(), QList<int>{14});
        QCOMPARE(block.dateColumns.keys(), QList<int>{15});
        QCOMPARE(block.mainFolders, (QStringList{record({"1", "Office"}), record({"1.1", "Invoices"})}));
        QCOMPARE(block.status.value(1), record({"2", "Resubmission"}));
        QCOMPARE(block.types, QStringList{record({"0", "not assigned", "0;0;0"})});
        QCOMPARE(block.folders.value(1), record({"1.1", "Invoices", "0", "K1", "1", "0", "", "E", "bill"}));
    }

    void aBlockThatOutgrowsItsSegmentIsStillRead()
    {
        const QString key = "kelva_test_grow";
        kelva::WorkbenchSegment segment(key);
        QVERIFY(segment.publish("small").ok());
        QSharedMemory reader(key);
        QVERIFY(reader.attach());
        QVERIFY(reader.size() >= 1 << 20);
        const QByteArray large(3 << 20, 'x');
        QVERIFY(segment.publish(large).ok());
        QVERIFY(QByteArray(static_cast<const char *>(reader.constData())) == "small");
        reader.detach();
        QVERIFY(reader.attach());
        QVERIFY(reader.size() >= 6 << 20);
        QVERIFY(QByteArray::fromRawData(static_cast<const char *>(reader.constData()), large.size()) ==
                large);
    }

private:
    static QString offlinePath() { return QCoreApplication::applicationDirPath() + "/offline.kelva"; }

    template<typename Interface>
    Interface *load(const QString &file, const char *iid)
    {
        QPluginLoader loader(QStringLiteral(KELVA_PLUGIN_DIRECTORY "/") + file);
        QObject *instance = loader.instance();
        if (!instance || !instance->qt_metacast(iid))
            qFatal("%s", qPrintable(loader.errorString()));
        return static_cast<Interface *>(instance->qt_metacast(iid));
    }

    bool connectAs(const QString &user, const QString &password)
    {
        return m_classify->connectClient("localhost", port, user, password);
    }

    bool connectBoth()
    {
        return connectAs("admin", "secret") && m_files->connectToArchive("localhost", port) &&
               m_files->login("admin", "secret");
    }

    static void expire(const QString &user)
    {
        const auto owner =
            kelva::Session::openAsOwner(kelva::archive::fileFor("localhost", port).value(), "owner");
        QVERIFY(kelva::Users(*owner.value()).setPasswordExpired(user, true).ok());
    }

    QTemporaryDir m_directory;
    std::unique_ptr<ClassifyInterface> m_classify;
    std::unique_ptr<kelvaArchiveClientInterface> m_files;
};

KELVA_TEST(TestPlugins)
#include "testplugins.moc"
