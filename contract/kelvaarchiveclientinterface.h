#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#define KELVA_ARCHIVE_CLIENT_INTERFACE_IID "de.norbant.kelvaArchiveClientInterface/1.2"

/// The client's view of the document content. The plug-in instance is a factory: every user takes a
/// connection of its own with createClient() and deletes it. Order on a connection: connectToArchive, login,
/// then selectArchive. Main thread only; a transfer blocks, emits progress and lets events run, so that
/// cancelStreaming() can arrive meanwhile. A false result leaves its text in lastError().
class kelvaArchiveClientInterface : public QObject
{
    Q_OBJECT

public:
    explicit kelvaArchiveClientInterface(QObject *parent = nullptr) : QObject(parent) {}

    /// A new connection, owned by the caller. directory is empty or the program's.
    virtual kelvaArchiveClientInterface *createClient(QString directory) = 0;
    virtual bool connectToArchive(QString host, int port) = 0;
    /// The object stays usable for a further connectToArchive().
    virtual bool disconnectFromArchive() = 0;
    virtual QString lastError() = 0;
    /// Counts the selected sub-archive.
    virtual bool countSubArchiveDocuments(int &count) = 0;
    /// Entries of display name and key (decimal).
    virtual bool getSubArchives(QStringList &archives) = 0;
    virtual bool selectArchive(QString archiveKey) = 0;
    /// Writes the document to a fresh temporary file that belongs to the caller. mode: 0 view, 1 export,
    /// 2 mail; it is recorded under the login.
    virtual bool downloadDocument(int docId, QString &path, int mode) = 0;
    /// Id of the last successful uploadDocument(); undefined after a failed one.
    virtual qint64 getLastDocId() = 0;
    virtual bool createSubArchive(QString name, QString comment) = 0;
    virtual void cancelStreaming() = 0;
    /// Full-text search: entries of id and id, the first read online, the second offline.
    virtual QStringList searchDocuments(QString query) = 0;
    /// A blank archive means the selected sub-archive. newDocument false stores a new version of the document
    /// of the same file name, which keeps its id.
    virtual bool uploadDocument(QString archive, QString localFile, bool newDocument) = 0;
    virtual bool login(QString user, QString password) = 0;
    /// One entry per document, words joined by recordformat::listSeparator: id, file name, a free word,
    /// extension without dot.
    virtual QStringList getDocumentInfo(QStringList docIds) = 0;
    virtual bool deleteDocument(QString docId, QStringList comment) = 0;
    /// Records of document id, action id, action code 0 to 9, time, user. mode -1 asks for every action,
    /// an empty user for every user.
    virtual bool getDocumentActions(QStringList docIds, QStringList &actions, int mode, QString user) = 0;
    virtual bool writeDocumentInfo(int docId, int value) = 0;
    virtual bool moveDocToArchive(qint64 docId, int target) = 0;
    virtual bool deleteSubArchive(int id) = 0;
    virtual bool renameSubArchive(int id, QString name) = 0;
    virtual void getApiStatistics(qint64 &today, qint64 &total, qint64 &failed) = 0;

signals:
    /// Sizes are decimal texts, in bytes.
    void totalFileSize(QString bytes);
    void currentReadSize(QString bytes);
    /// All bytes have been sent and are being stored.
    void saveDocEnd();
};

Q_DECLARE_INTERFACE(kelvaArchiveClientInterface, KELVA_ARCHIVE_CLIENT_INTERFACE_IID)
