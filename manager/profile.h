#pragma once

#include "store/result.h"

#include <QMetaType>
#include <QString>
#include <QStringList>

class QDataStream;

namespace kelva {

/// A connection profile: which archive to log in to, and as whom.
struct Profile
{
    /// Given by the store and never reused; fits an int. -1: not stored yet.
    qint64 id = -1;
    QString name;
    QString host;
    QString port; ///< decimal; of "localhost" the number of the archive
    QString user;
    QString password; ///< in the clear
    bool flag = false;
    /// Records of name and key, joined by the field separator, as the archive listed them.
    QStringList archives;
    int archiveIndex = 0;
    QString displayLine1; ///< splash, About box and window title
    QString displayLine2; ///< splash and About box
    QStringList extraList1;
    QStringList extraList2;

    /// Of the chosen archive; empty when the index points outside the list.
    QString archiveName() const;
    QString archiveKey() const;
    /// Name of the shared memory segment that carries this profile's data block.
    QString blockKey() const;
};

bool operator==(const Profile &a, const Profile &b);
inline bool operator!=(const Profile &a, const Profile &b)
{
    return !(a == b);
}

/// Writes the fields in the order of the struct, as the clients read them.
QDataStream &operator<<(QDataStream &stream, const Profile &profile);

/// What a user fills in.
enum class ProfileField { Name, Host, Port, User, Password, Archive, Line1, Line2 };

/// Tidies what was typed: outer blanks of the texts, leading zeros of the port.
Profile tidied(Profile profile);
/// The first thing that is wrong with a profile by itself, as a sentence for whoever filled it in.
Result<void> validate(const Profile &profile, ProfileField *atFault = nullptr);
/// Path of the archive's file.
Result<QString> archiveFile(const Profile &profile);

} // namespace kelva

Q_DECLARE_METATYPE(kelva::Profile)
