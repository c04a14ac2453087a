// How long files that were filed take until their words are found, against taking the texts and a full-text
// index alone. Usage: benchindex DIRECTORY, on the disk that archives lie on.

#include "bench/measure.h"

#include "admin/samplefiles.h"
#include "extract/pdftext.h"
#include "extract/plaintext.h"
#include "indexer/indexer.h"
#include "indexer/indexerthread.h"
#include "service/archive.h"
#include "service/content.h"
#include "service/documents.h"
#include "service/session.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <sqlite3.h>

namespace {

constexpr int textCount = 2000;
constexpr int pdfCount = 500;
constexpr int wordsOfFile = 600;
constexpr int wordsOfLine = 10;

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

void need(const kelva::Result<void> &result)
{
    if (!result)
        giveUp(result.error().text);
}

/// Words as common as those of a language: a few of them make up most of the text.
QStringList linesOfWords(QRandomGenerator &random)
{
    constexpr int vocabulary = 20000;
    QStringList lines;
    for (int i = 0; i < wordsOfFile / wordsOfLine; ++i) {
        QStringList words;
        for (int j = 0; j < wordsOfLine; ++j) {
            const double x = random.generateDouble();
            words << QString("word%1").arg(int(vocabulary * x * x * x));
        }
        lines << words.join(' ');
    }
    return lines;
}

QStringList makeFiles(const QString &directory, bool pdf, int count)
{
    QRandomGenerator random(20240305);
    QStringList files;
    for (int i = 0; i < count; ++i) {
        const QStringList lines = linesOfWords(random);
        QFile file(QString("%1/source%2.%3").arg(directory).arg(i).arg(pdf ? "pdf" : "txt"));
        const QByteArray bytes = pdf ? kelva::samplefiles::pdf(lines) : kelva::samplefiles::text(lines);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            giveUp(file.errorString());
        files << file.fileName();
    }
    return files;
}

/// An archive of this name, with the files filed.
struct Filed
{
    Filed(const QTemporaryDir &scratch, const QString &name)
    {
        kelva::NewArchive fresh;
        fresh.path = scratch.filePath(name);
        fresh.administrator = "admin";
        fresh.password = "kelva";
        need(kelva::archive::create(fresh));
        path = fresh.path;
        session = need(kelva::Session::openAsOwner(fresh.path, "admin"));
        session->setSubArchive(1);
    }
    void file(const QStringList &files)
    {
        for (const QString &name : files) {
            const qint64 document = need(kelva::Content(*session).store(name, true, {}));
            need(kelva::Documents(*session).classify(document, name, "0"));
        }
    }
    int waiting()
    {
        return session->database().value("SELECT count(*) FROM file_text WHERE state = 0").toInt();
    }

    QString path;
    std::unique_ptr<kelva::Session> session;
};

void run(sqlite3 *database, const char *statement)
{
    if (sqlite3_exec(database, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
        giveUp(QString::fromUtf8(sqlite3_errmsg(database)));
}

/// The least that makes the words of the files findable.
void indexAlone(const QString &path, const QStringList &files, bool pdf)
{
    QFile::remove(path);
    sqlite3 *database = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &database);
    run(database, "PRAGMA journal_mode = WAL");
    run(database, "CREATE TABLE file_text(document INTEGER PRIMARY KEY, text TEXT)");
    run(database,
        "CREATE VIRTUAL TABLE words USING fts5(text, content = 'file_text', content_rowid = 'document')");
    run(database, "BEGIN");
    sqlite3_stmt *row = nullptr;
    sqlite3_stmt *entry = nullptr;
    sqlite3_prepare_v2(database, "INSERT INTO file_text(text) VALUES(?)", -1, &row, nullptr);
    sqlite3_prepare_v2(database, "INSERT INTO words(rowid, text) VALUES(last_insert_rowid(), ?)", -1, &entry,
                       nullptr);
    for (const QString &name : files) {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly))
            giveUp(file.errorString());
        const kelva::ExtractedText text = pdf ? kelva::pdfText(file, {}) : kelva::plainText(file, {});
        const QByteArray bytes = text->simplified().toUtf8();
        for (sqlite3_stmt *statement : {row, entry}) {
            sqlite3_bind_text(statement, 1, bytes.constData(), bytes.size(), SQLITE_STATIC);
            if (sqlite3_step(statement) != SQLITE_DONE)
                giveUp(QString::fromUtf8(sqlite3_errmsg(database)));
            sqlite3_reset(statement);
        }
    }
    sqlite3_finalize(row);
    sqlite3_finalize(entry);
    run(database, "COMMIT");
    sqlite3_close(database);
}

void measure(const QTemporaryDir &scratch, const QString &what, const QStringList &files, bool pdf)
{
    QString filed;
    {
        Filed archive(scratch, pdf ? "pdf.kelva" : "text.kelva");
        archive.file(files);
        filed = archive.path;
    }
    // A fresh one each time: an index from which all was taken out is slower to fill.
    const QString copy = scratch.filePath("copy.kelva");
    compare({what + ", filed before",
             [&] {
                 const auto indexer = need(kelva::Indexer::open(copy));
                 int found = 0;
                 while (need(indexer->processNext()) == kelva::Indexer::Step::Done)
                     ++found;
                 if (found != files.size())
                     giveUp("Not every file was read.");
             },
             [&] { indexAlone(scratch.filePath("alone.sqlite"), files, pdf); }, 1.5,
             [&] {
                 for (const char *part : {"", "-wal", "-shm"})
                     QFile::remove(copy + part);
                 if (!QFile::copy(filed, copy))
                     giveUp("The archive cannot be copied.");
             }});
}

/// As an office sees it: the files come in, and the indexer of the program works beside.
void fileAndFind(const QTemporaryDir &scratch, const QStringList &files)
{
    Filed archive(scratch, "beside.kelva");
    kelva::IndexerThread indexer;
    indexer.start(archive.path);
    QElapsedTimer since;
    since.start();
    archive.file(files);
    const qint64 filed = since.elapsed();
    while (archive.waiting() > 0)
        QThread::msleep(10);
    QTextStream(stdout) << QString("%1 text files: filed after %2 ms, all found after %3 ms\n")
                               .arg(files.size())
                               .arg(filed)
                               .arg(since.elapsed());
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc != 2)
        giveUp("usage: benchindex DIRECTORY");
    const QTemporaryDir scratch(QString::fromLocal8Bit(argv[1]) + "/benchindex-XXXXXX");
    kelva::preparePdfText();
    const QStringList texts = makeFiles(scratch.path(), false, textCount);
    const QStringList pdfs = makeFiles(scratch.path(), true, pdfCount);
    fileAndFind(scratch, texts);
    measure(scratch, QString("%1 text files of %2 words").arg(textCount).arg(wordsOfFile), texts, false);
    measure(scratch, QString("%1 PDF files of %2 words").arg(pdfCount).arg(wordsOfFile), pdfs, true);
    return 0;
}
