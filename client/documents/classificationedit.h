#pragma once

#include <QString>
#include <QStringList>

/// Changes to a record of getDocument() without its element 0, so that element n is table column n + 1.
namespace classificationedit {

enum : int {
    mainFolder = 0,
    description = 1,
    status = 2,
    version = 3,
    folder = 4,
    type = 5,
    date = 7,
    resubmission = 9
};

/// A list that is too short grows there by the one element.
void replaceField(QStringList &fields, int position, const QString &value);

/// Folder of column 1 for a folder. By position, and meant for a first level of one digit: "1.3.7" gives
/// "1.3", "12.3.7" gives "2.3".
QString derivedMainFolder(const QString &oid);

/// Moves the record to a folder, and to that folder's main folder when it is another one.
void moveToFolder(QStringList &fields, const QString &oid);

/// Any status but resubmission empties the date of resubmission.
void setStatus(QStringList &fields, const QString &newStatus, const QString &resubmissionDate);

/// A value of a table column from the change time up; a resubmission date makes it a resubmission.
void setColumn(QStringList &fields, int column, const QString &value);

/// Whether a value that stands for a folder is a status: "0." and its id.
bool isStatusNode(const QString &oid);
QString statusOfNode(const QString &oid);

} // namespace classificationedit
