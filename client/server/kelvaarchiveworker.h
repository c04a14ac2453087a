#pragma once

#include "server/kelvafilecopy.h"

#include <QMap>
#include <QObject>
#include <QStringList>

class QWidget;
class kelvaArchiveClientInterface;

/// The main window's own connection to the document content. Blocks, on the main thread; a failed operation
/// leaves its text in getLastError().
class KelvaArchiveWorker final : public QObject
{
    Q_OBJECT

public:
    explicit KelvaArchiveWorker(QObject *parent = nullptr);
    ~KelvaArchiveWorker() override;

    /// Taken as they are at the next doConnect().
    void setConnectionSettings(QString newHost, int newPort, QString newUser, QString newPassword);
    /// Dialogs and boxes of the worker stand above this widget; not owned.
    void setParentWidget(QWidget *widget) { parentWidget = widget; }

    /// Loads the plug-in at the first call, connects, logs in and selects the current archive. With
    /// keepOnArchiveFailure an archive that cannot be selected leaves the connection open.
    bool doConnect(bool keepOnArchiveFailure);
    /// False without a client.
    bool doDisconnect();
    void selectArchive(const QString &archive);
    QString getCurrentArchive() const { return currentArchive; }
    /// Entries of display name and key.
    void getArchiveNames(QStringList &names);
    QString getLastError() const { return lastError; }
    /// Whether the last transfer was cancelled; ask this, not the error text.
    bool isCanceled() const { return canceled; }

    /// Around a batch of uploadFile(): how many files it has, then before each file how many are done.
    /// Between the files the progress dialog stays; setFileCount(0) takes it away when a batch ends early.
    void setFileCount(int count);
    void setFinishedCount(int count) { finishedCount = count; }
    /// A blank archive means the selected one. newDocument false: see kelvaArchiveClientInterface.
    bool uploadFile(const QString &archive, const QString &file, bool newDocument);
    /// Of the last successful uploadFile().
    qint64 getLastArchivedDocId() const { return lastArchivedDocId; }

    /// Fetches documents and puts them into the directory target under exportFileName(), with names by id;
    /// appends to files what is there now. Existing files are only overwritten when the user agrees. With
    /// openOnly they stay in the directory of temporary files and are opened, target does not matter. mode as
    /// in kelvaArchiveClientInterface, -1: the one that fits. False when a document cannot be fetched, a
    /// cancelled transfer included; a cancel that comes between two documents ends with what there is.
    bool exportDocuments(const QList<qint64> &ids, const QMap<QString, QString> &names, const QString &target,
                         bool openOnly, QStringList &files, int mode = -1);
    /// Fetches documents and hands them to the desktop's mail program, or to command with %1 replaced by
    /// their paths in double quotes. They are removed together with the worker. A program that does not start
    /// is told in a box and no failure.
    bool mailDocuments(const QList<qint64> &ids, const QMap<QString, QString> &names, const QString &command);

    /// Entries of id and id, see kelvaArchiveClientInterface. None when the search fails; getLastError() then
    /// says why, and is empty when there simply is no hit.
    QStringList searchDocs(const QString &query);
    /// One entry per document, see kelvaArchiveClientInterface. False without a client.
    bool getDocumentInfo(const QStringList &ids, QStringList &infos);
    bool getDocumentActions(const QStringList &ids, QStringList &actions, int action, const QString &user);
    bool deleteDocument(const QString &id, const QStringList &comment);
    bool moveDocToArchive(qint64 id, int target);
    bool writeDocumentInfo(qint64 id, int value);

public slots:
    void cancelStreaming();

private:
    bool loadClient();
    bool fail();

    // kelvaarchiveworker_transfer.cpp
    bool requireClient();
    void startDownloads(KelvaFileCopy &progress, int count);
    bool download(KelvaFileCopy &progress, int index, qint64 id, int mode, QString &path);
    QString getNewFileName(const QString &path, const QMap<QString, QString> &names, qint64 id) const;
    void saveExported(const QString &path, const QString &directory, QStringList &files);
    void overwriteExported(const QString &path, const QString &target, QStringList &files);
    void startMailProgram(const QString &command, const QString &mail, const QString &quoted);

    int port = 0;
    QString user;
    QString host;
    kelvaArchiveClientInterface *client = nullptr;
    QString password;
    QString lastError;
    QStringList temporaryFiles; ///< go with the worker
    KelvaFileCopy uploadProgress;
    QWidget *parentWidget = nullptr;
    qint64 lastArchivedDocId = 0;
    QString currentArchive;
    bool canceled = false;
    int fileCount = 0;
    int finishedCount = 0;
};
