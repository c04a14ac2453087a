#pragma once

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
    bool isCanceled() const { return canceled; }

    /// Entries of id and id, see kelvaArchiveClientInterface.
    bool searchDocs(const QString &query, QStringList &hits);
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

    int port = 0;
    QString user;
    QString host;
    kelvaArchiveClientInterface *client = nullptr;
    QString password;
    QString lastError;
    QWidget *parentWidget = nullptr;
    QString currentArchive;
    bool canceled = false;
};
