#include "server/kelvalogindata.h"

#include "contract/localpeer.h"
#include "server/kelvalogindialog.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDataStream>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QThread>

#include <unistd.h>

namespace {

constexpr int connectTimeoutMs = 50000;
constexpr int attemptMs = 100;
constexpr int listAttempts = 501;
constexpr int listAttemptsById = 101; // shorter than for the chooser, and meant to be
constexpr qint64 largestList = 64 * 1024 * 1024;
constexpr int streamVersion = QDataStream::Qt_4_4;

QString loadFailure()
{
    return QCoreApplication::translate(
        "kelvaLoginData",
        "The profile information could not be loaded. Please start the Connection Manager!");
}

void send(QLocalSocket &socket, const QString &request)
{
    socket.write(request.toUtf8() + "\r\n");
    socket.flush();
}

bool waitForBytes(QLocalSocket &socket, qint64 bytes, int attempts)
{
    for (int i = 0; i < attempts; ++i) {
        if (socket.bytesAvailable() >= bytes)
            return true;
        // A closed socket sends no more: waiting on would only hold up the message.
        if (socket.state() != QLocalSocket::ConnectedState)
            return false;
        QCoreApplication::processEvents();
        socket.waitForReadyRead(attemptMs);
    }
    return socket.bytesAvailable() >= bytes;
}

bool connectToManager(QLocalSocket &socket)
{
    socket.connectToServer(kelvaLoginData::socketName(), QIODevice::ReadWrite);
    // Whoever else answers would be told where to log in, or would tell it.
    return socket.waitForConnected(connectTimeoutMs) && isPeerOfUser(socket);
}

/// The line that answers a request; empty when none came in time.
QString ask(const QString &request)
{
    constexpr qint64 longestAnswer = 1000;
    QLocalSocket socket;
    if (!connectToManager(socket))
        return {};
    send(socket, request);
    waitForBytes(socket, 1, listAttempts);
    return QString::fromUtf8(socket.readLine(longestAnswer)).trimmed();
}

} // namespace

kelvaLoginData::kelvaLoginData(QObject *parent)
    : QObject(parent),
      m_managerProgram(QCoreApplication::applicationDirPath() + QStringLiteral("/kelvamanager"))
{
}

bool kelvaLoginData::connectOrStart(QLocalSocket &socket)
{
    constexpr qint64 startTimeoutMs = 10000;
    constexpr unsigned long retryMs = 50;
    if (connectToManager(socket))
        return true;
    // One that answers and is another user's stays where it is.
    if (socket.state() == QLocalSocket::ConnectedState || !QFileInfo(m_managerProgram).isExecutable())
        return false;
    QProcess manager;
    manager.setProgram(m_managerProgram);
    manager.setArguments({QStringLiteral("--no-window")});
    manager.setStandardOutputFile(QProcess::nullDevice());
    manager.setStandardErrorFile(QProcess::nullDevice());
    if (!manager.startDetached())
        return false;
    QElapsedTimer since;
    since.start();
    while (since.elapsed() < startTimeoutMs) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        socket.abort();
        if (connectToManager(socket))
            return true;
        QThread::msleep(retryMs);
    }
    return false;
}

QString kelvaLoginData::socketName()
{
    return QStringLiteral("Kelva-") + QString::number(getuid(), 16);
}

bool kelvaLoginData::readProfiles(QLocalSocket &socket, int sizeAttempts, QList<kelvaProfileData> &profiles)
{
    if (!connectOrStart(socket))
        return false;
    send(socket, QStringLiteral("GETPROFILES"));
    if (!waitForBytes(socket, qint64(sizeof(qint64)), sizeAttempts))
        return false;
    QDataStream stream(&socket);
    stream.setVersion(streamVersion);
    qint64 size = 0;
    stream >> size;
    if (size <= 0 || size > largestList || !waitForBytes(socket, size, listAttempts))
        return false;
    QBuffer frame; // what comes behind the announced size is not of the list
    frame.setData(socket.read(size));
    frame.open(QIODevice::ReadOnly);
    QDataStream list(&frame);
    list.setVersion(streamVersion);
    QString header;
    list >> header;
    while (!list.atEnd()) {
        kelvaProfileData profile;
        list >> profile;
        // Half a record is no profile, and what follows it cannot be told apart any more.
        if (list.status() != QDataStream::Ok)
            return false;
        profiles.append(profile);
    }
    return list.status() == QDataStream::Ok;
}

bool kelvaLoginData::getProfile(kelvaProfileData &profile, QString &message, QWidget *parent,
                                bool saveGeometry)
{
    isUserCanceled = false;
    QLocalSocket socket;
    QList<kelvaProfileData> profiles;
    if (!readProfiles(socket, listAttempts, profiles)) {
        socket.close();
        message = loadFailure();
        return false;
    }
    if (profiles.isEmpty()) {
        message =
            tr("You are not connected to any profile. Please connect using the Connection Manager Kelva!");
        socket.close();
        return false;
    }
    // The trailing "#" tells the Connection Manager that there was nothing to choose.
    QString request = QStringLiteral("USEPROFILE#%1#%2#%3#");
    if (profiles.size() == 1) {
        profile = profiles.first();
    } else {
        if (!chooseProfile(profiles, parent, saveGeometry, profile))
            return false;
        request.chop(1);
    }
    send(socket, request.arg(QString::number(QCoreApplication::applicationPid()), QString::number(profile.id),
                             QCoreApplication::applicationFilePath()));
    socket.waitForBytesWritten(10000);
    socket.readLine();
    socket.close();
    return true;
}

bool kelvaLoginData::chooseProfile(const QList<kelvaProfileData> &profiles, QWidget *parent,
                                   bool saveGeometry, kelvaProfileData &profile)
{
    QStringList names;
    for (const kelvaProfileData &candidate : profiles)
        names << candidate.name;
    kelvaLoginDialog dialog(parent, saveGeometry);
    dialog.setProfiles(names);
    const int index = dialog.exec() == QDialog::Accepted ? dialog.getProfileIndex() : -1;
    if (index < 0 || index >= profiles.size()) {
        isUserCanceled = true;
        return false;
    }
    profile = profiles.at(index);
    return true;
}

bool kelvaLoginData::getProfileById(kelvaProfileData &profile, QString &message, int id)
{
    QLocalSocket socket;
    QList<kelvaProfileData> profiles;
    if (!readProfiles(socket, listAttemptsById, profiles)) {
        socket.close();
        message = loadFailure();
        return false;
    }
    socket.close();
    for (const kelvaProfileData &candidate : qAsConst(profiles))
        if (candidate.id == id) // of equal ids the last one wins
            profile = candidate;
    return profile.id == id;
}

int kelvaLoginData::reloadProfile(qint64 id)
{
    ask(QStringLiteral("RELOADPROFILE#%1").arg(id));
    return 0;
}

bool kelvaLoginData::changePassword(qint64 profileId, const QString &oldPassword, const QString &newPassword)
{
    const auto encoded = [](const QString &text) { return QString::fromLatin1(text.toUtf8().toBase64()); };
    return ask(QStringLiteral("CHANGEPASSWORD#%1#%2#%3")
                   .arg(QString::number(profileId), encoded(oldPassword), encoded(newPassword))) ==
           QLatin1String("OK");
}
