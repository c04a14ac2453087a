#pragma once

#include "contract/kelvaarchiveclientinterface.h"
#include "service/connection.h"
#include "service/content.h"

#include <QElapsedTimer>

/// The content plug-in: hands every operation on to the service library. Each createClient() gives a
/// connection with a session of its own.
class ArchiveClient final : public kelvaArchiveClientInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KELVA_ARCHIVE_CLIENT_INTERFACE_IID)
    Q_INTERFACES(kelvaArchiveClientInterface)

public:
    using kelvaArchiveClientInterface::kelvaArchiveClientInterface;

    kelvaArchiveClientInterface *createClient(QString directory) override;
    bool connectToArchive(QString host, int port) override;
    bool disconnectFromArchive() override;
    QString lastError() override;
    bool countSubArchiveDocuments(int &count) override;
    bool getSubArchives(QStringList &archives) override;
    bool selectArchive(QString archiveKey) override;
    bool downloadDocument(int docId, QString &path, int mode) override;
    qint64 getLastDocId() override;
    bool createSubArchive(QString name, QString comment) override;
    void cancelStreaming() override;
    QStringList searchDocuments(QString query) override;
    bool uploadDocument(QString archive, QString localFile, bool newDocument) override;
    bool login(QString user, QString password) override;
    QStringList getDocumentInfo(QStringList docIds) override;
    bool deleteDocument(QString docId, QStringList comment) override;
    bool getDocumentActions(QStringList docIds, QStringList &actions, int mode, QString user) override;
    bool writeDocumentInfo(int docId, int value) override;
    bool moveDocToArchive(qint64 docId, int target) override;
    bool deleteSubArchive(int id) override;
    bool renameSubArchive(int id, QString name) override;
    void getApiStatistics(qint64 &today, qint64 &total, qint64 &failed) override;

private:
    /// Announces a transfer and returns what reports and cancels it.
    kelva::Content::Progress startTransfer(qint64 bytes);
    bool isBusy();

    kelva::Connection m_connection;
    QString m_host;
    int m_port = 0;
    bool m_reachable = false;
    qint64 m_lastDocument = 0;
    bool m_transferring = false;
    bool m_cancelled = false;
    QElapsedTimer m_sinceReport;
};
