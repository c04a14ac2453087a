#pragma once

#include "server/classifyinterface.h"

/// The metadata side of the fake archive. Operations that no test needs yet fail and say so.
class FakeClassifyClient : public ClassifyInterface
{
    Q_OBJECT

public:
    explicit FakeClassifyClient(QObject *parent = nullptr) : ClassifyInterface(parent) {}

    ClassifyInterface *createClient(QString reserved) override;
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
    void disconnectClient() override;
    QStringList getRoles() override;
    bool createRole(QStringList) override { return unsupported(); }
    bool deleteRole(QStringList) override { return unsupported(); }
    QStringList getUserRoles(QString) override
    {
        unsupported();
        return {};
    }
    bool setUserRoles(QString, QStringList) override { return unsupported(); }
    QStringList getRoleUsers(QString) override
    {
        unsupported();
        return {};
    }
    void setRoleUsers(QString, QStringList) override { unsupported(); }
    QString getConnectionMode() override;
    bool saveDocument(QString docId, QStringList fields) override;
    void getArchiveList(QStringList &archives) override;
    QStringList getDocument(QString docId, QString extra) override;
    qint64 countFolderDocuments(QString, int, bool) override { return unsupported() ? 0 : -1; }
    bool getStatusList(QStringList &rows, QList<QByteArray> &pictures) override;
    bool getDocTypeSettings(QStringList &, QList<QByteArray> &) override { return unsupported(); }
    bool saveStatusList(QStringList, QList<QByteArray>) override { return unsupported(); }
    bool saveDocTypes(QStringList, QList<QByteArray>) override { return unsupported(); }
    qint64 countDocuments(QString where, bool all) override;
    QStringList getDescriptionCompletions() override;
    QString lastMessage() override;
    bool deleteDocumentVersion(QString, QString, QStringList) override { return unsupported(); }
    bool saveFolderMandant(QString, QStringList, QList<QByteArray>) override { return unsupported(); }
    bool getFolderMandant(QString, QStringList &, QList<QByteArray> &) override { return unsupported(); }
    QStringList getClassifySettings(bool) override
    {
        unsupported();
        return {};
    }
    QStringList getUserRights() override;
    bool getDocumentHistory(QString, QStringList &) override { return unsupported(); }
    void setCurrentArchive(QString archiveKey) override;
    QString getLoginName() override;
    QString getServerHost() override;
    int getServerPort() override;
    bool getNextOid(QString &) override { return unsupported(); }
    bool saveSearch(QString name, QString definition, QStringList roles) override;
    bool deleteSearch(QString id) override;
    QStringList getSearches(QString user) override;
    bool updateSearch(int id, QString name, QString definition, QStringList roles) override;
    QStringList getFolderRights(QString) override
    {
        unsupported();
        return {};
    }
    bool saveFolderRights(QString, QStringList) override { return unsupported(); }
    QString getArchiveName() override;
    QStringList getAttributes() override
    {
        unsupported();
        return {};
    }
    bool saveAttributeValues(int, QStringList) override { return unsupported(); }
    QStringList getAttributeValues(int) override
    {
        unsupported();
        return {};
    }
    bool saveAttributes(QStringList) override { return unsupported(); }
    bool archiveDocument(qint64, QString, QString, QString) override { return unsupported(); }
    bool moveToTrash(QStringList docIds) override;
    bool restoreFromTrash(QStringList docIds) override;
    void reloadServerData() override;
    void refreshSession() override;
    QString lastError() override;
    bool createFolder(QString, QString, QString, QString) override { return unsupported(); }
    bool saveSetting(QString section, QString key, QByteArray value, QString owner, bool update) override;
    bool sslCommand(QString, QString) override { return unsupported(); }
    bool getSetting(QString section, QString key, QByteArray &value, QString &owner) override;
    bool moveDocumentToArchive(qint64, int) override { return unsupported(); }
    bool getIndexerInfo(QStringList &) override { return unsupported(); }
    bool recreateIndex() override { return unsupported(); }
    QStringList getMinMaxDates() override;
    bool ldapCommand(QString, QStringList, QList<QByteArray>, QStringList &, QList<QByteArray> &) override
    {
        return unsupported();
    }
    bool serverCommand(QString, QStringList, QList<QByteArray>, QStringList &, QList<QByteArray> &) override
    {
        return unsupported();
    }
    qint64 getProfileId() override;
    void setProfileId(qint64 id) override;
    QString getServerVersion() override;

private:
    bool unsupported();

    QString m_login;
    QString m_host;
    int m_port = 0;
    qint64 m_profileId = 0;
    QString m_subArchive;
};
