// What a user waits for at a document: one edit of a cell, from Enter to saved and painted anew, and the
// export of a selection. With the real programs: an archive of its own, the Connection Manager, the plug-ins
// beside this program. Usage: benchclient DIRECTORY, on the disk that archives lie on.

#include "bench/measure.h"

#include "app/kelvaclientmain.h"
#include "documents/documentcolumns.h"
#include "documents/kelvainfoview.h"
#include "server/kelvaarchiveworker.h"
#include "service/archive.h"
#include "service/content.h"
#include "service/session.h"
#include "store/database.h"
#include "widgets/itemroles.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>
#include <QTimer>

namespace {

constexpr int exported = 1000;
/// Of the sample's list.
constexpr int columns = 16;
constexpr int fileSize = 200 * 1000;

[[noreturn]] void giveUp(const QString &text)
{
    QTextStream(stderr) << text << '\n';
    std::exit(1);
}

void runProgram(const QString &name, const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + '/' + name, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        giveUp(QString::fromLocal8Bit(process.readAllStandardError()));
}

/// Types a new description into the first row and presses Enter; back when the table shows it.
void editFirstRow(KelvaInfoView &table, int number)
{
    table.QTableView::setCurrentIndex(table.model()->index(0, documentcolumn::description));
    table.edit(table.QTableView::currentIndex());
    auto *editor = qobject_cast<QLineEdit *>(table.indexWidget(table.QTableView::currentIndex()));
    if (!editor)
        giveUp("The description cannot be edited.");
    const QString text = QString("Edited %1").arg(number);
    editor->setText(text);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    table.grab();
    if (table.model()->index(0, documentcolumn::description).data().toString() != text)
        giveUp("The edit was not saved.");
}

/// The statements of an edit and of the refresh after it, on an archive file of their own, and the rows in a
/// bare table.
void rawEdit(kelva::Database &database, qint64 id, int number, QTableView &view, QStandardItemModel &model)
{
    kelva::Transaction writing(database, kelva::Transaction::Kind::Write);
    database.value("SELECT bemerkung FROM classification WHERE id = ?", {id});
    database.run("INSERT INTO revision(classification, number, mandant, bemerkung, status, folder, docart,"
                 " changeid, cdate, ctimestamp, defdate, attributes) SELECT id, revision, mandant, bemerkung,"
                 " status, folder, docart, changeid, cdate, ctimestamp, defdate, '{}' FROM classification"
                 " WHERE id = ?",
                 {id});
    database.run("UPDATE classification SET bemerkung = ?, revision = revision + 1 WHERE id = ?",
                 {QString("Edited %1").arg(number), id});
    if (!writing.commit())
        giveUp("The raw edit failed.");
    kelva::Query row =
        database.query("SELECT * FROM classification WHERE trashed = 0 ORDER BY id DESC LIMIT 100");
    model.removeRows(0, model.rowCount());
    while (row.next()) {
        QList<QStandardItem *> items;
        for (int column = 0; column < columns; ++column)
            items << new QStandardItem(row.text(column));
        model.appendRow(items);
    }
    view.grab();
}

void edits(KelvaClientMain &window, const QString &copy)
{
    auto *table = window.findChild<KelvaInfoView *>("m_infoView");
    window.resize(1280, 800);
    QCoreApplication::processEvents();
    const auto raw = kelva::Database::open(copy, kelva::Database::Mode::ReadWrite);
    if (!raw)
        giveUp(raw.error().text);
    const qint64 id = raw.value()->value("SELECT max(id) FROM classification").toLongLong();
    QStandardItemModel model;
    QTableView view;
    view.setModel(&model);
    view.resize(table->size());
    view.show();
    int number = 0;
    compare({QString("one cell edited, %1 rows in the list").arg(table->rowCount()),
             [&] { editFirstRow(*table, ++number); },
             [&] { rawEdit(*raw.value(), id, ++number, view, model); }, 2.0},
            51);
}

QList<qint64> fileDocuments(const QString &archive, const QString &directory)
{
    const auto session = kelva::Session::openAsOwner(archive, "meier");
    if (!session)
        giveUp(session.error().text);
    session.value()->setSubArchive(1);
    QRandomGenerator random(20240305);
    QList<qint64> ids;
    QByteArray bytes(fileSize, '\0');
    for (int i = 0; i < exported; ++i) {
        random.generate(reinterpret_cast<quint32 *>(bytes.data()),
                        reinterpret_cast<quint32 *>(bytes.data() + fileSize));
        QFile file(QString("%1/scan%2.bin").arg(directory).arg(i));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != fileSize)
            giveUp(file.errorString());
        file.close();
        const auto id = kelva::Content(*session.value()).store(file.fileName(), true, {});
        if (!id)
            giveUp(id.error().text);
        ids << id.value();
    }
    return ids;
}

void empty(const QString &directory)
{
    QDir(directory).removeRecursively();
    QDir().mkpath(directory);
}

void exports(const QString &archive, const QString &directory)
{
    const QString sources = directory + "/sources";
    const QString target = directory + "/target";
    empty(sources);
    const QList<qint64> ids = fileDocuments(archive, sources);
    QMap<QString, QString> names;
    for (const qint64 id : ids)
        names.insert(QString::number(id), "Document");
    KelvaArchiveWorker worker;
    worker.setConnectionSettings("localhost", 1, "meier", "kelva");
    if (!worker.doConnect(true))
        giveUp(worker.getLastError());
    Comparison exporting;
    exporting.what = QString("export of %1 documents of 200 kB").arg(exported);
    exporting.before = [&] { empty(target); };
    exporting.product = [&] {
        QStringList files;
        if (!worker.exportDocuments(ids, names, target, false, files) || files.size() != ids.size())
            giveUp("The export failed: " + worker.getLastError());
    };
    exporting.floor = [&] {
        for (int i = 0; i < ids.size(); ++i)
            QFile::copy(QString("%1/scan%2.bin").arg(sources).arg(i),
                        QString("%1/%2.pdf").arg(target).arg(i));
    };
    exporting.aim = 1.3;
    compare(exporting);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        giveUp("usage: benchclient DIRECTORY");
    const QTemporaryDir scratch(QString::fromLocal8Bit(argv[1]) + "/benchclient-XXXXXX");
    for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "TMPDIR", "KELVA_HOME"})
        qputenv(variable, scratch.path().toLocal8Bit());
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg)
            QTextStream(stderr) << text << '\n';
    });
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName("kelvaclient");
    QCoreApplication::setOrganizationName("Norbant GmbH");
    const QString archive = scratch.filePath("1.kelva");
    const QString copy = scratch.filePath("copy.kelva");
    runProgram("kelvaadmin", {"sample", "1", "--documents", "5000"});
    // Taking the texts of the files would compete for the two cores.
    runProgram("kelvaadmin", {"index", "1"});
    runProgram("kelvaadmin", {"backup", "1", copy});
    runProgram("kelvamanager", {"--add-profile", "Sample", "--port", "1", "--user", "meier"}, "kelva\n");
    QProcess manager;
    manager.start(QCoreApplication::applicationDirPath() + "/kelvamanager", {"--no-window"});
    while (QDir(scratch.path()).entryList({"Kelva-*"}, QDir::System).isEmpty())
        manager.waitForFinished(20);
    {
        KelvaClientMain window;
        QTimer::singleShot(0, &window, [&] {
            if (!window.init())
                giveUp("The client does not start.");
            edits(window, copy);
            exports(archive, scratch.path());
            QCoreApplication::quit();
        });
        QApplication::exec();
    }
    manager.terminate();
    manager.waitForFinished();
    return 0;
}
