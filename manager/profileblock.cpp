#include "manager/profileblock.h"

#include "contract/sharedblock.h"
#include "service/session.h"
#include "service/workbench.h"

#include <QCoreApplication>

namespace kelva {

ProfileBlock::ProfileBlock() = default;
ProfileBlock::~ProfileBlock() = default;

Result<void> ProfileBlock::renew(const Profile &profile)
{
    const Result<QString> path = archiveFile(profile);
    if (!path)
        return path.error();
    const QString key = profile.blockKey();
    const bool sameSource = m_segment && m_segment->key() == key && m_path == path.value();
    // Before reading: what is written in between shows in the next stamp.
    const FileStamp stamp = FileStamp::of(path.value());
    const bool sameArchive = sameSource && m_stamp.isStill(stamp);
    if (sameArchive && isReadable(key))
        return {};
    if (sameArchive)
        return publish(key);
    auto session = Session::openAsUser(path.value(), profile.user);
    if (!session)
        return session.error();
    Result<QByteArray> block = workbenchBlock(*session.value());
    if (!block)
        return block.error();
    const bool sameBlock = sameSource && m_block == block.value();
    m_block = std::move(block.value());
    // Until it is there, nothing counts as published.
    m_stamp = FileStamp();
    if (!sameBlock || !isReadable(key))
        if (const Result<void> published = publish(key); !published)
            return published;
    m_path = path.value();
    m_stamp = stamp;
    return {};
}

Result<void> ProfileBlock::publish(const QString &key)
{
    if (!m_segment || m_segment->key() != key)
        m_segment = std::make_unique<WorkbenchSegment>(key);
    if (const Result<void> published = m_segment->publish(m_block); !published)
        return published;
    if (isReadable(key))
        return {};
    return Error{ErrorCode::Storage,
                 QCoreApplication::translate("ProfileBlock", "The vocabulary cannot be read back.")};
}

bool ProfileBlock::isReadable(const QString &key) const
{
    QByteArray found;
    return SharedBlock::read(key, found) == SharedBlock::Outcome::Done && found.startsWith(m_block);
}

} // namespace kelva
