#pragma once

#include "contract/classifyinterface.h"
#include "fakes/fakearchive.h"

#include <QSet>

/// The metadata side of the fake m_archive. Operations that no test needs yet fail and say so.
class FakeClassifyClient : public ClassifyInterface
{
    Q_OBJECT

public:
    explicit FakeClassifyClient(QObject *parent = nullptr) : ClassifyInterface(parent) {}

    ClassifyInterface *createClient(QString) override { return new FakeClassifyClient; }
    bool createUser(QStringList) override { return unsupported(); }
    bool getUsers(QStringList &) override { return unsupported(); }
    bool deleteUser(QStringList) override { return unsupported(); }
    bool setUserPassword(QString, QString) override { return unsupported(); }
    bool changeOwnPassword(QString oldPassword, QString newPassword) override;
    bool changeExpiredPassword(QString host, QString oldPassword, QString newPassword, QString user,
                               int port) override;
    bool updateUser(QStringList) override { return unsupported(); }
    QStringList getDocuments(QStringList filters) override;
    bool connectClient(QString host, int port, QString user, QString password) override;
    bool getFolders(QStringList &, QList<QByteArray> &, bool) override { return unsupported(); }
    bool saveFolders(QStringList, QList<QByteArray>) override { return unsupported(); }
    void disconnectClient() override { m_archive.begin("disconnectClient"); }
    QStringList getRoles() override { return {"kelvaADMIN", "kelvaCLASSIFY", "kelvaUSER", "r_anna"}; }
    bool createRole(QStringList) override { return unsupported(); }
    bool deleteRole(QStringList) override { return unsupported(); }
    QStringList getUserRoles(QString) override { return none(); }
    bool setUserRoles(QString, QStringList) override { return unsupported(); }
    QStringList getRoleUsers(QString) override { return none(); }
    void setRoleUsers(QString, QStringList) override { unsupported(); }
    QString getConnectionMode() override { return m_archive.connectionMode; }
    bool saveDocument(QString docId, QStringList fields) override;
    void getArchiveList(QStringList &archives) override;
    QStringList getDocument(QString docId, QString extra) override;
    qint64 countFolderDocuments(QString, int, bool) override { return unsupported() ? 0 : -1; }
    bool getStatusList(QStringList &rows, QList<QByteArray> &pictures) override;
    bool getDocTypeSettings(QStringList &, QList<QByteArray> &) override { return unsupported(); }
    bool saveStatusList(QStringList, QList<QByteArray>) override { return unsupported(); }
    bool saveDocTypes(QStringList, QList<QByteArray>) override { return unsupported(); }
    qint64 countDocuments(QString, bool) override { return unsupported() ? 0 : -1; }
    QStringList getDescriptionCompletions() override { return {"Invoice", "Letter"}; }
    QString lastMessage() override { return m_archive.lastError; }
    bool deleteDocumentVersion(QString, QString, QStringList) override { return unsupported(); }
    bool saveFolderMandant(QString, QStringList, QList<QByteArray>) override { return unsupported(); }
    bool getFolderMandant(QString, QStringList &, QList<QByteArray> &) override { return unsupported(); }
    QStringList getClassifySettings(bool) override { return none(); }
    QStringList getUserRights() override { return m_archive.rights; }
    bool getDocumentHistory(QString, QStringList &) override { return unsupported(); }
    void setCurrentArchive(QString key) override { m_archive.begin("setCurrentArchive", key); }
    QString getLoginName() override { return m_login; }
    QString getServerHost() override { return m_host; }
    int getServerPort() override { return m_port; }
    bool getNextOid(QString &) override { return unsupported(); }
    bool saveSearch(QString name, QString definition, QStringList roles) override;
    bool deleteSearch(QString id) override;
    QStringList getSearches(QString user) override;
    bool updateSearch(int id, QString name, QString definition, QStringList roles) override;
    QStringList getFolderRights(QString) override { return none(); }
    bool saveFolderRights(QString, QStringList) override { return unsupported(); }
    QString getArchiveName() override { return "Main archive"; }
    QStringList getAttributes() override { return none(); }
    bool saveAttributeValues(int, QStringList) override { return unsupported(); }
    QStringList getAttributeValues(int) override { return none(); }
    bool saveAttributes(QStringList) override { return unsupported(); }
    bool archiveDocument(qint64, QString, QString, QString) override { return unsupported(); }
    bool moveToTrash(QStringList) override { return unsupported(); }
    bool restoreFromTrash(QStringList) override { return unsupported(); }
    void reloadServerData() override { m_archive.begin("reloadServerData"); }
    void refreshSession() override { m_archive.begin("refreshSession"); }
    QString lastError() override { return m_archive.lastError; }
    bool createFolder(QString, QString, QString, QString) override { return unsupported(); }
    bool saveSetting(QString, QString, QByteArray, QString, bool) override { return unsupported(); }
    bool sslCommand(QString, QString) override { return unsupported(); }
    bool getSetting(QString section, QString key, QByteArray &value, QString &owner) override;
    bool moveDocumentToArchive(qint64, int) override { return unsupported(); }
    bool getIndexerInfo(QStringList &) override { return unsupported(); }
    bool recreateIndex() override { return unsupported(); }
    QStringList getMinMaxDates() override { return m_archive.minMaxDates; }
    bool ldapCommand(QString, QStringList, QList<QByteArray>, QStringList &, QList<QByteArray> &) override
    {
        return unsupported();
    }
    bool serverCommand(QString, QStringList, QList<QByteArray>, QStringList &, QList<QByteArray> &) override
    {
        return unsupported();
    }
    qint64 getProfileId() override { return m_profileId; }
    void setProfileId(qint64 id) override { m_profileId = id; }
    QString getServerVersion() override { return "Fake 1"; }

private:
    bool unsupported();
    QStringList none()
    {
        unsupported();
        return {};
    }

    FakeArchive &m_archive = FakeArchive::instance();

    QSet<int> m_readRecords; ///< handed out to this client since it logged in
    QString m_login;
    QString m_host;
    int m_port = 0;
    qint64 m_profileId = 0;
};
