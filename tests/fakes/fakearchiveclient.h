#pragma once

#include "contract/kelvaarchiveclientinterface.h"
#include "fakes/fakearchive.h"

/// The content side of the fake archive. Operations that no test needs yet fail and say so.
class FakeArchiveClient : public kelvaArchiveClientInterface
{
    Q_OBJECT

public:
    explicit FakeArchiveClient(QObject *parent = nullptr) : kelvaArchiveClientInterface(parent) {}

    kelvaArchiveClientInterface *createClient(QString) override { return new FakeArchiveClient; }
    bool connectToArchive(QString, int) override { return m_archive.begin("connectToArchive"); }
    bool disconnectFromArchive() override { return m_archive.begin("disconnectFromArchive"); }
    QString lastError() override { return m_archive.lastError; }
    bool countSubArchiveDocuments(int &count) override;
    bool getSubArchives(QStringList &archives) override;
    bool selectArchive(QString archiveKey) override;
    bool downloadDocument(int docId, QString &path, int mode) override;
    qint64 getLastDocId() override { return m_lastDocument; }
    bool createSubArchive(QString, QString) override { return unsupported(); }
    void cancelStreaming() override { m_cancelled = true; }
    QStringList searchDocuments(QString query) override;
    bool uploadDocument(QString archive, QString localFile, bool newDocument) override;
    bool login(QString user, QString password) override;
    QStringList getDocumentInfo(QStringList docIds) override;
    bool deleteDocument(QString, QStringList) override { return unsupported(); }
    bool getDocumentActions(QStringList docIds, QStringList &actions, int mode, QString user) override;
    bool writeDocumentInfo(int, int) override { return unsupported(); }
    bool moveDocToArchive(qint64, int) override { return unsupported(); }
    bool deleteSubArchive(int) override { return unsupported(); }
    bool renameSubArchive(int, QString) override { return unsupported(); }
    void getApiStatistics(qint64 &today, qint64 &total, qint64 &failed) override
    {
        today = total = failed = 0;
    }

private:
    bool unsupported();
    bool refuse(const QString &text);
    /// Reports and lets events run, piece by piece; false when the transfer was cancelled.
    bool transfer(qint64 bytes);

    FakeArchive &m_archive = FakeArchive::instance();
    bool m_transferring = false;
    bool m_cancelled = false;
    qint64 m_lastDocument = 0;
};
