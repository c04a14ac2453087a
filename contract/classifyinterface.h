#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#define CLASSIFY_INTERFACE_IID "de.norbant.ClassifyInterface/1.2"

/// The client's whole view of the metadata side of an archive. The plug-in instance is a factory; the object
/// that createClient() returns is the one to work with. All calls block and come from the main thread.
///
/// Failures: bool operations return false, lists come back empty, counts negative; lastMessage() and
/// lastError() then hold the same text until the next call. Out arguments are assigned, never appended to.
/// A record in a list is one text with its fields joined by recordformat::fieldSeparator; picture lists run
/// parallel to their record lists and hold PNG data, or nothing.
///
/// Usable without a session: createClient, getConnectionMode, setProfileId, getProfileId, lastMessage,
/// lastError, changeExpiredPassword, disconnectClient, and getArchiveList when offline.
class ClassifyInterface : public QObject
{
    Q_OBJECT

public:
    explicit ClassifyInterface(QObject *parent = nullptr) : QObject(parent) {}

    /// A new client object, owned by the caller. The text is reserved and empty.
    virtual ClassifyInterface *createClient(QString reserved) = 0;

    /// One record of login, password, name, short name. Makes the personal role "r_" + login as well.
    virtual bool createUser(QStringList record) = 0;
    /// Records of id, login, name, short name, an empty field, "1" for a directory user or "0".
    virtual bool getUsers(QStringList &users) = 0;
    virtual bool deleteUser(QStringList ids) = 0;
    virtual bool setUserPassword(QString user, QString password) = 0;
    virtual bool changeOwnPassword(QString oldPassword, QString newPassword) = 0;
    virtual bool changeExpiredPassword(QString host, QString oldPassword, QString newPassword, QString user,
                                       int port) = 0;
    /// One record of id, login, password (empty keeps it), name, short name.
    virtual bool updateUser(QStringList record) = 0;

    /// Filters are where clauses, each and-ed as a whole, and "OPT:" tokens. Header row first, then one row
    /// per document: archive id "#" classification id, main folder, description, status, version token,
    /// folder, type, user and time of the last change around the document date (columns 7, 9 and 8),
    /// resubmission date, the attributes, and last the rights letters. Empty only on failure.
    virtual QStringList getDocuments(QStringList filters) = 0;
    /// On failure lastMessage() starts with "Password expired", equals "WRONGVERSION", or is free text.
    virtual bool connectClient(QString host, int port, QString user, QString password) = 0;

    /// Folder records of nine fields (oid, name, flag, key, parent oid, "0", "L", "E", keywords), parents
    /// before children, without regard to rights, inactive ones too.
    virtual bool getFolders(QStringList &rows, QList<QByteArray> &pictures, bool all) = 0;
    /// Records with a change marker, deletions first, then insertions, then updates; one transaction.
    virtual bool saveFolders(QStringList rows, QList<QByteArray> pictures) = 0;
    virtual void disconnectClient() = 0;

    virtual QStringList getRoles() = 0;
    virtual bool createRole(QStringList names) = 0;
    virtual bool deleteRole(QStringList names) = 0;
    virtual QStringList getUserRoles(QString user) = 0;
    virtual bool setUserRoles(QString user, QStringList roles) = 0;
    virtual QStringList getRoleUsers(QString role) = 0;
    virtual void setRoleUsers(QString role, QStringList logins) = 0;

    /// Starts with "Offline" when an archive is browsed without a login.
    virtual QString getConnectionMode() = 0;

    /// fields: a record of getDocument(), or a row of getDocuments(), without its element 0, the rights
    /// letters still last; of another length, or never read in this session, it is refused. Element 3 is the
    /// version token as it was read; when it is no longer the current one nothing is written and the call
    /// fails.
    virtual bool saveDocument(QString docId, QStringList fields) = 0;
    /// Entries of display name and archive key.
    virtual void getArchiveList(QStringList &archives) = 0;
    /// docId is a classification id. The fields of a table row as a list, with the columns of the session's
    /// last getDocuments(), rights letters last; empty on failure.
    virtual QStringList getDocument(QString docId, QString extra) = 0;
    /// Documents in a folder, trashed ones included. A pattern that ends in ".%" means what is below it.
    virtual qint64 countFolderDocuments(QString oidPattern, int reserved, bool all) = 0;
    /// Records of id and name.
    virtual bool getStatusList(QStringList &rows, QList<QByteArray> &pictures) = 0;
    /// Records of id, name, retention "years;months;days".
    virtual bool getDocTypeSettings(QStringList &rows, QList<QByteArray> &pictures) = 0;
    virtual bool saveStatusList(QStringList rows, QList<QByteArray> pictures) = 0;
    virtual bool saveDocTypes(QStringList rows, QList<QByteArray> pictures) = 0;
    /// Over all records, trashed or not, whatever the rights.
    virtual qint64 countDocuments(QString where, bool all) = 0;
    virtual QStringList getDescriptionCompletions() = 0;

    virtual QString lastMessage() = 0;

    virtual bool deleteDocumentVersion(QString docId, QString version, QStringList rights) = 0;
    virtual bool saveFolderMandant(QString oid, QStringList rows, QList<QByteArray> pictures) = 0;
    virtual bool getFolderMandant(QString oid, QStringList &rows, QList<QByteArray> &pictures) = 0;
    /// Entries of label and key; the last entry is the rights field's.
    virtual QStringList getClassifySettings(bool all) = 0;
    virtual QStringList getUserRights() = 0;
    /// One row per saved version, oldest first, columns as in getDocuments() without the rights letters.
    virtual bool getDocumentHistory(QString docId, QStringList &rows) = 0;
    virtual void setCurrentArchive(QString archiveKey) = 0;
    virtual QString getLoginName() = 0;
    virtual QString getServerHost() = 0;
    virtual int getServerPort() = 0;
    virtual bool getNextOid(QString &oid) = 0;

    virtual bool saveSearch(QString name, QString definition, QStringList roles) = 0;
    virtual bool deleteSearch(QString id) = 0;
    /// Records of id, name, definition, roles; those that the user's roles open.
    virtual QStringList getSearches(QString user) = 0;
    virtual bool updateSearch(int id, QString name, QString definition, QStringList roles) = 0;

    virtual QStringList getFolderRights(QString oid) = 0;
    virtual bool saveFolderRights(QString oid, QStringList roles) = 0;
    /// Display name of the current archive.
    virtual QString getArchiveName() = 0;

    /// Records of id, name, kind, not-unique, not-active.
    virtual QStringList getAttributes() = 0;
    virtual bool saveAttributeValues(int id, QStringList nameAndValues) = 0;
    virtual QStringList getAttributeValues(int id) = 0;
    virtual bool saveAttributes(QStringList rows) = 0;

    /// Makes the first classification of an uploaded document. extra is the folder oid.
    virtual bool archiveDocument(qint64 docId, QString fileName, QString archive, QString extra) = 0;
    virtual bool moveToTrash(QStringList docIds) = 0;
    virtual bool restoreFromTrash(QStringList docIds) = 0;
    virtual void reloadServerData() = 0;
    virtual void refreshSession() = 0;

    virtual QString lastError() = 0;

    virtual bool createFolder(QString parentOid, QString name, QString key, QString keywords) = 0;
    /// update true: insert or replace. update false: insert; an existing record is kept and the call fails.
    virtual bool saveSetting(QString section, QString key, QByteArray value, QString owner, bool update) = 0;
    virtual bool sslCommand(QString verb, QString argument) = 0;
    /// An unknown key fails with exactly "No data found.".
    virtual bool getSetting(QString section, QString key, QByteArray &value, QString &owner) = 0;
    virtual bool moveDocumentToArchive(qint64 docId, int target) = 0;
    /// Records of state and count: "4" done, "6" failed, anything else still to do.
    virtual bool getIndexerInfo(QStringList &rows) = 0;
    virtual bool recreateIndex() = 0;
    /// Oldest and newest document date, "yyyy-MM-dd".
    virtual QStringList getMinMaxDates() = 0;
    virtual bool ldapCommand(QString verb, QStringList textsIn, QList<QByteArray> dataIn,
                             QStringList &textsOut, QList<QByteArray> &dataOut) = 0;
    virtual bool serverCommand(QString verb, QStringList textsIn, QList<QByteArray> dataIn,
                               QStringList &textsOut, QList<QByteArray> &dataOut) = 0;
    virtual qint64 getProfileId() = 0;
    virtual void setProfileId(qint64 id) = 0;
    virtual QString getServerVersion() = 0;

signals:
    /// The connection has been lost; raised once.
    void clientDisconnect();
    /// The one request that is acted on is "DORELOADALL": another session changed the vocabulary.
    void serverRequest(QString request);
};

Q_DECLARE_INTERFACE(ClassifyInterface, CLASSIFY_INTERFACE_IID)
