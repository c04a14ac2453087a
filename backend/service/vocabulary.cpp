#include "service/vocabulary.h"

#include "service/documentcolumns.h"
#include "service/recordvalues.h"
#include "service/retention.h"
#include "service/rights.h"
#include "service/session.h"

#include <QSet>

namespace kelva {
namespace {

constexpr int maximumName = 254;
/// Records that completions are gathered from: enough for what is in use, and never more to read.
constexpr int completionWindow = 2000;

/// A period is never made shorter, for no document date; and one that is new must not lock documents that are
/// dated in the far future.
Result<void> checkNewSpan(Session &session, qint64 type, const QString &name, const RetentionSpan &before,
                          const RetentionSpan &now)
{
    if (now.text() == before.text())
        return {};
    if (now.isEverShorterThan(before))
        return Error{ErrorCode::Refused,
                     QStringLiteral("The retention period of \"%1\" cannot be shortened.").arg(name)};
    const QString latest = latestRetentionStart(session.today()).toString(Qt::ISODate);
    if (before.isNone() &&
        session.database()
            .value(QStringLiteral("SELECT 1 FROM classification WHERE docart = ? AND cdate > ? LIMIT 1"),
                   {type, latest})
            .isValid())
        return Error{ErrorCode::Refused,
                     QStringLiteral("\"%1\" cannot get a retention period: some of its documents are dated "
                                    "after %2.")
                         .arg(name, latest)};
    return {};
}

/// Deletes the ids that a saved list no longer holds, unless records have them.
Result<void> removeMissing(Database &database, const QString &table, const QString &column,
                           const QSet<qint64> &kept)
{
    for (const qint64 id : database.numbers(QStringLiteral("SELECT id FROM %1").arg(table))) {
        if (kept.contains(id))
            continue;
        const QString name =
            database.value(QStringLiteral("SELECT name FROM %1 WHERE id = ?").arg(table), {id}).toString();
        if (database
                .value(QStringLiteral("SELECT 1 FROM classification WHERE %1 = ? LIMIT 1").arg(column), {id})
                .isValid())
            return Error{ErrorCode::InUse,
                         QStringLiteral("\"%1\" is used by documents and cannot be deleted.").arg(name)};
        database.run(QStringLiteral("DELETE FROM %1 WHERE id = ?").arg(table), {id});
    }
    return {};
}

} // namespace

Result<Records> Vocabulary::status()
{
    Database &database = m_session.database();
    Transaction reading(database, Transaction::Kind::Read);
    Records records;
    for (Query row =
             database.query(QStringLiteral("SELECT id, name, picture FROM status ORDER BY position, id"));
         row.next();)
        records.add({row.text(0), row.text(1)}, row.bytes(2));
    return database.result(records);
}

Result<void> Vocabulary::saveStatus(const Records &records)
{
    Database &database = m_session.database();
    Transaction writing(database, Transaction::Kind::Write);
    if (const Result<void> allowed = m_session.access().require(rights::admin); !allowed)
        return allowed;
    QSet<qint64> kept;
    for (int i = 0; i < records.rows.size(); ++i) {
        const QStringList fields = records.fields(i, 2);
        const QVariant name = storedText(fields.at(1), maximumName);
        const QByteArray picture = records.pictures.value(i);
        if (fields.at(0).isEmpty()) {
            database.run(QStringLiteral("INSERT INTO status(name, position, picture) VALUES(?, ?, ?)"),
                         {name, i, picture});
            kept.insert(database.lastInsertId());
            continue;
        }
        const qint64 id = fields.at(0).toLongLong();
        database.run(QStringLiteral("UPDATE status SET name = ?, position = ?, picture = ? WHERE id = ?"),
                     {name, i, picture, id});
        if (database.affected() == 0)
            return Error{ErrorCode::NotFound,
                         QStringLiteral("The status %1 does not exist.").arg(fields.at(0))};
        kept.insert(id);
    }
    for (const qint64 system : database.numbers(QStringLiteral("SELECT id FROM status WHERE system = 1")))
        if (!kept.contains(system))
            return Error{ErrorCode::Refused,
                         QStringLiteral("The system status %1 cannot be deleted.").arg(system)};
    if (const Result<void> removed =
            removeMissing(database, QStringLiteral("status"), QStringLiteral("status"), kept);
        !removed)
        return removed;
    m_session.noteVocabularyChange();
    return writing.commit();
}

Result<Records> Vocabulary::types()
{
    Database &database = m_session.database();
    Transaction reading(database, Transaction::Kind::Read);
    Records records;
    for (Query row =
             database.query(QStringLiteral("SELECT id, name, years, months, days, picture FROM document_type"
                                           " ORDER BY position, id"));
         row.next();)
        records.add({row.text(0), row.text(1),
                     QStringLiteral("%1;%2;%3").arg(row.number(2)).arg(row.number(3)).arg(row.number(4))},
                    row.bytes(5));
    return database.result(records);
}

Result<void> Vocabulary::saveTypes(const Records &records)
{
    Database &database = m_session.database();
    Transaction writing(database, Transaction::Kind::Write);
    if (const Result<void> allowed = m_session.access().require(rights::admin); !allowed)
        return allowed;
    QSet<qint64> kept;
    for (int i = 0; i < records.rows.size(); ++i) {
        const QStringList fields = records.fields(i, 3);
        const QVariant name = storedText(fields.at(1), maximumName);
        const Result<RetentionSpan> span = RetentionSpan::parse(fields.at(2));
        if (!span)
            return span.error();
        bool isNumber = false;
        qint64 id = fields.at(0).toLongLong(&isNumber);
        if (!isNumber || id < 0) {
            database.run(QStringLiteral("INSERT INTO document_type(name, position) VALUES(?, ?)"), {name, i});
            id = database.lastInsertId();
        } else {
            Query old = database.query(
                QStringLiteral("SELECT years, months, days FROM document_type WHERE id = ?"), {id});
            if (!old.next())
                return Error{ErrorCode::NotFound,
                             QStringLiteral("The document type %1 does not exist.").arg(id)};
            const RetentionSpan before{static_cast<int>(old.number(0)), static_cast<int>(old.number(1)),
                                       static_cast<int>(old.number(2))};
            if (const Result<void> allowed = checkNewSpan(m_session, id, fields.at(1), before, span.value());
                !allowed)
                return allowed;
        }
        database.run(
            QStringLiteral("UPDATE document_type SET name = ?, position = ?, years = ?, months = ?, days = ?,"
                           " picture = ? WHERE id = ?"),
            {name, i, span.value().years, span.value().months, span.value().days, records.pictures.value(i),
             id});
        kept.insert(id);
    }
    kept.insert(0);
    if (const Result<void> removed =
            removeMissing(database, QStringLiteral("document_type"), QStringLiteral("docart"), kept);
        !removed)
        return removed;
    m_session.noteVocabularyChange();
    return writing.commit();
}

Result<QStringList> Vocabulary::dateBounds()
{
    Database &database = m_session.database();
    Transaction reading(database, Transaction::Kind::Read);
    const QString today = m_session.today().toString(Qt::ISODate);
    const QString visible = m_session.access().visibleCondition(QStringLiteral("c.folder"));
    QStringList bounds;
    for (const QString &order : {QStringLiteral("ASC"), QStringLiteral("DESC")}) {
        const QVariant bound =
            database.value(QStringLiteral("SELECT c.cdate FROM classification c WHERE c.cdate > '' AND %1"
                                          " ORDER BY c.cdate %2 LIMIT 1")
                               .arg(visible, order));
        bounds << (bound.isValid() ? bound.toString() : today);
    }
    return database.result(bounds);
}

Result<QStringList> Vocabulary::descriptions()
{
    Database &database = m_session.database();
    Transaction reading(database, Transaction::Kind::Read);
    const QStringList texts = database.texts(
        QStringLiteral(
            "SELECT DISTINCT bemerkung FROM (SELECT c.bemerkung FROM classification c NOT INDEXED"
            " WHERE c.trashed = 0 AND %1 ORDER BY c.id DESC LIMIT %2) WHERE bemerkung <> '' ORDER BY 1")
            .arg(m_session.access().visibleCondition(QStringLiteral("c.folder")))
            .arg(completionWindow));
    return database.result(texts);
}

Result<QStringList> Vocabulary::classifyFields()
{
    Database &database = m_session.database();
    Transaction reading(database, Transaction::Kind::Read);
    const DocumentColumns columns = DocumentColumns::load(database);
    const QStringList titles = columns.titles();
    const QStringList keys = columns.keys();
    QStringList fields;
    for (const char *key : {"bemerkung", "status", "folder", "docart", "cdate", "defdate"})
        fields << joinFields({titles.at(keys.indexOf(QLatin1String(key))), QLatin1String(key)});
    for (int i = DocumentColumns::fixedCount; i < keys.size(); ++i)
        fields << joinFields({titles.at(i), keys.at(i)});
    fields << joinFields({QStringLiteral("Rights"), QStringLiteral("rights")});
    return database.result(fields);
}

} // namespace kelva
