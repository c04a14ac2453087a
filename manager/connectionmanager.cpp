#include "manager/connectionmanager.h"

#include <QFileInfo>
#include <QMetaMethod>

#include <cerrno>
#include <csignal>

namespace kelva {
namespace {

/// Clients give up on the list after 10 seconds, on the line after about 50.
constexpr int listTimeoutMs = 7000;
constexpr int lineTimeoutMs = 40000;

bool isRunning(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

} // namespace

ConnectionManager::ConnectionManager(ProfileStore &store, QObject *parent)
    : QObject(parent),
      m_store(store),
      m_server([this](const Request &request, const Answer &answer) { handle(request, answer); })
{
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &ConnectionManager::followFile);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &ConnectionManager::followFile);
}

Result<void> ConnectionManager::start()
{
    if (const Result<void> listening = m_server.listen(); !listening)
        return listening;
    // So that it can be watched; whoever adds the first profile hears when that fails.
    const Result<void> prepared = m_store.prepareDirectory();
    Q_UNUSED(prepared)
    followFile();
    return {};
}

bool ConnectionManager::stop(int timeoutMs)
{
    m_server.close();
    return m_blocks.finish(timeoutMs);
}

void ConnectionManager::followFile()
{
    watchFile();
    const Result<QList<Profile>> loaded = m_store.load();
    const QString fault = loaded ? QString() : loaded.error().text;
    if (fault == m_fault && (!loaded || loaded.value() == m_profiles))
        return;
    m_fault = fault;
    if (loaded)
        m_profiles = loaded.value();
    m_blocks.setProfiles(m_profiles);
    emit profilesChanged();
}

int ConnectionManager::usersOf(qint64 profileId) const
{
    int users = 0;
    for (auto it = m_profileOfProgram.begin(); it != m_profileOfProgram.end(); ++it)
        if (it.value() == profileId && isRunning(it.key()))
            ++users;
    return users;
}

void ConnectionManager::handle(const Request &request, const Answer &answer)
{
    followFile();
    switch (request.kind) {
    case Request::Kind::ListProfiles:
        answerList(answer);
        break;
    case Request::Kind::UseProfile:
        m_profileOfProgram.insert(request.pid, request.profileId);
        answerRenewed(request.profileId, lineTimeoutMs, answer);
        break;
    case Request::Kind::ReloadProfile:
        answerRenewed(request.profileId, lineTimeoutMs, answer);
        break;
    case Request::Kind::ShowWindow: {
        const bool shows = isSignalConnected(QMetaMethod::fromSignal(&ConnectionManager::windowWanted));
        emit windowWanted();
        answer(lineAnswer(shows ? QStringLiteral("OK") : QStringLiteral("NOWINDOW")));
    }
    }
}

void ConnectionManager::answerList(const Answer &answer)
{
    QList<qint64> ids;
    for (const Profile &profile : qAsConst(m_profiles))
        ids << profile.id;
    // What did not get ready in time the client hears at its login; the others must not suffer for it.
    m_blocks.renew(ids, listTimeoutMs, [this, answer] { answer(profileListAnswer(m_profiles)); });
}

void ConnectionManager::answerRenewed(qint64 profileId, int timeoutMs, const Answer &answer)
{
    m_blocks.renew({profileId}, timeoutMs, [this, profileId, answer] {
        for (const Profile &profile : qAsConst(m_profiles))
            if (profile.id == profileId) {
                const QString fault = m_blocks.fault(profileId);
                answer(lineAnswer(fault.isEmpty() ? QStringLiteral("OK") : fault));
                return;
            }
        answer(lineAnswer(QStringLiteral("There is no such profile.")));
    });
}

void ConnectionManager::watchFile()
{
    // A replaced file is a new one to watch; its directory shows that it was replaced.
    const QFileInfo file(m_store.file());
    for (const QString &path : {file.absolutePath(), file.absoluteFilePath()})
        if (QFileInfo::exists(path) && !m_watcher.files().contains(path) &&
            !m_watcher.directories().contains(path))
            m_watcher.addPath(path);
}

} // namespace kelva
