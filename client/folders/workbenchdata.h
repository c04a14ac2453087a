#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/// The session's vocabulary as the Connection Manager lays it down in shared memory. Records are texts with
/// their fields joined by recordformat::fieldSeparator.
struct WorkbenchData
{
    QStringList searchColumns; ///< title and field key, in the order of the table's columns, one row too many
    /// Attributes by table column: offered values joined by recordformat::listSeparator. A line that holds
    /// the value "type:Numeric" is a number.
    QMap<int, QString> comboColumns;
    QMap<int, QString> lineColumns;
    QMap<int, QString> checkColumns;
    QMap<int, QString> dateColumns;
    QStringList mainFolders; ///< oid, name
    QStringList status;      ///< id, name
    QStringList types;       ///< id, name, retention "years;months;days"
    QStringList folders;     ///< folder records
    /// PNG data, parallel to the record lists.
    QList<QByteArray> mainFolderPictures;
    QList<QByteArray> statusPictures;
    QList<QByteArray> typePictures;
    QList<QByteArray> folderPictures;

    /// Document type to retention, from the types that have one.
    QMap<QString, QString> retentionByType() const;
};

/// Name of the shared memory segment of one session.
QString workbenchKey(const QString &login, const QString &host, int port, qint64 profileId);

/// Reads the data block; bytes behind it don't matter. False, and data in no particular state, when the block
/// is short, of another layout, or names columns that cannot be attributes.
bool parseWorkbenchData(const QByteArray &block, WorkbenchData &data);

/// Copies the segment and parses it. False when there is none, when it is not of this user, stays locked, or
/// holds no valid block; fault then says what stands in the way, if anything more than that it is not there.
bool readWorkbenchData(const QString &key, WorkbenchData &data, QString *fault = nullptr);
