#include "support/kelvatest.h"

#include "server/classifyinterface.h"
#include "server/kelvaarchiveclientinterface.h"
#include "server/recordformat.h"
#include "service/archive.h"
#include "service/session.h"
#include "service/users.h"
#include "service/workbench.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QMap>
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

/// The nine items of the vocabulary block, as the client reads them.
struct Block
{
    QStringList titles, searchColumns, keys;
    QMap<int, QString> choices, lines, checks, dates;
    QList<QStringList> rows;
    QList<QList<QByteArray>> pictures;
    bool complete = false;

    explicit Block(const QString &key)
    {
        QSharedMemory memory(key);
        if (!memory.attach(QSharedMemory::ReadOnly) || !memory.lock())
            return;
        const QByteArray bytes(static_cast<const char *>(memory.constData()), memory.size());
        memory.unlock();
        QDataStream stream(bytes);
        stream >> titles >> searchColumns >> keys >> choices >> lines >> checks >> dates >> rows >> pictures;
        complete = stream.status() == QDataStream::Ok;
    }
};

} // namespace

class TestPlugins : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        const QString path = kelva::archive::fileFor(QStringLiteral("LocalHost"), port).value();
        QFile::remove(path);
        QFile::remove(offlinePath());
        kelva::NewArchive archive;
        archive.path = path;
        archive.administrator = QStringLiteral("admin");
        archive.password = QStringLiteral("secret");
        QVERIFY(kelva::archive::create(archive).ok());
        m_classify.reset(
            load<ClassifyInterface>(QStringLiteral("libclassifyclient.so"), CLASSIFY_INTERFACE_IID)
                ->createClient(QString()));
        m_files.reset(load<kelvaArchiveClientInterface>(QStringLiteral("libkelvaarchiveclient.so"),
                                                        KELVA_ARCHIVE_CLIENT_INTERFACE_IID)
                          ->createClient(QString()));
    }

    void cleanup()
    {
        m_classify.reset();
        m_files.reset();
        QFile::remove(offlinePath());
    }

    void aLoginIsRefusedWithItsReason_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("text");
        QTest::newRow("a wrong password") << "localhost" << port << "wrong"
                                          << "Wrong username or password!";
        QTest::newRow("a server elsewhere") << "archive.example" << port << "secret"
                                            << "archive.example";
        QTest::newRow("an archive that is not there") << "localhost" << 99 << "secret"
                                                      << "There is no archive at";
        QTest::newRow("a port that is no number") << "localhost" << 0 << "secret"
                                                  << "not valid";
    }

    void aLoginIsRefusedWithItsReason()
    {
        QFETCH(QString, host);
        QFETCH(int, number);
        QFETCH(QString, password);
        QFETCH(QString, text);
        QVERIFY(!m_classify->connectClient(host, number, QStringLiteral("admin"), password));
        QVERIFY2(m_classify->lastMessage().contains(text), qPrintable(m_classify->lastMessage()));
        QCOMPARE(m_classify->lastError(), m_classify->lastMessage());
        QCOMPARE(m_classify->getDocuments({"1=1"}), QStringList());
        QVERIFY(!m_classify->lastError().isEmpty());
        QVERIFY(!m_files->connectToArchive(host, number) ||
                !m_files->login(QStringLiteral("admin"), password));
        QVERIFY(!m_files->lastError().isEmpty());
    }

    void anExpiredPasswordIsReplacedWithoutASession()
    {
        QVERIFY(connectBoth());
        QVERIFY(m_classify->createUser({record({"clerk", "first", "A clerk", "c"})}));
        QVERIFY(connectAs(QStringLiteral("clerk"), QStringLiteral("first")));
        expire(QStringLiteral("clerk"));
        QVERIFY(!connectAs(QStringLiteral("clerk"), QStringLiteral("wrong")));
        QVERIFY(!m_classify->lastMessage().startsWith(QStringLiteral("Password expired")));
        QVERIFY(!connectAs(QStringLiteral("clerk"), QStringLiteral("first")));
        QVERIFY(m_classify->lastMessage().startsWith(QStringLiteral("Password expired")));
        QVERIFY(!m_classify->changeExpiredPassword("localhost", "wrong", "second", "clerk", port));
        QVERIFY(m_classify->changeExpiredPassword("localhost", "first", "second", "clerk", port));
        QVERIFY(connectAs(QStringLiteral("clerk"), QStringLiteral("second")));
        QCOMPARE(m_classify->getUserRights(), QStringList{QStringLiteral("r_clerk")});
        QVERIFY(m_files->connectToArchive("localhost", port) && m_files->login("clerk", "second"));
    }

    void anArchiveOfANewerVersionSaysOnlyThat()
    {
        QFile file(kelva::archive::fileFor(QStringLiteral("localhost"), port).value());
        QVERIFY(file.open(QIODevice::ReadWrite));
        constexpr int schemaVersion = 60;
        file.seek(schemaVersion);
        file.write(QByteArray::fromHex("00ffffff"));
        file.close();
        QVERIFY(!connectAs(QStringLiteral("admin"), QStringLiteral("secret")));
        QCOMPARE(m_classify->lastMessage(), QStringLiteral("WRONGVERSION"));
    }

    void aFileIsArchivedListedAndFetched()
    {
        QVERIFY(connectBoth());
        QVERIFY(!m_files->selectArchive("77"));
        QVERIFY(m_files->selectArchive("1"));
        QTemporaryDir directory;
        QFile file(directory.filePath(QStringLiteral("O'Brien & Söhne.txt")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(700000, 'x'));
        file.close();
        QSignalSpy sizes(m_files.get(), SIGNAL(totalFileSize(QString)));
        QSignalSpy moved(m_files.get(), SIGNAL(currentReadSize(QString)));
        QSignalSpy stored(m_files.get(), SIGNAL(saveDocEnd()));
        QVERIFY2(m_files->uploadDocument(" ", file.fileName(), true), qPrintable(m_files->lastError()));
        QCOMPARE(sizes.value(0).value(0).toString(), QStringLiteral("700000"));
        QCOMPARE(moved.last().value(0).toString(), QStringLiteral("700000"));
        QCOMPARE(stored.size(), 1);
        const qint64 id = m_files->getLastDocId();
        QVERIFY(m_classify->archiveDocument(id, QStringLiteral("O'Brien & Söhne.txt"), "1", "0"));
        const QStringList rows = m_classify->getDocuments({QStringLiteral("docid = %1").arg(id)});
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(1).split(fieldSeparator).value(2), QStringLiteral("O'Brien & Söhne.txt"));
        const QStringList info =
            m_files->getDocumentInfo({QString::number(id)}).value(0).split(recordformat::listSeparator);
        QCOMPARE(info, (QStringList{QString::number(id), QStringLiteral("O'Brien & Söhne.txt"), "", "txt"}));
        QString path;
        QVERIFY(m_files->downloadDocument(static_cast<int>(id), path, 1));
        QCOMPARE(QFile(path).size(), 700000);
        QStringList actions;
        QVERIFY(m_files->getDocumentActions({QString::number(id)}, actions, 1, QStringLiteral("admin")));
        QCOMPARE(actions.value(0).split(fieldSeparator).value(2), QStringLiteral("1"));
    }

    void whatIsMissingFailsInPlainWords()
    {
        QVERIFY(connectBoth());
        QStringList texts{QStringLiteral("old")};
        QList<QByteArray> data;
        QVERIFY(!m_classify->ldapCommand("LOADPROFILES", {}, {}, texts, data));
        QCOMPARE(m_classify->lastError(), QStringLiteral("This is not available yet."));
        QCOMPARE(texts, QStringList());
    }

    void theContentOfAFileIsFoundSoonAfterItCameIn()
    {
        QVERIFY(connectBoth());
        QTemporaryDir directory;
        QFile file(directory.filePath(QStringLiteral("Offer.html")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<p>turpen<b>tine</b>");
        file.close();
        QVERIFY(m_files->uploadDocument(" ", file.fileName(), true));
        const QString id = QString::number(m_files->getLastDocId());
        QTRY_COMPARE_WITH_TIMEOUT(m_files->searchDocuments("turpentine"), QStringList{record({id, id})},
                                  30000);
        QStringList states{QStringLiteral("old")};
        QVERIFY(m_classify->getIndexerInfo(states));
        QCOMPARE(states, QStringList{record({"4", "1"})});
        QVERIFY(m_classify->recreateIndex());
        const auto isProcessed = [&] {
            return m_classify->getIndexerInfo(states) && states == QStringList{record({"4", "1"})};
        };
        QTRY_VERIFY_WITH_TIMEOUT(isProcessed(), 30000);
        m_classify->disconnectClient();
        QVERIFY(!m_classify->getIndexerInfo(states));
        QCOMPARE(states, QStringList());
    }

    void vocabularyChangedByOthersIsAnnounced()
    {
        QVERIFY(connectBoth());
        const std::unique_ptr<ClassifyInterface> other(m_classify->createClient(QString()));
        QVERIFY(other->connectClient("localhost", port, "admin", "secret"));
        QSignalSpy own(m_classify.get(), SIGNAL(serverRequest(QString)));
        QSignalSpy others(other.get(), SIGNAL(serverRequest(QString)));
        QVERIFY(m_classify->createFolder("-1", QStringLiteral("Office"), QString(), QString()));
        QVERIFY(others.wait());
        QCOMPARE(others.value(0).value(0).toString(), QStringLiteral("DORELOADALL"));
        QCOMPARE(own.size(), 0);
    }

    void anArchiveBesideTheProgramIsBrowsedOffline()
    {
        QVERIFY(connectBoth());
        QVERIFY(m_classify->createFolder("-1", QStringLiteral("Office"), QString(), QString()));
        QVERIFY(m_classify->createFolder("1", QStringLiteral("Invoices"), "K1", "bill"));
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

        QVERIFY(m_classify->getConnectionMode().startsWith(QStringLiteral("Offline")));
        QStringList archives;
        m_classify->getArchiveList(archives);
        QCOMPARE(archives, QStringList{record({"Archive", "1"})});
        m_classify->setProfileId(17);
        QVERIFY2(connectAs(QStringLiteral("meier"), QString()), qPrintable(m_classify->lastError()));
        QCOMPARE(m_classify->getDocuments({"1=1"}).size(), 1);
        QVERIFY(!m_classify->createFolder("-1", "x", "", ""));
        QVERIFY(m_files->connectToArchive(QString(), 0) && m_files->login(QString(), QString()));

        const Block block(QStringLiteral("kelva_meier_localhost_%1%2").arg(port).arg(17));
        QVERIFY(block.complete);
        QCOMPARE(block.titles.size(), 17);
        QCOMPARE(block.keys.size(), 16);
        QCOMPARE(block.searchColumns.size(), 17);
        QCOMPARE(block.searchColumns.at(2), record({"Description", "bemerkung"}));
        QCOMPARE(block.searchColumns.at(13), record({"Amount", "attr3"}));
        QCOMPARE(block.choices.value(12).split(recordformat::listSeparator),
                 (QStringList{"red", "", "blue"}));
        QCOMPARE(block.lines.keys(), (QList<int>{11, 13}));
        QCOMPARE(block.lines.value(13), QStringLiteral("type:Numeric"));
        QCOMPARE(block.checks.keys(), QList<int>{14});
        QCOMPARE(block.dates.keys(), QList<int>{15});
        QCOMPARE(block.rows.size(), 4);
        QCOMPARE(block.rows.at(0), (QStringList{record({"1", "Office"}), record({"1.1", "Invoices"})}));
        QCOMPARE(block.rows.at(1).value(1), record({"2", "Resubmission"}));
        QCOMPARE(block.rows.at(2), QStringList{record({"0", "not assigned", "0;0;0"})});
        QCOMPARE(block.rows.at(3).value(1),
                 record({"1.1", "Invoices", "0", "K1", "1", "0", "", "E", "bill"}));
        for (int i = 0; i < 4; ++i)
            QCOMPARE(block.pictures.value(i).size(), block.rows.at(i).size());
    }

    void aBlockThatOutgrowsItsSegmentIsStillRead()
    {
        const QString key = QStringLiteral("kelva_test_grow");
        kelva::WorkbenchSegment segment(key);
        QVERIFY(segment.publish("small").ok());
        QSharedMemory reader(key);
        QVERIFY(reader.attach());
        QVERIFY(reader.size() >= 1 << 20);
        const QByteArray large(3 << 20, 'x');
        QVERIFY(!segment.publish(large).ok());
        reader.detach();
        QVERIFY(segment.publish(large).ok());
        QVERIFY(reader.attach());
        QVERIFY(reader.size() >= 6 << 20);
        QVERIFY(QByteArray::fromRawData(static_cast<const char *>(reader.constData()), large.size()) ==
                large);
    }

private:
    static QString offlinePath()
    {
        return QCoreApplication::applicationDirPath() + QStringLiteral("/offline.kelva");
    }

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
        return m_classify->connectClient(QStringLiteral("localhost"), port, user, password);
    }

    bool connectBoth()
    {
        return connectAs(QStringLiteral("admin"), QStringLiteral("secret")) &&
               m_files->connectToArchive(QStringLiteral("localhost"), port) &&
               m_files->login(QStringLiteral("admin"), QStringLiteral("secret"));
    }

    static void expire(const QString &user)
    {
        const auto owner = kelva::Session::openAsOwner(kelva::archive::fileFor("localhost", port).value(),
                                                       QStringLiteral("owner"));
        QVERIFY(kelva::Users(*owner.value()).setPasswordExpired(user, true).ok());
    }

    std::unique_ptr<ClassifyInterface> m_classify;
    std::unique_ptr<kelvaArchiveClientInterface> m_files;
};

KELVA_TEST(TestPlugins)
#include "testplugins.moc"
