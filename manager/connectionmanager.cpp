#include "manager/connectionmanager.h"

#include "contract/sharedblock.h"

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

ConnectionManager::ConnectionManager(ProfileList &profiles, QObject *parent)
    : QObject(parent),
      m_profiles(profiles),
      m_server([this](const Request &request, const Answer &answer) { handle(request, answer); })
{
    connect(&m_profiles, &ProfileList::changed, &m_blocks,
            [this] { m_blocks.setProfiles(m_profiles.profiles()); });
}

Result<void> ConnectionManager::start()
{
    if (const Result<void> listening = m_server.listen(); !listening)
        return listening;
    SharedBlock::removeAbandoned();
    m_blocks.setProfiles(m_profiles.profiles());
    return {};
}

bool ConnectionManager::stop(int timeoutMs)
{
    m_server.close();
    return m_blocks.finish(timeoutMs);
}

int ConnectionManager::countUsers(qint64 profileId) const
{
    int users = 0;
    for (auto it = m_profileOfProgram.begin(); it != m_profileOfProgram.end(); ++it)
        if ((profileId < 0 || it.value() == profileId) && isRunning(it.key()))
            ++users;
    return users;
}

void ConnectionManager::forgetEnded()
{
    for (auto it = m_profileOfProgram.begin(); it != m_profileOfProgram.end();)
        it = isRunning(it.key()) ? it + 1 : m_profileOfProgram.erase(it);
}

void ConnectionManager::handle(const Request &request, const Answer &answer)
{
    m_profiles.follow();
    switch (request.kind) {
    case Request::Kind::ListProfiles:
        answerList(answer);
        break;
    case Request::Kind::UseProfile:
        forgetEnded();
        m_profileOfProgram.insert(request.pid, request.profileId);
        answerRenewed(request.profileId, answer);
        break;
    case Request::Kind::ReloadProfile:
        answerRenewed(request.profileId, answer);
        break;
    case Request::Kind::ChangePassword: {
        const Result<void> changed = changePassword(request);
        answer(lineAnswer(changed ? QStringLiteral("OK") : changed.error().text));
        break;
    }
    case Request::Kind::ShowWindow: {
        const bool shows = isSignalConnected(QMetaMethod::fromSignal(&ConnectionManager::windowWanted));
        emit windowWanted();
        answer(lineAnswer(shows ? QStringLiteral("OK") : QStringLiteral("NOWINDOW")));
    }
    }
}

Result<void> ConnectionManager::changePassword(const Request &request)
{
    const Profile *before = m_profiles.find(request.profileId);
    if (!before)
        return Error{ErrorCode::NotFound, QStringLiteral("There is no such profile.")};
    // It may be a profile of another user of the archive, or one that was changed already.
    if (before->password != request.oldPassword)
        return Error{ErrorCode::Conflict, QStringLiteral("The profile has another password.")};
    Profile after = *before;
    after.password = request.newPassword;
    if (const Result<void> valid = validate(after); !valid)
        return valid;
    const Result<void> replaced = m_profiles.store().replace(*before, after);
    m_profiles.follow();
    return replaced;
}

void ConnectionManager::answerList(const Answer &answer)
{
    QList<qint64> ids;
    for (const Profile &profile : m_profiles.profiles())
        ids << profile.id;
    // What did not get ready in time the client hears at its login; the others must not suffer for it.
    m_blocks.renew(ids, listTimeoutMs,
                   [this, answer](bool) { answer(profileListAnswer(m_profiles.profiles())); });
}

void ConnectionManager::answerRenewed(qint64 profileId, const Answer &answer)
{
    m_blocks.renew({profileId}, lineTimeoutMs, [this, profileId, answer](bool inTime) {
        if (!m_profiles.find(profileId)) {
            answer(lineAnswer(QStringLiteral("There is no such profile.")));
            return;
        }
        const QString fault =
            inTime ? m_blocks.fault(profileId) : QStringLiteral("The archive did not answer in time.");
        answer(lineAnswer(fault.isEmpty() ? QStringLiteral("OK") : fault));
    });
}

} // namespace kelva
