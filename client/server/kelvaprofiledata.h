#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

class QDataStream;

/// A connection profile as the Connection Manager keeps it. The fields stand in the order of the wire.
class kelvaProfileData final
{
public:
    /// -1: a profile that was never read. An id of 0 is a valid one.
    qint64 id = -1;
    QString name;
    QString host;
    /// Decimal.
    QString port;
    QString user;
    /// In the clear.
    QString password;
    bool flag = false;
    /// Display name and key of the archive, joined by recordformat::fieldSeparator; empty when the profile's
    /// index points outside its archive list. List and index themselves are on the wire only.
    QString archiveEntry;
    QString displayLine1;
    QString displayLine2;
    QStringList extraList1;
    QStringList extraList2;
};

/// Reads one profile. Check the stream's status: after a short read the profile is incomplete.
QDataStream &operator>>(QDataStream &stream, kelvaProfileData &profile);

Q_DECLARE_METATYPE(kelvaProfileData)
