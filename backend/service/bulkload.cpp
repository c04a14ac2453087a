#include "service/bulkload.h"

#include "service/blobs.h"
#include "service/documentcolumns.h"
#include "service/folders.h"
#include "service/operation.h"
#include "service/recordvalues.h"

namespace kelva {
namespace {

constexpr int documentsPerTransaction = 5000;

const QString accountOf = QStringLiteral("(SELECT id FROM account WHERE login = ?)");

QString insertRecord(const QVector<AttributeColumn> &attributes)
{
    QString columns = QStringLiteral(
        "document, subarchive, trashed, folder, status, docart, cdate, defdate, creator, account,"
        " changeid, ctimestamp, mandant, bemerkung");
    QString places = QStringLiteral("?, ?, ?, ?, ?, ?, ?, ?, ?, %1, ?, ?, ?, ?").arg(accountOf);
    for (const AttributeColumn &attribute : attributes) {
        columns += QStringLiteral(", ") + attribute.column;
        places += QStringLiteral(", ?");
    }
    return QStringLiteral("INSERT INTO classification(%1) VALUES(%2) RETURNING id").arg(columns, places);
}

} // namespace

struct BulkLoad::Statements
{
    Statements(Database &database, QVector<AttributeColumn> all)
        : attributes(std::move(all)),
          document(
              database,
              QStringLiteral("INSERT INTO document(subarchive, file_name, creator, account, created, version)"
                             " VALUES(?, ?, ?, %1, ?, ?) RETURNING id")
                  .arg(accountOf)),
          version(database,
                  QStringLiteral("INSERT INTO file_version(document, version, blob, creator, created)"
                                 " VALUES(?, 1, ?, ?, ?)")),
          text(database, QStringLiteral("INSERT INTO file_text(document) VALUES(?)")),
          record(database, insertRecord(attributes)),
          note(database,
               QStringLiteral(
                   "INSERT INTO note(classification, author, account, created, text) VALUES(?, ?, %1, ?, ?)")
                   .arg(accountOf)),
          event(database,
                QStringLiteral(
                    "INSERT INTO event(document, action, time, login, account) VALUES(?, ?, ?, ?, %1)")
                    .arg(accountOf))
    {
    }

    QVector<AttributeColumn> attributes;
    Statement document;
    Statement version;
    Statement text;
    Statement record;
    Statement note;
    Statement event;
};

BulkLoad::BulkLoad(Session &session) : m_session(session) {}

BulkLoad::~BulkLoad() = default;

Result<void> BulkLoad::begin(const char *operation)
{
    if (const Result<void> permitted = permit(m_session, operation); !permitted)
        return permitted;
    if (!m_transaction)
        m_transaction = std::make_unique<Transaction>(m_session.database(), Transaction::Kind::Write);
    if (!m_statements)
        m_statements = std::make_unique<Statements>(m_session.database(),
                                                    DocumentColumns::allAttributes(m_session.database()));
    return m_session.database().failed() ? m_session.database().error() : Result<void>();
}

Result<qint64> BulkLoad::add(const BulkDocument &document)
{
    if (!m_transaction)
        if (const Result<void> begun = begin("BulkLoad::add"); !begun)
            return begun.error();
    Database &database = m_session.database();
    const bool hasFile = !document.content.isNull();
    const qint64 id =
        m_statements->document.insert({document.subArchive, storedText(document.fileName), document.creator,
                                       document.creator, document.created, hasFile ? 1 : 0});
    if (hasFile) {
        m_statements->version.run(
            {id, insertBlob(database, document.content), document.creator, document.created});
        m_statements->text.run({id});
    }
    QVariantList values{id,
                        document.subArchive,
                        document.trashed ? 1 : 0,
                        document.folder,
                        document.status,
                        document.type,
                        document.date.isEmpty() ? QVariant() : document.date,
                        document.resubmission.isEmpty() ? QVariant() : document.resubmission,
                        document.creator,
                        document.creator,
                        document.creator,
                        document.created,
                        mainFolderOf(document.folder),
                        storedText(document.description, 254)};
    for (const AttributeColumn &attribute : qAsConst(m_statements->attributes)) {
        const Result<QVariant> value =
            storedAttribute(attribute, document.attributes.value(attribute.id).toString());
        if (!value)
            return value.error();
        values << value.value();
    }
    const qint64 record = m_statements->record.insert(values);
    if (!document.note.isEmpty())
        m_statements->note.run(
            {record, document.creator, document.creator, document.created, storedText(document.note)});
    if (database.failed())
        return database.error();
    if (++m_pending >= documentsPerTransaction)
        if (const Result<void> written = flush(); !written)
            return written.error();
    return id;
}

Result<void> BulkLoad::addEvent(qint64 archiveId, int action, const QString &time, const QString &user)
{
    if (!m_transaction)
        if (const Result<void> begun = begin("BulkLoad::addEvent"); !begun)
            return begun;
    m_statements->event.run({archiveId, action, time, user, user});
    if (m_session.database().failed())
        return m_session.database().error();
    return {};
}

Result<void> BulkLoad::flush()
{
    m_pending = 0;
    if (!m_transaction)
        return {};
    const Result<void> written = m_transaction->commit();
    m_transaction.reset();
    return written;
}

Result<void> BulkLoad::finish()
{
    if (const Result<void> written = flush(); !written)
        return written;
    m_statements.reset();
    return change(m_session, "BulkLoad::finish", [&](Database &database) -> Result<void> {
        database.analyze();
        m_session.noteVocabularyChange();
        return {};
    });
}

} // namespace kelva
