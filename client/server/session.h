#pragma once

#include "server/kelvaprofiledata.h"

#include <QString>
#include <QStringList>

/// Who works with which archive: what plug-ins, administration and links ask for. Filled at the login; the
/// window owns it and lends it.
struct Session
{
    kelvaProfileData profile; ///< empty while offline
    QString host;
    int port = 0;
    QString login;
    QString password; ///< in the clear, as the services take it
    /// Names of rights and roles.
    QStringList rights;
    /// Reads an archive on a medium: no login, nothing is written.
    bool offline = false;

    bool mayDo(const char *right) const { return rights.contains(QLatin1String(right)); }
    /// Prefix of the settings that are kept for each profile. numberOfProfile is the service's.
    QString settingsPrefix(qint64 numberOfProfile) const
    {
        return QStringLiteral("kelvaClientSettings1408_%1_%2_%3").arg(host).arg(port).arg(numberOfProfile);
    }
};
