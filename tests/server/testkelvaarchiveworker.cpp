#include "fakes/fakearchive.h"
#include "support/dialogscript.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include "server/kelvaarchiveworker.h"

#include <QDesktopServices>
#include <QDir>
#include <QProgressBar>
#include <QTemporaryDir>

namespace {

FakeArchive &archive()
{
    return FakeArchive::instance();
}

QStringList filesIn(const QString &directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
}

/// Named files in the directory of temporary ones.
QStringList leftOver()
{
    return QDir(QDir::tempPath()).entryList({"fake-*", "1*_*"}, QDir::Files, QDir::Name);
}

QDialog *progressDialog()
{
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (auto *dialog = qobject_cast<KelvaFileCopy *>(widget); dialog && dialog->isVisible())
            return dialog;
    return nullptr;
}

} // namespace

class TestKelvaArchiveWorker : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        archive().reset();
        for (const char *description : {"first", "second", "third"})
            archive().addDocument(description); // archive ids 101 to 103
        m_names = {{"101", "Invoice"}, {"102", "../../Letter"}, {"103", "Note"}};
        m_target = std::make_unique<QTemporaryDir>();
        m_script = std::make_unique<DialogScript>();
        m_worker = std::make_unique<KelvaArchiveWorker>();
        m_worker->setConnectionSettings("localhost", 4711, "anna", "secret");
        QVERIFY2(m_worker->doConnect(false), qPrintable(m_worker->getLastError()));
    }

    void cleanup()
    {
        QCOMPARE(m_script->problems(), QString());
        QVERIFY(!progressDialog());
        m_worker.reset();
        for (const QString &file : leftOver())
            QFile::remove(QDir::tempPath() + '/' + file);
    }

    void documentsGoIntoADirectory()
    {
        QStringList files;
        QVERIFY(exportAll(files));
        QCOMPARE(filesIn(m_target->path()),
                 QStringList({"101_Invoice.pdf", "102_....Letter.pdf", "103_Note.pdf"}));
        QCOMPARE(files.first(), m_target->filePath("101_Invoice.pdf"));
        QCOMPARE(outside::read(files.at(1)), QByteArray("second"));
        // Others in the directory may read them as far as they read what this user saves.
        outside::write(m_target->filePath("plain"), "x");
        QCOMPARE(QFile::permissions(files.first()), QFile::permissions(m_target->filePath("plain")));
        QCOMPARE(leftOver(), QStringList());
        QCOMPARE(archive().calls.filter("download"),
                 QStringList({"downloadDocument 101 1", "downloadDocument 102 1", "downloadDocument 103 1"}));
    }

    void nothingIsOverwrittenUnasked_data()
    {
        kelvatest::columns<bool, QByteArray, QStringList>("overwrite", "content", "left");
        kelvatest::row("no", false, QByteArray("old"), QStringList("101_Invoice.pdf"));
        kelvatest::row("yes", true, QByteArray("first"), QStringList());
    }

    void nothingIsOverwrittenUnasked()
    {
        QFETCH(bool, overwrite);
        outside::write(m_target->filePath("101_Invoice.pdf"), "old");
        m_script->expectBox("File exists",
                            m_target->filePath("101_Invoice.pdf") + " alredy exists, overwrite?",
                            overwrite ? QMessageBox::Yes : QMessageBox::No);
        QStringList files;
        QVERIFY(m_worker->exportDocuments({101}, m_names, m_target->path() + '/', false, files));
        QTEST(outside::read(m_target->filePath("101_Invoice.pdf")), "content");
        QCOMPARE(files.size(), overwrite ? 1 : 0);
        QTEST(leftOver(), "left");
    }

    void whatCannotBeSaved_data()
    {
        QTest::addColumn<QString>("obstacle");
        kelvatest::row("the directory is gone", "directory");
        kelvatest::row("a directory is in the way", "in the way");
        kelvatest::row("a link into nowhere is in the way", "link");
    }

    void whatCannotBeSaved()
    {
        QFETCH(QString, obstacle);
        const QString target = m_target->filePath("103_Note.pdf");
        QString directory = m_target->path();
        if (obstacle == "directory")
            directory += "/gone";
        if (obstacle == "in the way") {
            QVERIFY(QDir().mkpath(target + "/full"));
            m_script->expectBox("File exists", target, QMessageBox::Yes);
            m_script->expectBox("Error", "The file could not be overwritten.");
        } else {
            m_script->expectBox("Error", "The file could not be saved!");
        }
        if (obstacle == "link")
            QVERIFY(QFile::link(m_target->filePath("elsewhere"), target));
        QStringList files;
        QVERIFY(m_worker->exportDocuments({103}, m_names, directory, false, files));
        QCOMPARE(files, QStringList());
        QCOMPARE(leftOver(), QStringList());
        QVERIFY(!QFile::exists(m_target->filePath("elsewhere")));
    }

    void aDownloadWithoutAFileIsAFailure()
    {
        archive().losesDownloads = true;
        QStringList files;
        QVERIFY(!m_worker->exportDocuments({103}, m_names, m_target->path(), false, files));
        QCOMPARE(m_worker->getLastError(), QString("The file of document 103 did not arrive."));
        archive().losesDownloads = false;
    }

    void aDocumentThatCannotBeFetchedEndsTheExport()
    {
        archive().contents.remove(102);
        QStringList files;
        QVERIFY(!exportAll(files));
        QCOMPARE(m_worker->getLastError(), QString("The document does not exist."));
        QVERIFY(!m_worker->isCanceled());
        QCOMPARE(files, QStringList(m_target->filePath("101_Invoice.pdf")));
        QCOMPARE(leftOver(), QStringList());
    }

    void aRunningExportIsCancelled_data()
    {
        QTest::addColumn<bool>("betweenDocuments");
        kelvatest::row("within a document", false);
        kelvatest::row("between two documents", true);
    }

    void aRunningExportIsCancelled()
    {
        QFETCH(bool, betweenDocuments);
        archive().contents[102].bytes = QByteArray(5000, 'x');
        archive().pieceSize = 1000;
        const auto close = [] { progressDialog()->close(); };
        if (betweenDocuments)
            archive().meanwhile("downloadDocument", close);
        else
            archive().duringTransfer = [close, reports = 0]() mutable {
                if (++reports == 3)
                    close();
            };
        QStringList files;
        QCOMPARE(exportAll(files), betweenDocuments);
        QVERIFY(m_worker->isCanceled());
        QCOMPARE(filesIn(m_target->path()).size(), betweenDocuments ? 0 : 1);
        QCOMPARE(leftOver(), QStringList());
        // The next one is not held up by it.
        archive().duringTransfer = {};
        QVERIFY(m_worker->exportDocuments({103}, m_names, m_target->path(), false, files));
        QVERIFY(!m_worker->isCanceled());
    }

    void documentsAreOpened()
    {
        QDesktopServices::setUrlHandler("file", this, "openUrl");
        QStringList files;
        QVERIFY(m_worker->exportDocuments({101}, m_names, QString(), true, files));
        QVERIFY(m_worker->exportDocuments({101}, m_names, QString(), true, files));
        m_names.remove("103");
        QVERIFY(m_worker->exportDocuments({103}, m_names, QString(), true, files));
        QDesktopServices::unsetUrlHandler("file");
        QCOMPARE(m_opened, files);
        QCOMPARE(QFileInfo(files.at(0)).fileName(), QString("101_Invoice.pdf"));
        QCOMPARE(QFileInfo(files.at(1)).fileName(), QString("101_1_Invoice.pdf"));
        QVERIFY(QFileInfo(files.at(2)).fileName().startsWith("fake-"));
        QCOMPARE(archive().calls.last(), QString("downloadDocument 103 0"));
        m_worker.reset();
        QVERIFY(QFile::exists(files.first())); // the viewer may still show it
    }

    void documentsAreMailed_data()
    {
        kelvatest::columns<bool, QString>("command", "words");
        kelvatest::row("by the desktop", false,
                       "[mailto:?subject=&body=&attach=TMP/101_Invoice.pdf&attach=TMP/103_Note.pdf]");
        kelvatest::row("by a command", true,
                       "[-compose][attachment='TMP/101_Invoice.pdf,TMP/103_Note.pdf'][--send]");
    }

    void documentsAreMailed()
    {
        QFETCH(bool, command);
        const QByteArray path = qgetenv("PATH");
        const QString said = m_target->filePath("said");
        const QString script = "#!/bin/sh\nfor word; do printf '[%s]' \"$word\"; done > " + said +
                               ".part\nmv " + said + ".part " + said + "\n";
        const QString program = m_target->filePath("xdg-email");
        QFile(outside::write(program, script.toUtf8()))
            .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", QFile::encodeName(m_target->path()) + ':' + path);
        const bool done = m_worker->mailDocuments(
            {101, 103}, m_names, command ? program + " -compose \"attachment='\"%1\"'\" --send" : QString());
        qputenv("PATH", path);
        QVERIFY(done);
        QTRY_VERIFY(QFile::exists(said));
        QTEST(QString::fromUtf8(outside::read(said)).replace(QDir::tempPath(), "TMP"), "words");
        QCOMPARE(archive().calls.last(), QString("downloadDocument 103 2"));
        QCOMPARE(leftOver().size(), 2); // the mail program reads them
        m_worker.reset();
        QCOMPARE(leftOver(), QStringList());
    }

    void aMailProgramThatIsNotThere()
    {
        m_script->expectBox("E-Mail Command",
                            "The e-mail could not be created, unable to start Mail-Client!");
        QVERIFY(m_worker->mailDocuments({101}, m_names, m_target->filePath("none") + " %1"));
    }

    void aBatchKeepsItsDialog()
    {
        const QString file = m_target->filePath("a.txt");
        outside::write(file, "content");
        m_worker->setFileCount(2);
        m_worker->setFinishedCount(0);
        QVERIFY(m_worker->uploadFile(" ", file, true));
        QVERIFY(progressDialog());
        auto *whole = progressDialog()->findChild<QProgressBar *>("m_pTotal");
        QVERIFY(whole->isVisible());
        QCOMPARE(whole->maximum(), 200);
        m_worker->setFinishedCount(1);
        archive().duringTransfer = [whole] { QVERIFY(whole->value() >= 100); };
        QVERIFY(m_worker->uploadFile(" ", file, true));
        QVERIFY(!progressDialog());
        // One that ends early.
        archive().duringTransfer = {};
        m_worker->setFileCount(2);
        archive().failNext("uploadDocument", "The disk is full.");
        QVERIFY(!m_worker->uploadFile(" ", file, true));
        QCOMPARE(m_worker->getLastError(), QString("The disk is full."));
        QVERIFY(!m_worker->isCanceled());
        m_worker->setFileCount(0);
    }

    void aRunningUploadIsCancelled()
    {
        const QString file = m_target->filePath("a.txt");
        outside::write(file, QByteArray(5000, 'x'));
        archive().pieceSize = 1000;
        archive().duringTransfer = [reports = 0]() mutable {
            if (++reports == 2)
                QTest::keyClick(progressDialog(), Qt::Key_Escape);
        };
        const int before = archive().contents.size();
        m_worker->setFileCount(3);
        QVERIFY(!m_worker->uploadFile(" ", file, true));
        QVERIFY(m_worker->isCanceled());
        QCOMPARE(archive().contents.size(), before);
    }

public slots:
    void openUrl(const QUrl &url) { m_opened << url.toLocalFile(); }

private:
    bool exportAll(QStringList &files)
    {
        return m_worker->exportDocuments({101, 102, 103}, m_names, m_target->path(), false, files);
    }

    QMap<QString, QString> m_names;
    std::unique_ptr<QTemporaryDir> m_target;
    std::unique_ptr<DialogScript> m_script;
    std::unique_ptr<KelvaArchiveWorker> m_worker;
    QStringList m_opened;
};

KELVA_TEST(TestKelvaArchiveWorker)
#include "testkelvaarchiveworker.moc"
