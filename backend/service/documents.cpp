#include "service/documents.h"

#include "service/documentcolumns.h"
#include "service/documentfilter.h"
#include "service/folders.h"
#include "service/operation.h"
#include "service/records.h"
#include "service/recordvalues.h"
#include "service/retention.h"
#include "service/rights.h"
#include "service/visibledocuments.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace kelva {

/// What has to be known of a record before it may be touched.
struct DocumentRecord
{
    qint64 id = 0;
    qint64 document = 0;
    qint64 revision = 0;
    qint64 type = 0;
    QString folder;
    QString date;
    int status = 0;
    bool trashed = false;
    bool closed = false;
    bool hasNote = false;

    QString token() const { return versionToken(revision); }
};

namespace {

constexpr int maximumDescription = 254;
constexpr int deletedStatus = -1;
constexpr int toDeleteStatus = 0;
/// Places in a record without its document id.
enum Field {
    MainFolder,
    Description,
    Status,
    Token,
    Folder,
    Type,
    User,
    Date,
    Time,
    Resubmission,
    FirstAttribute
};

const Error noDocument{ErrorCode::NotFound, QStringLiteral("The document does not exist.")};
const Error readOnlyDocument{ErrorCode::Refused,
                             QStringLiteral("You don't have the rights to change the document.")};

/// Finds a record that the session may see.
Result<DocumentRecord> findRecord(Session &session, const QString &classificationId)
{
    bool isNumber = false;
    const qint64 id = classificationId.toLongLong(&isNumber);
    if (!isNumber)
        return noDocument;
    Query row = session.database().query(
        QStringLiteral("SELECT id, document, revision, docart, folder, cdate, status, trashed, closed, notes"
                       " FROM classification WHERE id = ?"),
        {id});
    if (!row.next())
        return noDocument;
    DocumentRecord record;
    record.id = row.number(0);
    record.document = row.number(1);
    record.revision = row.number(2);
    record.type = row.number(3);
    record.folder = row.text(4);
    record.date = row.text(5);
    record.status = static_cast<int>(row.number(6));
    record.trashed = row.flag(7);
    record.closed = row.flag(8);
    record.hasNote = row.number(9) > 0;
    if (!session.access().maySee(record.folder))
        return noDocument;
    return record;
}

Result<DocumentRecord> findWritable(Session &session, const QString &classificationId)
{
    Result<DocumentRecord> record = findRecord(session, classificationId);
    if (!record)
        return record;
    if (!session.access().mayWrite(record.value().folder))
        return readOnlyDocument;
    if (record.value().closed)
        return Error{ErrorCode::Refused, QStringLiteral("The document has been deleted.")};
    return record;
}

/// Copies the record as it stands to the earlier ones.
void keepRevision(Database &database, qint64 id)
{
    QStringList attributeColumns;
    const QVector<AttributeColumn> attributes = DocumentColumns::allAttributes(database);
    for (const AttributeColumn &attribute : attributes)
        attributeColumns << attribute.column;
    QJsonObject values;
    if (!attributes.isEmpty()) {
        Query row = database.query(QStringLiteral("SELECT %1 FROM classification WHERE id = ?")
                                       .arg(attributeColumns.join(QLatin1Char(','))),
                                   {id});
        if (row.next())
            for (int i = 0; i < attributes.size(); ++i)
                if (!row.value(i).isNull() && !row.text(i).isEmpty())
                    values.insert(QString::number(attributes.at(i).id),
                                  QJsonValue::fromVariant(row.value(i)));
    }
    database.run(
        QStringLiteral("INSERT INTO revision(classification, number, mandant, bemerkung, status, folder,"
                       " docart, changeid, cdate, ctimestamp, defdate, attributes)"
                       " SELECT id, revision, mandant, bemerkung, status, folder, docart, changeid, cdate,"
                       " ctimestamp, defdate, ? FROM classification WHERE id = ?"),
        {QString::fromUtf8(QJsonDocument(values).toJson(QJsonDocument::Compact)), id});
}

/// Column assignments of an UPDATE, gathered while a record is checked.
class Changes
{
public:
    void set(const QString &column, const QVariant &value)
    {
        m_columns << column + QStringLiteral(" = ?");
        m_values << value;
    }
    bool apply(Database &database, const DocumentRecord &record)
    {
        return database.run(QStringLiteral("UPDATE classification SET %1 WHERE id = ?")
                                .arg(m_columns.join(QStringLiteral(", "))),
                            m_values + QVariantList{record.id});
    }

private:
    QStringList m_columns;
    QVariantList m_values;
};

bool exists(Database &database, const QString &table, qint64 id)
{
    return database.value(QStringLiteral("SELECT 1 FROM %1 WHERE id = ?").arg(table), {id}).isValid();
}

Result<void> checkStatus(Session &session, const DocumentRecord &record, int status)
{
    if (status == record.status)
        return {};
    if (record.status == deletedStatus)
        return Error{ErrorCode::Refused, QStringLiteral("The document has been deleted.")};
    if (status == deletedStatus) {
        if (const Result<void> allowed = session.access().require(rights::admin); !allowed)
            return allowed;
        if (!record.trashed)
            return Error{ErrorCode::Refused, QStringLiteral("Only a document in the trash can be deleted.")};
        if (Retention::load(session.database()).isInForce(record.type, record.date, session.today()))
            return Error{ErrorCode::Refused,
                         QStringLiteral("The document cannot be deleted because of its retention period.")};
        return {};
    }
    if (status == toDeleteStatus && record.trashed)
        return {};
    if (status <= 0 || !exists(session.database(), QStringLiteral("status"), status))
        return Error{ErrorCode::BadInput, QStringLiteral("The status %1 does not exist.").arg(status)};
    return {};
}

Result<void> checkFolder(Session &session, const QString &folder)
{
    if (folder == QLatin1String("0"))
        return {};
    const Error unknown{ErrorCode::BadInput, QStringLiteral("The folder does not exist.")};
    if (!session.database().value(QStringLiteral("SELECT 1 FROM folder WHERE oid = ?"), {folder}).isValid())
        return unknown;
    return session.access().mayWrite(folder) ? Result<void>() : unknown;
}

/// The end of a retention that runs is never brought nearer, and none is counted from the far future.
Result<void> checkRetention(Session &session, const DocumentRecord &record, qint64 type, const QString &date)
{
    if (type == record.type && date == record.date)
        return {};
    const Retention retention = Retention::load(session.database());
    const QDate before = retention.end(record.type, record.date);
    const QDate now = retention.end(type, date);
    if (before.isValid() && before > session.today() && (!now.isValid() || now < before))
        return Error{ErrorCode::Refused,
                     QStringLiteral("The document must be kept until %1. Its type and its date cannot be "
                                    "changed so that this ends earlier.")
                         .arg(before.toString(Qt::ISODate))};
    const QDate latest = latestRetentionStart(session.today());
    if (retention.hasSpan(type) && QDate::fromString(date, Qt::ISODate) > latest)
        return Error{ErrorCode::Refused,
                     QStringLiteral("A document of this type cannot be dated after %1, because of its "
                                    "retention period.")
                         .arg(latest.toString(Qt::ISODate))};
    return {};
}

Result<void> collectFixed(Session &session, const DocumentRecord &record, const QStringList &fields,
                          Changes *changes)
{
    Database &database = session.database();
    const QString mainFolder = fields.at(MainFolder);
    if (!mainFolder.isEmpty() && !isFolderOid(mainFolder))
        return Error{ErrorCode::BadInput, QStringLiteral("The main folder is not valid.")};
    changes->set(QStringLiteral("mandant"), mainFolder);
    changes->set(QStringLiteral("bemerkung"), storedText(fields.at(Description), maximumDescription));
    bool isNumber = false;
    const int status = fields.at(Status).toInt(&isNumber);
    if (!isNumber)
        return Error{ErrorCode::BadInput, QStringLiteral("The status is not valid.")};
    if (const Result<void> allowed = checkStatus(session, record, status); !allowed)
        return allowed;
    changes->set(QStringLiteral("status"), status);
    if (fields.at(Folder) != record.folder) {
        if (const Result<void> allowed = checkFolder(session, fields.at(Folder)); !allowed)
            return allowed;
        changes->set(QStringLiteral("folder"), fields.at(Folder));
    }
    const qint64 type = fields.at(Type).toLongLong(&isNumber);
    if (!isNumber || (type != record.type && !exists(database, QStringLiteral("document_type"), type)))
        return Error{ErrorCode::BadInput, QStringLiteral("The document type does not exist.")};
    changes->set(QStringLiteral("docart"), type);
    for (const auto &[place, column] : {std::pair(Date, "cdate"), std::pair(Resubmission, "defdate")}) {
        const Result<QVariant> date = storedDate(fields.at(place));
        if (!date)
            return date.error();
        changes->set(QString::fromLatin1(column), date.value());
    }
    return checkRetention(session, record, type, fields.at(Date));
}

/// The columns behind the attribute fields of a record that comes back. BadInput when the session has not
/// handed it out, or not with so many fields: its values would land in other columns.
Result<DocumentColumns> columnsOf(Session &session, const DocumentRecord &record, const QStringList &fields)
{
    const std::optional<RecordLayouts::Layout> layout = session.recordLayouts().ofRecord(record.id);
    if (!layout)
        return Error{ErrorCode::BadInput,
                     QStringLiteral("The entry was not read before it was saved. Please refresh the list.")};
    constexpr int rightsLetters = 1;
    if (fields.size() != FirstAttribute + layout->size() + rightsLetters)
        return Error{ErrorCode::BadInput,
                     QStringLiteral("The entry does not have the fields that it was read with. Please "
                                    "refresh the list.")};
    return DocumentColumns::withAttributes(session.database(), *layout);
}

Result<void> collectAttributes(const DocumentColumns &columns, const QStringList &fields, Changes *changes)
{
    for (int i = 0; i < columns.attributes().size(); ++i) {
        const AttributeColumn &attribute = columns.attributes().at(i);
        const Result<QVariant> value = storedAttribute(attribute, fields.at(FirstAttribute + i));
        if (!value)
            return value.error();
        changes->set(attribute.column, value.value());
    }
    return {};
}

} // namespace

Result<QStringList> Documents::get(const QString &classificationId)
{
    return read(m_session, "Documents::get", [&](Database &database) -> Result<QStringList> {
        const Result<DocumentRecord> record = findRecord(m_session, classificationId);
        if (!record)
            return record.error();
        // As in the list that the caller goes by, attributes that were switched off since included.
        const std::optional<RecordLayouts::Layout> &list = m_session.recordLayouts().ofList();
        const DocumentColumns columns =
            list ? DocumentColumns::withAttributes(database, *list) : DocumentColumns::load(database);
        QString text;
        database.forEachRow(QStringLiteral("SELECT %1 FROM classification c WHERE c.id = ?")
                                .arg(columns.rowColumns().join(QStringLiteral(", "))),
                            {record.value().id}, [&](const Row &row) { text = columns.rowText(row); });
        QString letters;
        if (m_session.access().mayWrite(record.value().folder))
            letters += QLatin1Char('W');
        if (record.value().hasNote)
            letters += QLatin1Char('N');
        if (record.value().trashed &&
            Retention::load(database).isInForce(record.value().type, record.value().date, m_session.today()))
            letters += QLatin1Char('F');
        m_session.recordLayouts().noteRecord(record.value().id, columns.attributeIds());
        return splitFields(text) << letters;
    });
}

Result<void> Documents::save(const QString &classificationId, const QStringList &fields)
{
    return change(m_session, "Documents::save", [&](Database &database) -> Result<void> {
        const Result<DocumentRecord> found = findWritable(m_session, classificationId);
        if (!found)
            return found.error();
        const DocumentRecord &record = found.value();
        const Result<DocumentColumns> columns = columnsOf(m_session, record, fields);
        if (!columns)
            return columns.error();
        if (fields.at(Token) != record.token())
            return Error{ErrorCode::Conflict,
                         QStringLiteral("The entry has been changed by another user in the meantime.")};
        Changes changes;
        if (const Result<void> collected = collectFixed(m_session, record, fields, &changes); !collected)
            return collected;
        if (const Result<void> collected = collectAttributes(columns.value(), fields, &changes); !collected)
            return collected;
        changes.set(QStringLiteral("revision"), record.revision + 1);
        changes.set(QStringLiteral("changeid"), m_session.login());
        changes.set(QStringLiteral("ctimestamp"), m_session.timestamp());
        keepRevision(database, record.id);
        changes.apply(database, record);
        return {};
    });
}

Result<void> Documents::classify(qint64 archiveId, const QString &fileName, const QString &folder)
{
    return change(m_session, "Documents::classify", [&](Database &database) -> Result<void> {
        Query stored = database.query(
            QStringLiteral("SELECT subarchive FROM document WHERE id = ? AND deleted = 0"), {archiveId});
        if (!stored.next())
            return noDocument;
        const qint64 subArchive = stored.number(0);
        if (!maySeeDocument(m_session, archiveId))
            return noDocument;
        const QStringList folders = database.texts(
            QStringLiteral("SELECT folder FROM classification WHERE document = ? AND trashed = 0"),
            {archiveId});
        const QString target = folder.isEmpty() ? QStringLiteral("0") : folder;
        if (const Result<void> allowed = checkFolder(m_session, target); !allowed)
            return allowed;
        // A new version of a file that is filed there already keeps its record.
        if (folders.contains(target))
            return {};
        database.run(QStringLiteral(
                         "INSERT INTO classification(document, subarchive, folder, mandant, bemerkung, cdate,"
                         " creator, account, changeid, ctimestamp) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                     {archiveId, subArchive, target, mainFolderOf(target),
                      storedText(fileName, maximumDescription), m_session.today().toString(Qt::ISODate),
                      m_session.login(), m_session.account(), m_session.login(), m_session.timestamp()});
        return {};
    });
}

Result<void> Documents::setTrashed(const QStringList &classificationIds, bool trashed)
{
    return change(m_session, "Documents::setTrashed", [&](Database &database) -> Result<void> {
        for (const QString &id : classificationIds) {
            const Result<DocumentRecord> record = findWritable(m_session, id);
            if (!record)
                return record.error();
            if (!trashed && record.value().status == deletedStatus)
                return Error{ErrorCode::Refused, QStringLiteral("A deleted document cannot be restored.")};
            database.run(QStringLiteral("UPDATE classification SET trashed = ? WHERE id = ?"),
                         {trashed ? 1 : 0, record.value().id});
        }
        return {};
    });
}

Result<void> Documents::close(const QString &classificationId)
{
    return change(m_session, "Documents::close", [&](Database &database) -> Result<void> {
        const Result<DocumentRecord> record = findRecord(m_session, classificationId);
        if (!record)
            return record.error();
        if (record.value().status != deletedStatus)
            return Error{ErrorCode::Refused, QStringLiteral("Only a deleted document can be closed.")};
        database.run(QStringLiteral("UPDATE classification SET closed = 1 WHERE id = ?"),
                     {record.value().id});
        return {};
    });
}

Result<qint64> Documents::count(const QString &clause)
{
    return read(m_session, "Documents::count", [&](Database &database) -> Result<qint64> {
        const Result<SqlCondition> condition =
            translateClause(clause, DocumentColumns::load(database).clauseFields(), m_session.today());
        if (!condition)
            return condition.error();
        const TimeLimit patience(database, longestSearchMs(database));
        const Access &access = m_session.access();
        const QString visible =
            access.isAdmin() ? sql::always : access.visibleCondition(QStringLiteral("c.folder"));
        return database
            .value(QStringLiteral("SELECT count(*) FROM classification c WHERE %1 AND %2")
                       .arg(condition.value().sql, visible),
                   condition.value().values)
            .toLongLong();
    });
}

Result<qint64> Documents::countInFolder(const QString &pattern)
{
    return read(m_session, "Documents::countInFolder", [&](Database &database) -> Result<qint64> {
        const bool below = pattern.endsWith(QLatin1String(".%"));
        const QString oid = below ? pattern.chopped(2) : pattern;
        if (!isFolderOid(oid))
            return Error{ErrorCode::BadInput, QStringLiteral("The folder is not valid.")};
        const TimeLimit patience(database, longestSearchMs(database));
        const Access &access = m_session.access();
        const QString visible =
            access.isAdmin() ? sql::always : access.visibleCondition(QStringLiteral("c.folder"));
        const QString sql = QStringLiteral("SELECT count(*) FROM classification c WHERE %1 AND %2");
        // "/" is the character after ".", so this is everything that begins with the oid and a dot.
        const qint64 count =
            (below ? database.value(sql.arg(QStringLiteral("c.folder > ? AND c.folder < ?"), visible),
                                    {oid + QLatin1Char('.'), oid + QLatin1Char('/')})
                   : database.value(sql.arg(QStringLiteral("c.folder = ?"), visible), {oid}))
                .toLongLong();
        return count;
    });
}

Result<void> Documents::moveToSubArchive(qint64 archiveId, qint64 subArchive)
{
    return change(m_session, "Documents::moveToSubArchive", [&](Database &database) -> Result<void> {
        if (!exists(database, QStringLiteral("subarchive"), subArchive))
            return Error{ErrorCode::NotFound, QStringLiteral("The archive does not exist.")};
        QStringList folders = database.texts(
            QStringLiteral("SELECT folder FROM classification WHERE document = ?"), {archiveId});
        bool any = false;
        for (const QString &folder : qAsConst(folders))
            any = any || m_session.access().mayWrite(folder);
        if (!any)
            return noDocument;
        const qint64 before =
            database.value(QStringLiteral("SELECT subarchive FROM document WHERE id = ?"), {archiveId})
                .toLongLong();
        if (before != subArchive) {
            constexpr int archiveChanged = 8;
            database.run(QStringLiteral("UPDATE document SET subarchive = ? WHERE id = ?"),
                         {subArchive, archiveId});
            database.run(QStringLiteral("UPDATE classification SET subarchive = ? WHERE document = ?"),
                         {subArchive, archiveId});
            database.run(
                QStringLiteral(
                    "INSERT INTO event(document, action, time, login, account) VALUES(?, ?, ?, ?, ?)"),
                {archiveId, archiveChanged, m_session.timestamp(), m_session.login(), m_session.account()});
        }
        return {};
    });
}

} // namespace kelva
