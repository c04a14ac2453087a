#include "service/vocabulary.h"

#include "service/documentcolumns.h"
#include "service/operation.h"
#include "service/recordvalues.h"
#include "service/retention.h"

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

/// Returns the type's id.
Result<qint64> saveType(Session &session, int position, const QStringList &fields, const QByteArray &picture)
{
    Database &database = session.database();
    const QVariant name = storedText(fields.at(1), maximumName);
    const Result<RetentionSpan> span = RetentionSpan::parse(fields.at(2));
    if (!span)
        return span.error();
    bool isNumber = false;
    qint64 id = fields.at(0).toLongLong(&isNumber);
    if (!isNumber || id < 0) {
        id = database.insert(QStringLiteral("INSERT INTO document_type(name, position) VALUES(?, ?)"),
                             {name, position});
    } else {
        Query old = database.query(
            QStringLiteral("SELECT years, months, days FROM document_type WHERE id = ?"), {id});
        if (!old.next())
            return Error{ErrorCode::NotFound, QStringLiteral("The document type %1 does not exist.").arg(id)};
        if (const Result<void> allowed =
                checkNewSpan(session, id, fields.at(1), RetentionSpan::of(old, 0), span.value());
            !allowed)
            return allowed.error();
    }
    database.run(
        QStringLiteral("UPDATE document_type SET name = ?, position = ?, years = ?, months = ?, days = ?,"
                       " picture = ? WHERE id = ?"),
        {name, position, span.value().years, span.value().months, span.value().days, picture, id});
    return id;
}

} // namespace

Result<Records> Vocabulary::status()
{
    return read(m_session, "Vocabulary::status", [&](Database &database) -> Result<Records> {
        Records records;
        for (Query row =
                 database.query(QStringLiteral("SELECT id, name, picture FROM status ORDER BY position, id"));
             row.next();)
            records.add({row.text(0), row.text(1)}, row.bytes(2));
        return records;
    });
}

Result<void> Vocabulary::saveStatus(const Records &records)
{
    return change(m_session, "Vocabulary::saveStatus", [&](Database &database) -> Result<void> {
        QSet<qint64> kept;
        for (int i = 0; i < records.rows.size(); ++i) {
            const QStringList fields = records.fields(i, 2);
            const QVariant name = storedText(fields.at(1), maximumName);
            const QByteArray picture = records.pictures.value(i);
            if (fields.at(0).isEmpty()) {
                kept.insert(database.insert(
                    QStringLiteral("INSERT INTO status(name, position, picture) VALUES(?, ?, ?)"),
                    {name, i, picture}));
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
        m_session.noteVocabularyChange();
        return removeMissing(database, QStringLiteral("status"), QStringLiteral("status"), kept);
    });
}

Result<Records> Vocabulary::types()
{
    return read(m_session, "Vocabulary::types", [&](Database &database) -> Result<Records> {
        Records records;
        for (Query row = database.query(
                 QStringLiteral("SELECT id, name, years, months, days, picture FROM document_type"
                                " ORDER BY position, id"));
             row.next();)
            records.add({row.text(0), row.text(1), RetentionSpan::of(row, 2).text()}, row.bytes(5));
        return records;
    });
}

Result<void> Vocabulary::saveTypes(const Records &records)
{
    return change(m_session, "Vocabulary::saveTypes", [&](Database &database) -> Result<void> {
        QSet<qint64> kept{0};
        for (int i = 0; i < records.rows.size(); ++i) {
            const Result<qint64> id = saveType(m_session, i, records.fields(i, 3), records.pictures.value(i));
            if (!id)
                return id.error();
            kept.insert(id.value());
        }
        m_session.noteVocabularyChange();
        return removeMissing(database, QStringLiteral("document_type"), QStringLiteral("docart"), kept);
    });
}

Result<QStringList> Vocabulary::dateBounds()
{
    return read(m_session, "Vocabulary::dateBounds", [&](Database &database) -> Result<QStringList> {
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
        return bounds;
    });
}

Result<QStringList> Vocabulary::descriptions()
{
    return read(m_session, "Vocabulary::descriptions", [&](Database &database) -> Result<QStringList> {
        return database.texts(
            QStringLiteral("SELECT DISTINCT bemerkung FROM (SELECT c.bemerkung FROM classification c %1"
                           " WHERE c.trashed = 0 AND %2 ORDER BY c.id DESC LIMIT %3) AS newest WHERE "
                           "bemerkung <> '' ORDER BY 1")
                .arg(sql::byRowId(), m_session.access().visibleCondition(QStringLiteral("c.folder")))
                .arg(completionWindow));
    });
}

Result<QStringList> Vocabulary::classifyFields()
{
    return read(m_session, "Vocabulary::classifyFields", [&](Database &database) -> Result<QStringList> {
        const DocumentColumns columns = DocumentColumns::load(database);
        const QStringList titles = columns.titles();
        const QStringList keys = columns.keys();
        QStringList fields;
        for (const char *key : {"bemerkung", "status", "folder", "docart", "cdate", "defdate"})
            fields << joinFields({titles.at(keys.indexOf(QLatin1String(key))), QLatin1String(key)});
        for (int i = DocumentColumns::fixedCount; i < keys.size(); ++i)
            fields << joinFields({titles.at(i), keys.at(i)});
        fields << joinFields({QStringLiteral("Rights"), QStringLiteral("rights")});
        return fields;
    });
}

} // namespace kelva
