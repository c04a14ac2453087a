#include "manager/blockpublisher.h"

#include "manager/profileblock.h"

#include <QTimer>
#include <QtConcurrent>

#include <utility>

namespace kelva {
namespace {

/// The threads wait for files more than they compute, and one archive that is locked must not use them up.
constexpr int threads = 16;

} // namespace

void BlockPublisher::Waiting::finish(bool inTime)
{
    if (done)
        std::exchange(done, nullptr)(inTime);
}

BlockPublisher::BlockPublisher(QObject *parent) : QObject(parent)
{
    m_pool.setMaxThreadCount(threads);
}

BlockPublisher::~BlockPublisher()
{
    m_pool.waitForDone();
}

void BlockPublisher::setProfiles(const QList<Profile> &profiles)
{
    QHash<qint64, SlotPointer> kept;
    QList<SlotPointer> changed;
    for (const Profile &profile : profiles) {
        SlotPointer slot = m_slots.take(profile.id);
        if (!slot) {
            slot = std::make_shared<Slot>();
            slot->block = std::make_shared<ProfileBlock>();
        }
        if (slot->profile != profile) {
            slot->profile = profile;
            changed << slot;
        }
        kept.insert(profile.id, slot);
    }
    const QHash<qint64, SlotPointer> dropped = std::exchange(m_slots, kept);
    for (const SlotPointer &slot : dropped)
        for (const Waiter &waiter : std::exchange(slot->current, {}) + std::exchange(slot->next, {}))
            if (--waiter->open == 0)
                waiter->finish(true);
    for (const SlotPointer &slot : qAsConst(changed))
        want(slot, nullptr);
}

void BlockPublisher::renew(const QList<qint64> &ids, int timeoutMs, std::function<void(bool inTime)> done)
{
    const auto waiter = std::make_shared<Waiting>();
    waiter->done = std::move(done);
    QList<SlotPointer> wanted;
    for (const qint64 id : ids)
        if (const SlotPointer slot = m_slots.value(id))
            wanted << slot;
    waiter->open = wanted.size();
    if (wanted.isEmpty()) {
        waiter->finish(true);
        return;
    }
    QTimer::singleShot(timeoutMs, this, [waiter] { waiter->finish(false); });
    for (const SlotPointer &slot : qAsConst(wanted))
        want(slot, waiter);
}

QString BlockPublisher::fault(qint64 id) const
{
    const SlotPointer slot = m_slots.value(id);
    return slot ? slot->fault : QString();
}

bool BlockPublisher::finish(int timeoutMs)
{
    return m_pool.waitForDone(timeoutMs);
}

void BlockPublisher::want(const SlotPointer &slot, const Waiter &waiter)
{
    // One that runs may have read the archive already: only the next one counts.
    if (waiter)
        slot->next << waiter;
    slot->stale = true;
    if (!slot->running)
        start(slot);
}

void BlockPublisher::start(const SlotPointer &slot)
{
    slot->running = true;
    slot->stale = false;
    slot->current = std::exchange(slot->next, {});
    QtConcurrent::run(&m_pool, [this, slot, profile = slot->profile, block = slot->block] {
        const Result<void> outcome = block->renew(profile);
        QMetaObject::invokeMethod(
            this, [this, slot, outcome] { conclude(slot, outcome); }, Qt::QueuedConnection);
    });
}

void BlockPublisher::conclude(const SlotPointer &slot, const Result<void> &outcome)
{
    slot->running = false;
    slot->fault = outcome ? QString() : outcome.error().text;
    for (const Waiter &waiter : std::exchange(slot->current, {}))
        if (--waiter->open == 0)
            waiter->finish(true);
    const qint64 id = slot->profile.id;
    if (m_slots.value(id) != slot)
        return;
    if (slot->stale)
        start(slot);
    emit renewed(id);
}

} // namespace kelva
