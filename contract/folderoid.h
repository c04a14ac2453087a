#pragma once

#include <QString>

/// Folder oids: dotted paths of decimal numbers such as "3.12.1".
namespace folderoid {

/// All folders: no restriction.
constexpr char all[] = "-1";
/// Documents that are in no folder.
constexpr char notAssigned[] = "0";

/// Decimal numbers with a "." between them.
bool isPath(const QString &oid);

/// Text before the last "."; empty for an oid of one number.
QString parent(const QString &oid);

/// Selects the folder and everything below it; empty for all folders and for an empty oid.
QString subtreeClause(const QString &oid);

} // namespace folderoid
