#pragma once

#include "manager/filestamp.h"
#include "manager/profilecheck.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>

namespace kelva {

/// Whether a login with each profile works, found out in the background.
class ProfileStates final : public QObject
{
    Q_OBJECT

public:
    using Findings = Result<ProfileFindings>;

    explicit ProfileStates(QObject *parent = nullptr);
    ~ProfileStates() override;

    /// Checks the profiles that are new or changed, and forgets those that are no more.
    void follow(const QList<Profile> &profiles);
    /// Checks a profile unless nothing was written to its archive since the last time.
    void refresh(qint64 id);
    /// Checks a profile in any case; done gets what was found, unless the profile goes or changes meanwhile.
    void test(qint64 id, std::function<void(const Findings &)> done);

    bool isChecking(qint64 id) const;
    /// Why the login failed; empty when it worked or is being tried for the first time.
    QString fault(qint64 id) const;
    /// Waits for what is under way; false when it takes longer.
    bool finish(int timeoutMs);

signals:
    void changed(qint64 id);

private:
    struct State
    {
        Profile profile;
        FileStamp stamp;
        int checks = 0; ///< under way
        QString fault;
    };
    using StatePointer = std::shared_ptr<State>;

    void check(const StatePointer &state, std::function<void(const Findings &)> done);

    QHash<qint64, StatePointer> m_states;
    QThreadPool m_pool;
};

} // namespace kelva
