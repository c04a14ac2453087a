#pragma once

#include "manager/filestamp.h"
#include "manager/profile.h"

#include <QByteArray>

#include <memory>

namespace kelva {

class WorkbenchSegment;

/// The data block of one profile in shared memory, there as long as this object lives. For one thread at a
/// time.
class ProfileBlock
{
public:
    ProfileBlock();
    ~ProfileBlock();

    /// Lays the block down as the archive is now, with the rights of the profile's user. Cheap when nothing
    /// was written to the archive since. On failure readers keep what they had.
    Result<void> renew(const Profile &profile);

private:
    Result<void> publish(const QString &key);
    bool isReadable(const QString &key) const;

    std::unique_ptr<WorkbenchSegment> m_segment;
    QByteArray m_block;
    QString m_path;
    FileStamp m_stamp;
};

} // namespace kelva
