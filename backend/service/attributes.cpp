#include "service/attributes.h"

#include "service/documentcolumns.h"
#include "service/operation.h"
#include "service/records.h"
#include "service/recordvalues.h"
#include "store/schema.h"

namespace kelva {
namespace {

constexpr int maximumName = 254;
/// Each attribute is a column of one table and an argument of one SQL function.
constexpr int maximumAttributes = 100;

QString flagText(bool flag)
{
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

bool isSet(const QString &flag)
{
    return flag == QLatin1String("true");
}

void addColumn(Database &database, qint64 id, AttributeKind kind)
{
    switch (kind) {
    case AttributeKind::Numeric:
        schema::addAttributeColumn(database, id, QStringLiteral("REAL"), false, true);
        break;
    case AttributeKind::CheckBox:
        schema::addAttributeColumn(database, id, QStringLiteral("TEXT"), false, false);
        break;
    case AttributeKind::String:
        schema::addAttributeColumn(database, id, QStringLiteral("TEXT NOT NULL DEFAULT ''"), true, true);
        break;
    case AttributeKind::ComboBox:
    case AttributeKind::Date:
        schema::addAttributeColumn(database, id, QStringLiteral("TEXT NOT NULL DEFAULT ''"), false, true);
        break;
    }
}

/// made: ids of new attributes by the negative ones that they came with.
Result<void> saveAttribute(Database &database, const QStringList &fields, QHash<qint64, qint64> *made)
{
    bool isNumber = false;
    const qint64 id = fields.value(0).toLongLong(&isNumber);
    const QVariant name = storedText(fields.value(1), maximumName);
    if (!isNumber || name.toString().trimmed().isEmpty())
        return Error{ErrorCode::BadInput, QStringLiteral("The attribute needs a name.")};
    const int notUnique = isSet(fields.value(3)) ? 1 : 0;
    const int notActive = isSet(fields.value(4)) ? 1 : 0;
    if (id >= 0) {
        // The kind stays what it is: the values are of that kind.
        database.run(
            QStringLiteral("UPDATE attribute SET name = ?, not_unique = ?, not_active = ? WHERE id = ?"),
            {name, notUnique, notActive, id});
        if (database.affected() == 0)
            return Error{ErrorCode::NotFound, QStringLiteral("The attribute %1 does not exist.").arg(id)};
        return {};
    }
    const std::optional<AttributeKind> kind = attributeKind(fields.value(2));
    if (!kind)
        return Error{
            ErrorCode::BadInput,
            QStringLiteral("There are no attributes of the kind \"%1\".").arg(fields.value(2).left(40))};
    const qint64 newId = database.insert(
        QStringLiteral("INSERT INTO attribute(name, kind, not_unique, not_active) VALUES(?, ?, ?, ?)"),
        {name, attributeKindName(*kind), notUnique, notActive});
    made->insert(id, newId);
    addColumn(database, newId, *kind);
    return {};
}

} // namespace

Result<QStringList> Attributes::list()
{
    return read(m_session, "Attributes::list", [&](Database &database) -> Result<QStringList> {
        QStringList records;
        for (Query row = database.query(
                 QStringLiteral("SELECT id, name, kind, not_unique, not_active FROM attribute ORDER BY id"));
             row.next();)
            records << joinFields(
                {row.text(0), row.text(1), row.text(2), flagText(row.flag(3)), flagText(row.flag(4))});
        return records;
    });
}

Result<QHash<qint64, qint64>> Attributes::save(const QStringList &records)
{
    using Made = QHash<qint64, qint64>;
    return change(m_session, "Attributes::save", [&](Database &database) -> Result<Made> {
        Made made;
        for (const QString &record : records)
            if (const Result<void> saved = saveAttribute(database, splitFields(record), &made); !saved)
                return saved.error();
        if (database.value(QStringLiteral("SELECT count(*) FROM attribute")).toInt() > maximumAttributes)
            return Error{ErrorCode::BadInput,
                         QStringLiteral("There can be no more than %1 attributes.").arg(maximumAttributes)};
        m_session.noteVocabularyChange();
        return made;
    });
}

Result<QStringList> Attributes::values(qint64 id)
{
    return read(m_session, "Attributes::values", [&](Database &database) -> Result<QStringList> {
        return database.texts(
            QStringLiteral("SELECT value FROM attribute_value WHERE attribute = ? ORDER BY position"), {id});
    });
}

Result<void> Attributes::saveValues(qint64 id, const QStringList &nameAndValues)
{
    return change(m_session, "Attributes::saveValues", [&](Database &database) -> Result<void> {
        if (!database.value(QStringLiteral("SELECT 1 FROM attribute WHERE id = ?"), {id}).isValid())
            return Error{ErrorCode::NotFound, QStringLiteral("The attribute %1 does not exist.").arg(id)};
        database.run(QStringLiteral("DELETE FROM attribute_value WHERE attribute = ?"), {id});
        for (int i = 1; i < nameAndValues.size(); ++i)
            database.run(
                QStringLiteral("INSERT INTO attribute_value(attribute, position, value) VALUES(?, ?, ?)"),
                {id, i, storedText(nameAndValues.at(i))});
        m_session.noteVocabularyChange();
        return {};
    });
}

} // namespace kelva
