// What a user waits for besides the list: filing files, a large folder tree. Each
// against the least that the same costs. Usage: benchwork DIRECTORY, on the disk that archives lie on.

#include "bench/measure.h"

#include "contract/recordformat.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvafolderview.h"
#include "service/archive.h"
#include "service/content.h"
#include "service/session.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTextStream>

#include <unistd.h>

namespace {

constexpr int fileCount = 1000;
constexpr int fileSize = 200 * 1000;
constexpr int folderCount = 100000;

[[noreturn]] void giveUp(const QString &text)
{
    QTextStream(stderr) << text << '\n';
    std::exit(1);
}

template<typename T>
T need(kelva::Result<T> result)
{
    if (!result)
        giveUp(result.error().text);
    return std::move(result.value());
}

QStringList makeFiles(const QString &directory)
{
    QRandomGenerator random(20240305);
    QStringList files;
    for (int i = 0; i < fileCount; ++i) {
        QByteArray bytes(fileSize, '\0');
        for (char &byte : bytes)
            byte = char(random.generate());
        QFile file(QString("%1/source%2.bin").arg(directory).arg(i));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            giveUp(file.errorString());
        files << file.fileName();
    }
    return files;
}

/// Copies a file, with its checksum when asked for, and waits for the disk.
void copyFile(const QString &from, const QString &to, bool checked)
{
    QFile source(from);
    QFile target(to);
    if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly))
        giveUp(target.errorString());
    const QByteArray bytes = source.readAll();
    if (checked)
        QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    target.write(bytes);
    target.flush();
    if (checked)
        ::fsync(target.handle());
}

void transfers(kelva::Session &session, const QString &directory, const QStringList &files)
{
    const auto go = [](qint64) { return true; };
    QDir().mkpath(directory + "/copies");
    QList<qint64> ids;
    compare({QString("upload of %1 files of 200 kB").arg(fileCount),
             [&] {
                 ids.clear();
                 for (const QString &file : files)
                     ids << need(kelva::Content(session).store(file, true, go));
             },
             [&] {
                 for (int i = 0; i < files.size(); ++i)
                     copyFile(files.at(i), QString("%1/copies/%2").arg(directory).arg(i), true);
             },
             1.7});
}

void folderTree()
{
    QStringList rows;
    for (int i = 1; rows.size() < folderCount; ++i) {
        rows << QStringList{QString("1.%1").arg(i),
                            QString("Folder %1").arg(i),
                            "0",
                            "K",
                            "1",
                            "0",
                            "",
                            "",
                            "words"}
                    .join(recordformat::fieldSeparator);
        for (int j = 1; j <= 99; ++j)
            rows << QStringList{QString("1.%1.%2").arg(i).arg(j),
                                QString("Part %1").arg(j),
                                "0",
                                "K",
                                "",
                                "0",
                                "",
                                "",
                                "w"}
                        .join(recordformat::fieldSeparator);
    }
    rows.prepend(
        QStringList{"1", "Company", "0", "", "-1", "0", "", "", ""}.join(recordformat::fieldSeparator));
    compare({"folder tree of 100,000 folders, loaded, shown and unfolded",
             [&] {
                 KelvaDocTree tree("Folders", true, QString(), QString(), nullptr);
                 tree.loadFromStringList(rows, {}, false);
                 KelvaFolderView view;
                 view.setModel(&tree);
                 view.resize(300, 600);
                 view.expandAll();
                 view.grab();
             },
             [&] {
                 QStandardItemModel model;
                 QHash<QString, QStandardItem *> byOid;
                 for (const QString &row : qAsConst(rows)) {
                     const QStringList fields = row.split(recordformat::fieldSeparator);
                     QList<QStandardItem *> items{new QStandardItem(fields.at(1)),
                                                  new QStandardItem(fields.at(3)),
                                                  new QStandardItem(fields.at(8))};
                     byOid.insert(fields.at(0), items.first());
                     QStandardItem *parent = byOid.value(fields.at(0).section('.', 0, -2));
                     (parent ? parent : model.invisibleRootItem())->appendRow(items);
                 }
                 QTreeView view;
                 view.setUniformRowHeights(true);
                 view.setModel(&model);
                 view.resize(300, 600);
                 view.expandAll();
                 view.grab();
             },
             2.0});
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (argc != 2)
        giveUp("usage: benchwork DIRECTORY");
    const QTemporaryDir scratch(QString::fromLocal8Bit(argv[1]) + "/benchwork-XXXXXX");
    kelva::NewArchive fresh;
    fresh.path = scratch.filePath("work.kelva");
    fresh.administrator = "admin";
    fresh.password = "kelva";
    if (const auto made = kelva::archive::create(fresh); !made)
        giveUp(made.error().text);
    const auto session = need(kelva::Session::openAsOwner(fresh.path, "admin"));
    session->setSubArchive(1);
    transfers(*session, scratch.path(), makeFiles(scratch.path()));
    folderTree();
    return 0;
}
