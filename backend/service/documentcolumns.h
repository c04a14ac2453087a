#pragma once

#include "clause/clause.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace kelva {

class Database;
class Row;

enum class AttributeKind { String, ComboBox, CheckBox, Date, Numeric };

QString attributeKindName(AttributeKind kind);
std::optional<AttributeKind> attributeKind(const QString &name);

struct AttributeColumn
{
    qint64 id = 0;
    QString name;
    AttributeKind kind = AttributeKind::String;
    QString column; ///< in the table of records; also the key in clauses
};

/// The columns of lists, records and histories, which are also the keys of clauses: eleven fixed ones, then
/// the active attributes by id. Tables carry the alias "c" in all SQL from here.
class DocumentColumns
{
public:
    static constexpr int fixedCount = 11;

    /// Every attribute, active or not.
    static QVector<AttributeColumn> allAttributes(Database &database);
    static DocumentColumns load(Database &database);
    /// With these attributes, active or not, in this order.
    static DocumentColumns withAttributes(Database &database, const QVector<qint64> &ids);

    /// One title and one key per column; the rights letters have neither.
    QStringList titles() const;
    QStringList keys() const;
    const QVector<AttributeColumn> &attributes() const { return m_attributes; }
    QVector<qint64> attributeIds() const;

    /// What a SELECT begins with whose rows rowText() makes records of.
    QStringList rowColumns() const;
    QString rowText(const Row &row) const;
    /// With resubmissionDue, records whose resubmission date has come by then count as status 1.
    ClauseFields clauseFields(const QDate &resubmissionDue = QDate()) const;

private:
    QVector<AttributeColumn> m_attributes;
};

} // namespace kelva
