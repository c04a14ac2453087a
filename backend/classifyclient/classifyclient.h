#pragma once

#include "contract/classifyinterface.h"
#include "indexer/indexerthread.h"
#include "service/connection.h"
#include "service/workbench.h"

#include <QHash>
#include <QTimer>

#include <memory>

/// The metadata plug-in: hands every operation on to the service library and turns results into what the
/// interface promises. One object per createClient(); the plug-in instance itself serves as one too.
class ClassifyClient final : public ClassifyInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CLASSIFY_INTERFACE_IID)
    Q_INTERFACES(ClassifyInterface)

public:
    explicit ClassifyClient(QObject *parent = nullptr);

    ClassifyInterface *createClient(QString reserved) override;
    bool createUser(QStringList record) override;
    bool getUsers(QStringList &users) override;
    bool deleteUser(QStringList ids) override;
    bool setUserPassword(QString user, QString password) override;
    bool changeOwnPassword(QString oldPassword, QString newPassword) override;
    bool changeExpiredPassword(QString host, QString oldPassword, QString newPassword, QString user,
                               int port) override;
    bool updateUser(QStringList record) override;
    QStringList getDocuments(QStringList filters) override;
    bool connectClient(QString host, int port, QString user, QString password) override;
    bool getFolders(QStringList &rows, QList<QByteArray> &pictures, bool all) override;
    bool saveFolders(QStringList rows, QList<QByteArray> pictures) override;
    void disconnectClient() override;
    QStringList getRoles() override;
    bool createRole(QStringList names) override;
    bool deleteRole(QStringList names) override;
    QStringList getUserRoles(QString user) override;
    bool setUserRoles(QString user, QStringList roles) override;
    QStringList getRoleUsers(QString role) override;
    void setRoleUsers(QString role, QStringList logins) override;
    QString getConnectionMode() override;
    bool saveDocument(QString docId, QStringList fields) override;
    void getArchiveList(QStringList &archives) override;
    QStringList getDocument(QString docId, QString extra) override;
    qint64 countFolderDocuments(QString oidPattern, int reserved, bool all) override;
    bool getStatusList(QStringList &rows, QList<QByteArray> &pictures) override;
    bool getDocTypeSettings(QStringList &rows, QList<QByteArray> &pictures) override;
    bool saveStatusList(QStringList rows, QList<QByteArray> pictures) override;
    bool saveDocTypes(QStringList rows, QList<QByteArray> pictures) override;
    qint64 countDocuments(QString where, bool all) override;
    QStringList getDescriptionCompletions() override;
    QString lastMessage() override;
    bool deleteDocumentVersion(QString docId, QString version, QStringList rights) override;
    bool saveFolderMandant(QString oid, QStringList rows, QList<QByteArray> pictures) override;
    bool getFolderMandant(QString oid, QStringList &rows, QList<QByteArray> &pictures) override;
    QStringList getClassifySettings(bool all) override;
    QStringList getUserRights() override;
    bool getDocumentHistory(QString docId, QStringList &rows) override;
    void setCurrentArchive(QString archiveKey) override;
    QString getLoginName() override;
    QString getServerHost() override;
    int getServerPort() override;
    bool getNextOid(QString &oid) override;
    bool saveSearch(QString name, QString definition, QStringList roles) override;
    bool deleteSearch(QString id) override;
    QStringList getSearches(QString user) override;
    bool updateSearch(int id, QString name, QString definition, QStringList roles) override;
    QStringList getFolderRights(QString oid) override;
    bool saveFolderRights(QString oid, QStringList roles) override;
    QString getArchiveName() override;
    QStringList getAttributes() override;
    bool saveAttributeValues(int id, QStringList nameAndValues) override;
    QStringList getAttributeValues(int id) override;
    bool saveAttributes(QStringList rows) override;
    bool archiveDocument(qint64 docId, QString fileName, QString archive, QString extra) override;
    bool moveToTrash(QStringList docIds) override;
    bool restoreFromTrash(QStringList docIds) override;
    void reloadServerData() override;
    void refreshSession() override;
    QString lastError() override;
    bool createFolder(QString parentOid, QString name, QString key, QString keywords) override;
    bool saveSetting(QString section, QString key, QByteArray value, QString owner, bool update) override;
    bool sslCommand(QString verb, QString argument) override;
    bool getSetting(QString section, QString key, QByteArray &value, QString &owner) override;
    bool moveDocumentToArchive(qint64 docId, int target) override;
    bool getIndexerInfo(QStringList &rows) override;
    bool recreateIndex() override;
    QStringList getMinMaxDates() override;
    bool ldapCommand(QString verb, QStringList textsIn, QList<QByteArray> dataIn, QStringList &textsOut,
                     QList<QByteArray> &dataOut) override;
    bool serverCommand(QString verb, QStringList textsIn, QList<QByteArray> dataIn, QStringList &textsOut,
                       QList<QByteArray> &dataOut) override;
    qint64 getProfileId() override;
    void setProfileId(qint64 id) override;
    QString getServerVersion() override;

private slots:
    void lookForChanges();

private:
    bool publishOffline();

    kelva::Connection m_connection;
    QTimer m_changes;
    /// Takes the texts of files while there is a connection.
    kelva::IndexerThread m_indexer;
    QString m_login;
    QString m_host;
    int m_port = 0;
    qint64 m_profileId = 0;
    /// Ids that new attributes got, by the negative ids they were saved under.
    QHash<qint64, qint64> m_newAttributes;
    std::unique_ptr<kelva::WorkbenchSegment> m_offlineBlock;
};
