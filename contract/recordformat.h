#pragma once

#include <QChar>
#include <QStringList>

/// How records and lists are written into texts wherever data crosses the service interfaces.
namespace recordformat {

/// Between the fields of a record. Empty fields count: split with Qt::KeepEmptyParts.
constexpr QChar fieldSeparator{0xFEFF};
/// Between the values of a list inside one field, and between the fields of a stored search row.
constexpr QChar listSeparator{0xFFFD};
/// Between the rows of a stored search.
constexpr QChar rowSeparator{0xFFFC};
/// Between archive id and classification id in a document id.
constexpr QChar documentIdSeparator{u'#'};

/// Many entries are a key and a text, or one that is both.
inline QString secondOrOnly(const QStringList &fields)
{
    return fields.value(fields.size() > 1 ? 1 : 0);
}

} // namespace recordformat
