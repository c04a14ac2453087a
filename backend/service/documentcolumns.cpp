#include "service/documentcolumns.h"

#include "contract/recordformat.h"
#include "service/recordvalues.h"
#include "store/database.h"
#include "store/schema.h"
#include "store/textmatch.h"

#include <iterator>

namespace kelva {
namespace {

struct KindName
{
    AttributeKind kind;
    QLatin1String name;
};

const KindName kindNames[] = {
    {AttributeKind::String, QLatin1String("String")},
    {AttributeKind::ComboBox, QLatin1String("ComboBox")},
    {AttributeKind::CheckBox, QLatin1String("CheckBox")},
    {AttributeKind::Date, QLatin1String("Date")},
    {AttributeKind::Numeric, QLatin1String("Numeric")},
};

FieldType fieldType(AttributeKind kind)
{
    // A date attribute that was never filled holds an empty text, so it is compared as the text it is.
    return kind == AttributeKind::Numeric ? FieldType::Number : FieldType::Text;
}

} // namespace

QString attributeKindName(AttributeKind kind)
{
    for (const KindName &entry : kindNames)
        if (entry.kind == kind)
            return entry.name;
    return {};
}

std::optional<AttributeKind> attributeKind(const QString &name)
{
    for (const KindName &entry : kindNames)
        if (entry.name == name)
            return entry.kind;
    return {};
}

QVector<AttributeColumn> DocumentColumns::allAttributes(Database &database)
{
    QVector<AttributeColumn> list;
    for (Query row = database.query(QStringLiteral("SELECT id, name, kind FROM attribute ORDER BY id"));
         row.next();)
        list.append({row.number(0), row.text(1), attributeKind(row.text(2)).value_or(AttributeKind::String),
                     schema::attributeColumn(row.number(0))});
    return list;
}

DocumentColumns DocumentColumns::load(Database &database)
{
    DocumentColumns columns;
    const QStringList active =
        database.texts(QStringLiteral("SELECT id FROM attribute WHERE not_active = 0 ORDER BY id"));
    if (active.isEmpty())
        return columns;
    for (const AttributeColumn &attribute : allAttributes(database))
        if (active.contains(QString::number(attribute.id)))
            columns.m_attributes.append(attribute);
    return columns;
}

DocumentColumns DocumentColumns::withAttributes(Database &database, const QVector<qint64> &ids)
{
    DocumentColumns columns;
    const QVector<AttributeColumn> all = allAttributes(database);
    for (const qint64 id : ids)
        for (const AttributeColumn &attribute : all)
            if (attribute.id == id)
                columns.m_attributes.append(attribute);
    return columns;
}

QVector<qint64> DocumentColumns::attributeIds() const
{
    QVector<qint64> ids;
    for (const AttributeColumn &attribute : m_attributes)
        ids.append(attribute.id);
    return ids;
}

QStringList DocumentColumns::titles() const
{
    QStringList titles{
        QStringLiteral("Document"), QStringLiteral("Main folder"), QStringLiteral("Description"),
        QStringLiteral("Status"),   QStringLiteral("Version"),     QStringLiteral("Folder"),
        QStringLiteral("Type"),     QStringLiteral("Changed by"),  QStringLiteral("Date"),
        QStringLiteral("Changed"),  QStringLiteral("Resubmission")};
    for (const AttributeColumn &attribute : m_attributes)
        titles << attribute.name;
    return titles;
}

QStringList DocumentColumns::keys() const
{
    QStringList keys{QStringLiteral("docid"),      QStringLiteral("mandant"),  QStringLiteral("bemerkung"),
                     QStringLiteral("status"),     QStringLiteral("version"),  QStringLiteral("folder"),
                     QStringLiteral("docart"),     QStringLiteral("changeid"), QStringLiteral("cdate"),
                     QStringLiteral("ctimestamp"), QStringLiteral("defdate")};
    for (const AttributeColumn &attribute : m_attributes)
        keys << attribute.column;
    return keys;
}

QStringList DocumentColumns::rowColumns() const
{
    QStringList columns{
        QStringLiteral("c.document"),  QStringLiteral("c.id"),         QStringLiteral("c.mandant"),
        QStringLiteral("c.bemerkung"), QStringLiteral("c.status"),     QStringLiteral("c.revision"),
        QStringLiteral("c.folder"),    QStringLiteral("c.docart"),     QStringLiteral("c.changeid"),
        QStringLiteral("c.cdate"),     QStringLiteral("c.ctimestamp"), QStringLiteral("c.defdate")};
    for (const AttributeColumn &attribute : m_attributes)
        columns << QStringLiteral("c.") + attribute.column;
    return columns;
}

QString DocumentColumns::rowText(const Row &row) const
{
    static const QByteArray separator = QString(recordformat::fieldSeparator).toUtf8();
    static const QByteArray idSeparator = QString(recordformat::documentIdSeparator).toUtf8();
    constexpr int classificationId = 1;
    constexpr int revision = 5;
    constexpr int firstAttribute = fixedCount + 1; // the document's id is two columns
    // In the bytes that the database has, and made a text once.
    QByteArray text;
    row.appendTo(&text, 0);
    for (int column = 1; column < firstAttribute + m_attributes.size(); ++column) {
        text += column == classificationId ? idSeparator : separator;
        const bool isNumber = column >= firstAttribute &&
                              m_attributes.at(column - firstAttribute).kind == AttributeKind::Numeric;
        if (column == revision)
            text += versionToken(row.number(column)).toUtf8();
        else if (!isNumber)
            row.appendTo(&text, column);
        else if (!row.isNull(column))
            text += numberText(row.fraction(column)).toUtf8();
    }
    return QString::fromUtf8(text);
}

ClauseFields DocumentColumns::clauseFields(const QDate &resubmissionDue) const
{
    const auto field = [](FieldType type, const char *column) {
        return ClauseField{type, QString::fromLatin1(column), {}, {}};
    };
    ClauseFields fields;
    fields.rowIdColumn = QStringLiteral("c.id");
    fields.byKey = {
        {QStringLiteral("docid"), field(FieldType::Integer, "c.document")},
        {QStringLiteral("docs_id"), field(FieldType::Integer, "c.id")},
        {QStringLiteral("mandant"), field(FieldType::Text, "c.mandant")},
        {QStringLiteral("bemerkung"), field(FieldType::Text, "c.bemerkung")},
        {QStringLiteral("status"), field(FieldType::Integer, "c.status")},
        {QStringLiteral("version"), field(FieldType::Text, "c.version")},
        {QStringLiteral("folder"), field(FieldType::Text, "c.folder")},
        {QStringLiteral("docart"), field(FieldType::Integer, "c.docart")},
        {QStringLiteral("changeid"), field(FieldType::Text, "c.changeid")},
        {QStringLiteral("cdate"), field(FieldType::Date, "c.cdate")},
        {QStringLiteral("ctimestamp"), field(FieldType::Timestamp, "c.ctimestamp")},
        {QStringLiteral("defdate"), field(FieldType::Date, "c.defdate")},
        {QStringLiteral("trashed"), field(FieldType::Boolean, "c.trashed")},
    };
    ClauseField &description = fields.byKey[QStringLiteral("bemerkung")];
    description.wordTable = schema::wordTable(QStringLiteral("bemerkung"));
    description.trigramTable = schema::trigramTable(QStringLiteral("bemerkung"));
    if (resubmissionDue.isValid())
        fields.byKey[QStringLiteral("status")].column =
            QStringLiteral("(CASE WHEN c.status = 2 AND c.defdate <= '%1' THEN 1 ELSE c.status END)")
                .arg(resubmissionDue.toString(Qt::ISODate));
    for (const AttributeColumn &attribute : m_attributes) {
        ClauseField entry{fieldType(attribute.kind), QStringLiteral("c.") + attribute.column, {}, {}};
        if (attribute.kind == AttributeKind::String) {
            entry.wordTable = schema::wordTable(attribute.column);
            entry.trigramTable = schema::trigramTable(attribute.column);
        }
        fields.byKey.insert(attribute.column, entry);
    }
    return fields;
}

} // namespace kelva
