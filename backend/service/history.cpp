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

QString attributeText(const AttributeColumn &attribute, const QVariant &value)
{
    if (attribute.kind == AttributeKind::Numeric && value.type() == QVariant::Double)
        return numberText(value.toDouble());
    return value.toString();
}

/// Places in a row of versions.
enum Column {
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
    AttributeValues ///< of the record itself: the first one
};

/// The fixed fields of one version, as they were stored.
QStringList historyFields(const Query &row, DisplayNames *names, const QString &documentId)
{
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
    return fields;
}

const QString fixedColumns = QStringLiteral(", mandant, bemerkung, status, folder, docart, changeid, cdate,"
                                            " ctimestamp, defdate");

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
        QStringList rows;
        for (Query row = database.query(QStringLiteral("SELECT number") + fixedColumns +
                                            QStringLiteral(", attributes FROM revision"
                                                           " WHERE classification = ? ORDER BY number"),
                                        {id});
             row.next();) {
            QStringList fields = historyFields(row, &names, documentId);
            const QJsonObject values = QJsonDocument::fromJson(row.text(AttributeValues).toUtf8()).object();
            for (const AttributeColumn &attribute : columns.attributes())
                fields << attributeText(attribute, values.value(QString::number(attribute.id)).toVariant());
            rows << joinFields(fields);
        }
        // The latest version is the record itself.
        QString select = QStringLiteral("SELECT revision") + fixedColumns;
        for (const AttributeColumn &attribute : columns.attributes())
            select += QStringLiteral(", ") + attribute.column;
        Query latest = database.query(select + QStringLiteral(" FROM classification WHERE id = ?"), {id});
        if (latest.next()) {
            QStringList fields = historyFields(latest, &names, documentId);
            for (int i = 0; i < columns.attributes().size(); ++i)
                fields << attributeText(columns.attributes().at(i), latest.value(AttributeValues + i));
            rows << joinFields(fields);
        }
        return rows;
    });
}

} // namespace kelva
