#pragma once

#include "manager/profile.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVector>

namespace kelva {

/// One line of a client: "GETPROFILES", "USEPROFILE#pid#id#program[#]", "RELOADPROFILE#id",
/// "CHANGEPASSWORD#id#old#new" with both passwords in Base64, or "SHOWWINDOW", ended by CR LF.
struct Request
{
    enum class Kind {
        ListProfiles,
        UseProfile,     ///< a client has logged in, or is about to
        ReloadProfile,  ///< a client wants the data block as of now
        ChangePassword, ///< a client has changed its user's password
        ShowWindow,     ///< from a second Connection Manager
    };

    Kind kind = Kind::ListProfiles;
    qint64 profileId = -1;
    qint64 pid = 0;
    QString program;
    QString oldPassword;
    QString newPassword;
    /// The profile was the only one, nobody chose it.
    bool wasOnlyOne = false;
};

/// Cuts a connection's bytes into requests, however they arrive. After the first line that is no request it
/// takes nothing more.
class RequestParser
{
public:
    static constexpr int longestLine = 16 * 1024;

    /// The requests that became complete. An error stands in error() from then on.
    QVector<Request> feed(const QByteArray &bytes);
    const QString &error() const { return m_error; }
    /// A request was begun and its end has not come.
    bool isInsideRequest() const { return !m_pending.isEmpty(); }

private:
    bool parse(const QByteArray &line, Request &request);

    QByteArray m_pending;
    QString m_error;
};

/// The answer to "GETPROFILES": the size of the rest (qint64, big-endian), a header text, the profiles.
QByteArray profileListAnswer(const QList<Profile> &profiles);
/// The answer to everything else: one line, ended by CR LF.
QByteArray lineAnswer(const QString &text);

/// Name of the local socket: "Kelva-" and this user's id in hexadecimal.
QString socketName();

} // namespace kelva
