#pragma once

#include "contract/sharedblock.h"
#include "store/result.h"

#include <QByteArray>
#include <QString>

namespace kelva {

class Session;

/// The session's vocabulary as one QDataStream of the default version, nine items: column titles; "title,
/// key" of every column and one more for the rights letters; column keys; the column numbers of choice, line,
/// check box and date attributes with their values; rows of main folders, status, types and folders
/// (inactive ones too, marked "I" with all below them, so that documents in them have a name); their
/// pictures.
Result<QByteArray> workbenchBlock(Session &session);

/// Name of the shared memory segment that carries the block of a login.
QString workbenchKey(const QString &login, const QString &host, int port, qint64 profileId);

/// Publishes blocks under one key and keeps them alive. The segment dies with the last process attached, so
/// whoever publishes holds on to this object.
class WorkbenchSegment
{
public:
    explicit WorkbenchSegment(const QString &key) : m_block(key) {}

    /// Replaces what readers find. Busy when a reader does not let go of the lock.
    Result<void> publish(const QByteArray &block);
    const QString &key() const { return m_block.key(); }

private:
    SharedBlock m_block;
};

} // namespace kelva
