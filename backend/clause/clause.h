#pragma once

#include "store/result.h"
#include "store/sql.h"

#include <QDate>
#include <QHash>
#include <QString>
#include <QVariantList>

namespace kelva {

enum class FieldType {
    Integer,
    Number, ///< a numeric attribute; NULL when empty
    Text,
    Date,      ///< stored as "yyyy-MM-dd"; NULL when empty
    Timestamp, ///< stored as "yyyy-MM-ddTHH:mm:ss"
    Boolean,   ///< stored as 0 and 1
};

/// One field that a clause may name. All SQL in it is written by us, never taken from a user.
struct ClauseField
{
    FieldType type = FieldType::Text;
    QString column;       ///< qualified column, such as "c.folder", or another expression in parentheses
    QString wordTable;    ///< full-text table of the field's words, or empty
    QString trigramTable; ///< full-text table of the field's trigrams, or empty
};

/// The fields that are known, by key in any case, and the column that the row ids of their full-text tables
/// refer to.
struct ClauseFields
{
    QHash<QString, ClauseField> byKey;
    QString rowIdColumn; ///< such as "c.id"
};

/// One where clause as SQL, in parentheses already. It is true for the records that fulfil the clause, and
/// false or NULL for all others, so it must not be negated. It calls the functions of store/sqlfunctions.h.
/// Date macros are taken relative to today. A clause outside the dialect, or one
/// that names an unknown field or compares what cannot be compared, is a BadInput whose text says where.
Result<SqlCondition> translateClause(const QString &clause, const ClauseFields &fields, const QDate &today);

} // namespace kelva
