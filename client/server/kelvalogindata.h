#pragma once

#include "server/kelvaprofiledata.h"

#include <QList>
#include <QObject>

class QLocalSocket;
class QWidget;

/// The client side of the conversation with the Connection Manager: one local socket per conversation, one
/// request, one reply. Waits pump events; main thread only.
class kelvaLoginData final : public QObject
{
    Q_OBJECT

public:
    explicit kelvaLoginData(QObject *parent = nullptr);

    /// The only profile, or the one that the user picks in a dialog above parent, which keeps its geometry
    /// when saveGeometry is set. On false message is for the user, unless getIsUserCanceled().
    bool getProfile(kelvaProfileData &profile, QString &message, QWidget *parent, bool saveGeometry);
    /// False with a message when the list cannot be had, false without one when no profile has this id.
    bool getProfileById(kelvaProfileData &profile, QString &message, int id);
    /// Asks the Connection Manager to renew the profile's data block and waits for its answer, whatever that
    /// is. Always 0.
    int reloadProfile(qint64 id);
    /// The Connection Manager keeps this password for the profile from now on, if it kept the old one. False
    /// when it kept another, or none answers: the profile is as it was.
    bool changePassword(qint64 profileId, const QString &oldPassword, const QString &newPassword);
    bool getIsUserCanceled() const { return isUserCanceled; }

    /// What is started when a list of profiles is wanted and no Connection Manager answers. By default the
    /// one that lies beside this program; nothing when there is none.
    void setManagerProgram(const QString &path) { m_managerProgram = path; }

    /// "Kelva-" and the user's id in hexadecimal.
    static QString socketName();

private:
    bool connectOrStart(QLocalSocket &socket);
    bool readProfiles(QLocalSocket &socket, int sizeAttempts, QList<kelvaProfileData> &profiles);
    bool chooseProfile(const QList<kelvaProfileData> &profiles, QWidget *parent, bool saveGeometry,
                       kelvaProfileData &profile);

    bool isUserCanceled = false;
    QString m_managerProgram;
};
