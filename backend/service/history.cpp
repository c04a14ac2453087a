#include "service/documentcolumns.h"
#include "service/documents.h"
#include "service/operation.h"
#include "service/records.h"
#include "service/recordvalues.h"
#include "store/textmatch.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

namespace kelva {
namespace {

/// Names that the ids of a record stand for, as people read them.
class DisplayNames
{
public:
    explicit DisplayNames(Database &database) : m_database(database) {}

    QString folder(const QString &oid)
    {
        if (oid == QLatin1String("0") || oid.isEmpty())
            return QStringLiteral("not assigned");
        return name(QStringLiteral("SELECT name FROM folder WHERE oid = ?"), oid);
    }
    QString status(const QString &id)
    {
        if (id == QLatin1String("-1"))
            return QStringLiteral("deleted");
        if (id == QLatin1String("0"))
            return QStringLiteral("to delete");
        return name(QStringLiteral("SELECT name FROM status WHERE id = ?"), id);
    }
    QString type(const QString &id)
    {
        return name(QStringLiteral("SELECT name FROM document_type WHERE id = ?"), id);
    }

private:
    QString name(const QString &sql, const QString &id)
    {
        const QVariant name = m_database.value(sql, {id});
        return name.isValid() ? name.toString() : id;
    }

    Database &m_database;
};

QString attributeText(const AttributeColumn &attribute, const QJsonValue &value)
{
    if (attribute.kind == AttributeKind::Numeric && value.isDouble())
        return numberText(value.toDouble());
    return value.toVariant().toString();
}

/// One version: the fixed fields as they were stored, and the attributes by id.
QString historyRow(const Query &row, const DocumentColumns &columns, DisplayNames *names,
                   const QString &documentId)
{
    enum {
        Number,
        MainFolder,
        Description,
        Status,
        Folder,
        Type,
        User,
        Date,
        Time,
        Resubmission,
        AttributeValues
    };
    QStringList fields{documentId,
                       names->folder(row.text(MainFolder)),
                       row.text(Description),
                       names->status(row.text(Status)),
                       versionToken(row.number(Number)),
                       names->folder(row.text(Folder)),
                       names->type(row.text(Type)),
                       row.text(User),
                       row.text(Date),
                       row.text(Time),
                       row.text(Resubmission)};
    const QJsonObject values = QJsonDocument::fromJson(row.text(AttributeValues).toUtf8()).object();
    for (const AttributeColumn &attribute : columns.attributes())
        fields << attributeText(attribute, values.value(QString::number(attribute.id)));
    return joinFields(fields);
}

/// SQL for the attributes of the record itself in the form of its earlier versions.
QString currentAttributes(const DocumentColumns &columns)
{
    // In steps: a function takes no more than 127 arguments.
    constexpr int perStep = 50;
    QString merged = QStringLiteral("'{}'");
    const QVector<AttributeColumn> &attributes = columns.attributes();
    for (int from = 0; from < attributes.size(); from += perStep) {
        QString pairs;
        for (const AttributeColumn &attribute : attributes.mid(from, perStep))
            pairs += QStringLiteral(", '$.%1', %2")
                         .arg(QString::number(attribute.id),
                              attribute.kind == AttributeKind::Numeric
                                  ? QStringLiteral("kelva_number_text(%1)").arg(attribute.column)
                                  : attribute.column); // JSON would cut a number to 15 digits
        merged = QStringLiteral("json_set(%1%2)").arg(merged, pairs);
    }
    return merged;
}

} // namespace

Result<QStringList> Documents::history(const QString &classificationId)
{
    return read(m_session, "Documents::history", [&](Database &database) -> Result<QStringList> {
        const qint64 id = classificationId.toLongLong();
        Query record =
            database.query(QStringLiteral("SELECT document, folder FROM classification WHERE id = ?"), {id});
        if (!record.next() || !m_session.access().maySee(record.text(1)))
            return Error{ErrorCode::NotFound, QStringLiteral("The document does not exist.")};
        const QString documentId = QStringLiteral("%1#%2").arg(record.number(0)).arg(id);
        const DocumentColumns columns = DocumentColumns::load(database);
        DisplayNames names(database);
        const QString versions =
            QStringLiteral("SELECT number, mandant, bemerkung, status, folder, docart, "
                           "changeid, cdate, ctimestamp, defdate, attributes"
                           " FROM revision WHERE classification = ? UNION ALL"
                           " SELECT revision, mandant, bemerkung, status, folder, docart, "
                           "changeid, cdate, ctimestamp, defdate, %1"
                           " FROM classification WHERE id = ? ORDER BY 1");
        QStringList rows;
        for (Query row = database.query(versions.arg(currentAttributes(columns)), {id, id}); row.next();)
            rows << historyRow(row, columns, &names, documentId);
        return rows;
    });
}

} // namespace kelva
