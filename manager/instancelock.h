#pragma once

#include "store/result.h"

namespace kelva {

/// A lock of this user's programs in the temporary directory, held until release() or the end of the
/// process, however that comes.
class InstanceLock
{
public:
    InstanceLock() = default;
    ~InstanceLock();
    InstanceLock(const InstanceLock &) = delete;
    InstanceLock &operator=(const InstanceLock &) = delete;

    /// False when another process holds it. An error when the lock file cannot be used.
    Result<bool> take(const QString &name);
    void release();

private:
    int m_file = -1;
};

} // namespace kelva
