#pragma once

#include "manager/profile.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>

namespace kelva {

class ProfileBlock;

/// Keeps a data block for every profile. Blocks are made in threads of their own, one at a time for each
/// profile, so that an archive that does not answer holds up neither the others nor the caller. Main thread
/// only.
class BlockPublisher final : public QObject
{
    Q_OBJECT

public:
    explicit BlockPublisher(QObject *parent = nullptr);
    ~BlockPublisher() override;

    /// Starts on the blocks of new and changed profiles and lets go of those that are no more.
    void setProfiles(const QList<Profile> &profiles);
    /// Calls done when the blocks of these profiles have been made anew from what the archives hold now, or
    /// when timeoutMs are over and some have not. Unknown ids are passed over.
    void renew(const QList<qint64> &ids, int timeoutMs, std::function<void(bool inTime)> done);
    /// Why the profile's block could not be made; empty when it was, or is being made for the first time.
    QString fault(qint64 id) const;
    /// Waits for what is under way; false when it takes longer.
    bool finish(int timeoutMs);

signals:
    /// A block was made, or could not be.
    void renewed(qint64 id);

private:
    struct Waiting
    {
        int open = 0;
        std::function<void(bool inTime)> done;
        void finish(bool inTime);
    };
    using Waiter = std::shared_ptr<Waiting>;

    struct Slot
    {
        Profile profile;
        std::shared_ptr<ProfileBlock> block;
        bool running = false;
        bool stale = false; ///< something asked for it after the running one began
        QList<Waiter> current;
        QList<Waiter> next;
        QString fault;
    };
    using SlotPointer = std::shared_ptr<Slot>;

    void want(const SlotPointer &slot, const Waiter &waiter);
    void start(const SlotPointer &slot);
    void conclude(const SlotPointer &slot, const Result<void> &outcome);

    QHash<qint64, SlotPointer> m_slots;
    QThreadPool m_pool;
};

} // namespace kelva
