#pragma once

#include "store/result.h"

#include <QByteArray>
#include <QSharedMemory>
#include <QString>

#include <memory>

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
    explicit WorkbenchSegment(const QString &key);
    ~WorkbenchSegment();

    /// Replaces what readers find. A block that has outgrown the segment needs a new one, which must wait for
    /// readers to let go; Busy when they do not.
    Result<void> publish(const QByteArray &block);
    QString key() const { return m_memory->key(); }

private:
    Result<void> makeRoom(int size);

    std::unique_ptr<QSharedMemory> m_memory;
};

} // namespace kelva
