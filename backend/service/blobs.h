#pragma once

#include "service/checksum.h"
#include "service/content.h"
#include "store/result.h"

#include <QByteArray>
#include <QList>
#include <QString>

class QFile;

namespace kelva {

class Database;
class Session;

/// Brings a file into the archive piece by piece. A small file is held until finish() and costs one
/// transaction; a large one is written as it is read, in transactions short enough for others to work in
/// between. Until keep() the destructor removes what was written; what a killed process left is removed by a
/// later writer.
class BlobWriter
{
public:
    explicit BlobWriter(Session &session) : m_session(session) {}
    ~BlobWriter();
    BlobWriter(const BlobWriter &) = delete;
    BlobWriter &operator=(const BlobWriter &) = delete;

    Result<void> readAll(QFile &file, const Content::Progress &progress);
    /// Inside the transaction that makes the blob a document. Returns its id.
    Result<qint64> finish();
    void keep() { m_kept = true; }

private:
    Result<void> stage();
    void startBlob(bool unfinished);
    void insertPieces();

    Session &m_session;
    Checksum m_hash;
    QList<QByteArray> m_pieces;
    qint64 m_blob = 0;
    qint64 m_size = 0;
    int m_number = 0;
    bool m_staged = false;
    bool m_kept = false;
};

/// Removes what uploads of killed processes have left. Best effort: a failure is noticed by the next.
void removeAbandonedUploads(Session &session);
/// Inserts a whole blob within the transaction of the caller.
qint64 insertBlob(Database &database, const QByteArray &content);
/// Writes a blob over a file and compares its checksum.
Result<void> copyBlob(Database &database, qint64 blob, const QString &path,
                      const Content::Progress &progress);
/// Blobs whose pieces do not add up to what was stored, one sentence each.
QStringList blobFaults(Database &database);

} // namespace kelva
