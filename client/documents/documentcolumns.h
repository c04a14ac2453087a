#pragma once

/// Fields of a document row, which are the columns of the document table.
namespace documentcolumn {

enum : int {
    none = -1,
    id = 0,
    mainFolder = 1,
    description = 2,
    status = 3,
    version = 4,
    folder = 5,
    type = 6,
    changeUser = 7,
    date = 8,
    changeTime = 9,
    resubmission = 10,
    /// From here on up: the archive's own attributes.
    firstAttribute = 11,
};

} // namespace documentcolumn

/// Values of the status field with a meaning of their own.
namespace documentstatus {

/// The document waits for its resubmission date.
constexpr char resubmission[] = "2";
/// In the status list: every status.
constexpr char all[] = "-1";
/// In the status list: the open documents, which include the resubmissions that are due.
constexpr char open[] = "1";

} // namespace documentstatus
