#include "manager/profilestates.h"

#include <QtConcurrent>

#include <utility>

namespace kelva {
namespace {

/// A login takes 64 MiB for a moment.
constexpr int threads = 3;

FileStamp stampOf(const Profile &profile)
{
    const Result<QString> path = archiveFile(profile);
    return path ? FileStamp::of(path.value()) : FileStamp();
}

} // namespace

ProfileStates::ProfileStates(QObject *parent) : QObject(parent)
{
    m_pool.setMaxThreadCount(threads);
}

ProfileStates::~ProfileStates()
{
    m_pool.waitForDone();
}

void ProfileStates::follow(const QList<Profile> &profiles)
{
    const QHash<qint64, StatePointer> before = std::exchange(m_states, {});
    for (const Profile &profile : profiles) {
        StatePointer state = before.value(profile.id);
        const bool fresh = !state || state->profile != profile;
        if (fresh) {
            state = std::make_shared<State>();
            state->profile = profile;
        }
        m_states.insert(profile.id, state);
        if (fresh)
            check(state, {});
    }
}

void ProfileStates::refresh(qint64 id)
{
    const StatePointer state = m_states.value(id);
    if (state && state->checks == 0 && !state->stamp.isStill(stampOf(state->profile)))
        check(state, {});
}

void ProfileStates::test(qint64 id, std::function<void(const Findings &)> done)
{
    if (const StatePointer state = m_states.value(id))
        check(state, std::move(done));
}

bool ProfileStates::isChecking(qint64 id) const
{
    const StatePointer state = m_states.value(id);
    return state && state->checks > 0;
}

QString ProfileStates::fault(qint64 id) const
{
    const StatePointer state = m_states.value(id);
    return state ? state->fault : QString();
}

bool ProfileStates::finish(int timeoutMs)
{
    return m_pool.waitForDone(timeoutMs);
}

void ProfileStates::check(const StatePointer &state, std::function<void(const Findings &)> done)
{
    ++state->checks;
    emit changed(state->profile.id);
    QtConcurrent::run(&m_pool, [this, state, done, profile = state->profile] {
        const FileStamp stamp = stampOf(profile);
        const Findings findings = checkProfile(profile);
        const auto conclude = [this, state, done, stamp, findings] {
            --state->checks;
            state->stamp = stamp;
            state->fault = findings ? QString() : findings.error().text;
            if (m_states.value(state->profile.id) != state)
                return;
            emit changed(state->profile.id);
            if (done)
                done(findings);
        };
        QMetaObject::invokeMethod(this, conclude, Qt::QueuedConnection);
    });
}

} // namespace kelva
