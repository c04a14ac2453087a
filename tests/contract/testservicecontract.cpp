#include "fakes/fakearchive.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include "contract/classifyinterface.h"
#include "contract/kelvaarchiveclientinterface.h"
#include "contract/recordformat.h"
#include "service/archive.h"
#include "service/bulkload.h"
#include "service/session.h"

#include <QDirIterator>
#include <QPluginLoader>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

namespace {

constexpr int archiveNumber = 5;

/// Two live documents of anna's, the second one in a sub folder, and one in the trash.
void fillFake()
{
    FakeArchive &archive = FakeArchive::instance();
    archive.reset();
    archive.subArchives = QStringList{QString("Main archive") + recordformat::fieldSeparator + "1"};
    archive.addDocument("First", "1.1");
    archive.addDocument("Second", "1.1.1", "3");
    archive.addDocument("Third", "1.1");
    archive.documents[3].trashed = true;
}

bool fillReal()
{
    kelva::NewArchive fresh;
    fresh.path = kelva::archive::fileFor("localhost", archiveNumber).value();
    fresh.administrator = "anna";
    fresh.password = "secret";
    fresh.subArchive = "Main archive";
    QFile::remove(fresh.path);
    if (!kelva::archive::create(fresh))
        return false;
    auto session = kelva::Session::openAsOwner(fresh.path, "anna");
    if (!session)
        return false;
    kelva::BulkLoad load(*session.value());
    for (const QStringList &row :
         {QStringList{"First", "1.1", "1"}, {"Second", "1.1.1", "3"}, {"Third", "1.1", "1"}}) {
        kelva::BulkDocument document;
        document.fileName = "scan.pdf";
        document.creator = "anna";
        document.created = "2024-03-06T10:20:30";
        document.date = "2024-03-05";
        document.description = row.at(0);
        document.folder = row.at(1);
        document.status = row.at(2).toInt();
        document.trashed = row.at(0) == "Third";
        if (!load.add(document))
            return false;
    }
    return load.finish().ok();
}

} // namespace

/// What the client relies on, the same for the fake that its tests run against and for the real archive.
class TestServiceContract : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::newRow("fake") << QString(FAKE_PLUGIN_DIRECTORY);
        QTest::newRow("real") << QString(REAL_PLUGIN_DIRECTORY);
    }

    void init()
    {
        QFETCH_GLOBAL(QString, directory);
        fillFake();
        QVERIFY(fillReal());
        m_client.reset(make<ClassifyInterface>(directory + "/libclassifyclient.so", CLASSIFY_INTERFACE_IID));
        m_content.reset(make<kelvaArchiveClientInterface>(directory + "/libkelvaarchiveclient.so",
                                                          KELVA_ARCHIVE_CLIENT_INTERFACE_IID));
        QVERIFY(m_client && m_content);
    }

    void cleanup()
    {
        m_client.reset();
        m_content.reset();
    }

    void sessionsBeginWithAPassword()
    {
        QVERIFY(!m_client->getConnectionMode().startsWith("Offline"));
        QVERIFY(!m_client->connectClient("localhost", archiveNumber, "anna", "wrong"));
        QVERIFY(!m_client->lastMessage().isEmpty());
        QCOMPARE(m_client->lastMessage(), m_client->lastError());
        login();
        QVERIFY(m_client->getUserRights().contains("kelvaADMIN"));
        QVERIFY(m_client->getUserRights().contains("r_anna"));
        QStringList archives{"left from before"};
        m_client->getArchiveList(archives);
        QCOMPARE(archives, QStringList(QString("Main archive") + recordformat::fieldSeparator + "1"));
        m_client->disconnectClient();
    }

    void listsHaveAHeaderAndRights()
    {
        login();
        const QStringList rows = m_client->getDocuments({"1=1", "OPT:LIMIT;100"});
        QCOMPARE(rows.size(), 3);
        const int fields = rows.first().split(recordformat::fieldSeparator).size();
        for (const QString &row : rows) {
            const QStringList split = row.split(recordformat::fieldSeparator);
            QCOMPARE(split.size(), fields);
            if (row == rows.first())
                continue;
            QCOMPARE(split.at(0).count('#'), 1);
            QVERIFY(split.last().contains('W'));
            QCOMPARE(split.at(8), QString("2024-03-05"));
            QVERIFY(split.at(4).startsWith("1_"));
        }
        QCOMPARE(m_client->getDocuments({"docid = 99999"}).size(), 1); // no hit: the header alone
        const QStringList record = m_client->getDocument(classificationOf("Second"), QString());
        QVERIFY(rows.contains(record.join(recordformat::fieldSeparator)));
        QCOMPARE(m_client->getDocument("99999", QString()), QStringList());
    }

    void filtersNarrowTheList()
    {
        login();
        QCOMPARE(descriptions({"1=1"}), QStringList({"First", "Second"}));
        QCOMPARE(descriptions({"(folder = '1.1.1' OR folder like '1.1.1.%')", "1=1"}), QStringList("Second"));
        QCOMPARE(descriptions({"(folder = '1.1' OR folder like '1.1.%')"}), QStringList({"First", "Second"}));
        QCOMPARE(descriptions({"(folder = '1' OR folder like '1.%')", "(status = 3)"}),
                 QStringList("Second"));
        QCOMPARE(descriptions({"1=1", "OPT:TRASH"}), QStringList("Third"));
        QCOMPARE(descriptions({"1=1", "OPT:LIMIT;1"}).size(), 1);
        QCOMPARE(m_client->getDocuments({"no clause at all"}), QStringList());
        QVERIFY(!m_client->lastMessage().isEmpty());
    }

    void aStaleTokenIsRefused()
    {
        login();
        const QString id = classificationOf("First");
        QStringList fields = m_client->getDocument(id, QString()).mid(1);
        const QString token = fields.at(3);
        fields[1] = "Changed";
        QVERIFY2(m_client->saveDocument(id, fields), qPrintable(m_client->lastMessage()));
        QCOMPARE(m_client->getDocument(id, QString()).value(2), QString("Changed"));
        QVERIFY(m_client->getDocument(id, QString()).value(4) != token);
        fields[1] = "Lost";
        QVERIFY(!m_client->saveDocument(id, fields));
        QCOMPARE(m_client->lastMessage(),
                 QString("The entry has been changed by another user in the meantime."));
        QCOMPARE(m_client->getDocument(id, QString()).value(2), QString("Changed"));
    }

    void aRecordComesBackAsItWasRead()
    {
        login();
        const QString id = classificationOf("First");
        const QStringList row =
            m_client->getDocuments({"docs_id in (" + id + ")"}).value(1).split(recordformat::fieldSeparator);
        QStringList fields = row.mid(1);
        fields[1] = "Changed";
        for (const QStringList &other : QList<QStringList>{fields.mid(0, 4), fields.mid(0, fields.size() - 1),
                                                           fields + QStringList("")}) {
            QVERIFY(!m_client->saveDocument(id, other));
            QVERIFY(m_client->lastMessage().startsWith("The entry does not have the fields"));
        }
        login();
        QVERIFY(!m_client->saveDocument(id, fields)); // this session has not read it
        QCOMPARE(m_client->getDocument(id, QString()), row);
        QVERIFY2(m_client->saveDocument(id, fields), qPrintable(m_client->lastMessage()));
    }

    void searchesAreKeptWithTheirRoles()
    {
        login();
        const auto searches = [this] {
            QStringList list;
            const QStringList records = m_client->getSearches("anna");
            for (const QString &record : records)
                list << QString(record)
                            .replace(recordformat::fieldSeparator, '/')
                            .replace(recordformat::listSeparator, ',');
            return list;
        };
        const QString definition = QString("a") + recordformat::rowSeparator + "b";
        QVERIFY(m_client->saveSearch("Mine", definition, {"r_anna"}));
        QVERIFY(m_client->saveSearch("Ours", "c", {"kelvaUSER", "r_anna"}));
        QCOMPARE(searches(), QStringList({"1/Mine/" + definition + "/r_anna", "2/Ours/c/kelvaUSER,r_anna"}));
        QVERIFY(m_client->updateSearch(1, "Mine", "d", {"kelvaUSER", "r_anna"}));
        QVERIFY(m_client->deleteSearch("2"));
        QCOMPARE(searches(), QStringList("1/Mine/d/kelvaUSER,r_anna"));
        QVERIFY(!m_client->updateSearch(2, "Ours", "e", {"r_anna"}));
        QVERIFY(!m_client->deleteSearch("2"));
        QVERIFY(m_client->saveSearch("Mine", "e", {"r_anna"})); // told apart by its id
        QCOMPARE(searches().size(), 2);
    }

    void contentAnswersForDocuments()
    {
        login();
        const QString id = m_client->getDocuments({"1=1"}).value(1).section('#', 0, 0);
        QVERIFY(m_content->connectToArchive("localhost", archiveNumber));
        QVERIFY2(m_content->login("anna", "secret"), qPrintable(m_content->lastError()));
        QVERIFY(!m_content->selectArchive("77"));
        QVERIFY(!m_content->lastError().isEmpty());
        QVERIFY(m_content->selectArchive("1"));
        const QStringList infos = m_content->getDocumentInfo({id});
        QCOMPARE(infos.size(), 1);
        const QStringList words = infos.first().split(recordformat::listSeparator);
        QVERIFY(words.size() >= 4);
        QCOMPARE(words.at(0) + '|' + words.at(1) + '|' + words.at(3), id + "|scan.pdf|pdf");
        QStringList actions{"left from before"};
        QVERIFY(m_content->getDocumentActions({id}, actions, 0, "anna"));
        QCOMPARE(actions, QStringList());
        // The same object connects a second time.
        m_content->disconnectFromArchive();
        QVERIFY(m_content->connectToArchive("localhost", archiveNumber));
        QVERIFY(m_content->login("anna", "secret"));
    }

    void filesComeBackAsTheyWent()
    {
        connectContent();
        QSignalSpy total(m_content.get(), SIGNAL(totalFileSize(QString)));
        QSignalSpy current(m_content.get(), SIGNAL(currentReadSize(QString)));
        QSignalSpy sent(m_content.get(), SIGNAL(saveDocEnd()));
        int before = storedDocuments();
        int files = 0;
        for (const int size : {0, 1, 256 * 1024 + 1, 3000000}) {
            QByteArray bytes(size, Qt::Uninitialized);
            for (int i = 0; i < size; ++i)
                bytes[i] = char(i * 7 + i / 251);
            QVERIFY2(m_content->uploadDocument(" ", writeFile("a b.dat", bytes), true),
                     qPrintable(m_content->lastError()));
            QCOMPARE(total.last().first().toString(), QString::number(size));
            QCOMPARE(current.last().first().toString(), QString::number(size));
            QCOMPARE(sent.count(), ++files);
            QCOMPARE(storedDocuments(), ++before);
            const qint64 id = m_content->getLastDocId();
            QVERIFY(m_content->getDocumentInfo({QString::number(id)}).value(0).contains("a b.dat"));
            QCOMPARE(download(id), bytes);
            QCOMPARE(total.count(), 2 * files);
            QCOMPARE(sent.count(), files);
        }
    }

    void aNewVersionKeepsItsId()
    {
        connectContent();
        QVERIFY(m_content->uploadDocument(" ", writeFile("a.txt", "one"), true));
        const qint64 id = m_content->getLastDocId();
        QVERIFY(m_content->uploadDocument("1", writeFile("a.txt", "two"), false));
        QCOMPARE(m_content->getLastDocId(), id);
        QCOMPARE(download(id), QByteArray("two"));
        QVERIFY(m_content->uploadDocument(" ", writeFile("a.txt", "three"), true));
        QVERIFY(m_content->getLastDocId() != id);
        QCOMPARE(download(id), QByteArray("two"));
        // Of a name that is new, the first version.
        QVERIFY(m_content->uploadDocument(" ", writeFile("b.txt", "four"), false));
        QCOMPARE(download(m_content->getLastDocId()), QByteArray("four"));
    }

    void aCancelledTransferLeavesNothing()
    {
        connectContent();
        const QByteArray bytes(2000000, 'x');
        QVERIFY(m_content->uploadDocument(" ", writeFile("a.txt", bytes), true));
        const qint64 id = m_content->getLastDocId();
        const int before = storedDocuments();
        const QString path = writeFile("a.txt", QByteArray(2000000, 'y'));
        const int files = temporaryFiles();
        const auto cancelling = connect(m_content.get(), &kelvaArchiveClientInterface::currentReadSize, this,
                                        [this] { m_content->cancelStreaming(); });
        for (const bool newDocument : {true, false}) {
            QVERIFY(!m_content->uploadDocument(" ", path, newDocument));
            QVERIFY(!m_content->lastError().isEmpty());
            QCOMPARE(storedDocuments(), before);
        }
        QString target("left from before");
        QVERIFY(!m_content->downloadDocument(int(id), target, 1));
        QCOMPARE(target, QString());
        QCOMPARE(temporaryFiles(), files);
        disconnect(cancelling);
        QCOMPARE(download(id), bytes);
        QVERIFY(m_content->uploadDocument(" ", path, false));
        QCOMPARE(m_content->getLastDocId(), id);
    }

    void oneTransferAtATime()
    {
        connectContent();
        QVERIFY(m_content->uploadDocument(" ", writeFile("a.txt", "one"), true));
        const qint64 id = m_content->getLastDocId();
        QByteArray within;
        connect(m_content.get(), &kelvaArchiveClientInterface::currentReadSize, this,
                [this, id, &within] { within = download(id); });
        QVERIFY(m_content->uploadDocument(" ", writeFile("b.txt", "two"), true));
        QVERIFY(within.startsWith("refused: ") && within.size() > 10);
        m_content->disconnect(this);
        QCOMPARE(download(m_content->getLastDocId()), QByteArray("two"));
    }

    void whatCannotBeMovedIsRefused()
    {
        connectContent();
        QString path;
        QVERIFY(!m_content->downloadDocument(99999, path, 1));
        QVERIFY(!m_content->lastError().isEmpty());
        QVERIFY(!m_content->uploadDocument(" ", m_directory.filePath("gone"), true));
        QVERIFY(!m_content->lastError().isEmpty());
        QVERIFY(!m_content->uploadDocument(" ", m_directory.path(), true));
        QVERIFY(!m_content->lastError().isEmpty());
        QVERIFY(!m_content->uploadDocument("77", writeFile("a.txt", "x"), true));
    }

private:
    template<typename Interface>
    static Interface *make(const QString &path, const char *identifier)
    {
        QPluginLoader loader(path);
        QObject *root = loader.instance();
        return root ? static_cast<Interface *>(root->qt_metacast(identifier))->createClient(QString())
                    : nullptr;
    }

    void login()
    {
        m_client->setProfileId(7);
        QVERIFY2(m_client->connectClient("localhost", archiveNumber, "anna", "secret"),
                 qPrintable(m_client->lastMessage()));
    }

    QStringList descriptions(const QStringList &filters)
    {
        QStringList texts;
        const QStringList rows = m_client->getDocuments(filters);
        for (int i = 1; i < rows.size(); ++i)
            texts << rows.at(i).split(recordformat::fieldSeparator).value(2);
        texts.sort();
        return texts;
    }

    QString classificationOf(const QString &description)
    {
        const QStringList rows = m_client->getDocuments({"1=1"});
        for (const QString &row : rows)
            if (row.split(recordformat::fieldSeparator).value(2) == description)
                return row.section(recordformat::fieldSeparator, 0, 0).section('#', 1);
        return QString();
    }

    /// The content client, ready for transfers.
    void connectContent()
    {
        QVERIFY(m_content->connectToArchive("localhost", archiveNumber));
        QVERIFY2(m_content->login("anna", "secret"), qPrintable(m_content->lastError()));
        QVERIFY(m_content->selectArchive("1"));
    }

    QString writeFile(const QString &name, const QByteArray &bytes)
    {
        return outside::write(m_directory.filePath(name), bytes);
    }

    QByteArray download(qint64 id)
    {
        QString path;
        if (!m_content->downloadDocument(int(id), path, 1))
            return "refused: " + m_content->lastError().toUtf8();
        const QByteArray bytes = outside::read(path);
        QFile::remove(path);
        return bytes;
    }

    int storedDocuments()
    {
        int count = -1;
        m_content->countSubArchiveDocuments(count);
        return count;
    }

    static int temporaryFiles()
    {
        int count = 0;
        for (QDirIterator files(QDir::tempPath(), QDir::Files, QDirIterator::Subdirectories); files.hasNext();
             files.next())
            ++count;
        return count;
    }

    QTemporaryDir m_directory;
    std::unique_ptr<ClassifyInterface> m_client;
    std::unique_ptr<kelvaArchiveClientInterface> m_content;
};

KELVA_TEST(TestServiceContract)
#include "testservicecontract.moc"
