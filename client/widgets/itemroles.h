#pragma once

/// Item data roles of the document table and of the lists beside it.
namespace itemrole {

enum : int {
    /// Folder and list items: id of the stored record.
    storedId = 256,
    /// Raw value of a cell, before display text replaces it; of a status entry its id.
    rawValue = 257,
    /// Stored searches: their rows.
    content = 258,
    /// Stored searches: the roles they are open to. Roles in a list: the mark "R".
    roles = 259,
    /// Number of a group of filters.
    filterGroup = 261,
    /// Column 0: classification id, as text.
    classificationId = 266,
    /// True in a numeric column.
    numeric = 267,
    /// 1 in a row that may not be written, else 0.
    readOnly = 268,
    /// True where a retention period is in force.
    retention = 1700,
    /// Date up to which it runs.
    retentionEnd = 1701,
};

} // namespace itemrole
