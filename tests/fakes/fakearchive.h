#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QQueue>
#include <QString>
#include <QStringList>

#include <functional>

/// One classification in the fake archive.
struct FakeDocument
{
    QStringList fields; ///< a row of getDocuments() without the rights letters
    QString rights = QStringLiteral("W");
    bool trashed = false;
};

/// A stored file.
struct FakeContent
{
    QString fileName;
    QByteArray bytes;
};

/// A small working archive behind the fake clients, shared by all of them in the process. Tests fill it,
/// script what goes wrong and read back which calls came in which order.
class FakeArchive
{
public:
    static FakeArchive &instance();
    /// Back to an archive with one user, three status values and no documents.
    void reset();

    /// The next call of the operation fails with this text.
    void failNext(const QString &operation, const QString &text) { failures[operation].enqueue(text); }
    /// Runs once, just before the operation does its work: what somebody else does meanwhile.
    void meanwhile(const QString &operation, std::function<void()> action)
    {
        interludes.insert(operation, action);
    }
    /// Adds a live document in the given folder and returns its classification id.
    QString addDocument(const QString &description, const QString &folder = QStringLiteral("1.1"),
                        const QString &status = QStringLiteral("1"));
    /// Stores a file of a document that has no classification and returns its archive id.
    int addContent(const QString &fileName, const QByteArray &bytes);
    /// The content of a stored search: "/" stands for the separator of fields, "|" for that of rows.
    static QString searchContent(QString text)
    {
        return text.replace('/', QChar(0xFFFD)).replace('|', QChar(0xFFFC));
    }
    /// Called by the fake clients first thing: records the call. False when the call is scripted to fail.
    bool begin(const QString &operation, const QString &arguments = QString());

    QString login;
    QString password;
    QStringList rights;
    QString connectionMode;
    QStringList subArchives;
    QStringList headerTitles;
    QMap<int, FakeDocument> documents; ///< by classification id
    QStringList statusRows;
    QMap<QString, QByteArray> settings; ///< by section "/" key
    QMap<int, QStringList> searches;    ///< by id: name, definition, then the roles
    QStringList minMaxDates;
    QStringList openedDocuments;          ///< archive ids
    QMap<int, FakeContent> contents;      ///< by archive id
    int pieceSize = 64 * 1024;            ///< transfers report after each
    std::function<void()> duringTransfer; ///< runs after each report
    bool losesDownloads = false;          ///< files are gone before the client gets them
    QMap<QString, QQueue<QString>> failures;
    QMap<QString, std::function<void()>> interludes;
    QStringList calls;
    QList<QStringList> queries; ///< filter lists of getDocuments()
    QString lastError;
    int nextToken = 1;

private:
    FakeArchive() { reset(); }
};
