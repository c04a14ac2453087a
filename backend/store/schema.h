#pragma once

#include "store/result.h"

#include <QString>

namespace kelva {

class Database;

namespace schema {

/// Written into every archive file, so that another application's file is not mistaken for one.
constexpr qint32 applicationId = 0x4b6c7661;

/// The version that this build writes.
int currentVersion();
/// Takes the steps from one version to another, each in a transaction of its own.
Result<void> upgrade(Database &database, int from, int to);

/// Column of the classification table that holds an attribute.
QString attributeColumn(qint64 attributeId);
/// Full-text tables of a text column of the classification table.
QString wordTable(const QString &column);
QString trigramTable(const QString &column);
/// Adds the column of a new attribute, its index and, for free texts, its full-text tables.
void addAttributeColumn(Database &database, qint64 attributeId, const QString &sqlType, bool freeText,
                        bool indexed);

} // namespace schema
} // namespace kelva
