#pragma once

#include "store/result.h"

#include <QString>
#include <QStringList>

namespace kelva {

class Session;

/// Operations on single documents. A document has an archive id (its file) and any number of classifications
/// (its records, each a row of a list). Numbers come as texts that may be anything.
class Documents
{
public:
    explicit Documents(Session &session) : m_session(session) {}

    /// Fields of a list row, rights letters last. NotFound also for what the session may not see.
    Result<QStringList> get(const QString &classificationId);
    /// fields: those of get(), or of a list's row, without element 0. BadInput when this session has not read
    /// the record, or with another number of fields. User, time and token are set here. Conflict when
    /// fields[3] is not the record's current token. Refused when a running retention would end earlier.
    Result<void> save(const QString &classificationId, const QStringList &fields);
    /// First classification of a stored file: today, status 1, type 0, named after the file.
    Result<void> classify(qint64 archiveId, const QString &fileName, const QString &folder);
    Result<void> setTrashed(const QStringList &classificationIds, bool trashed);
    /// Closes a record of status -1 for good; administrators only.
    Result<void> close(const QString &classificationId);
    Result<void> moveToSubArchive(qint64 archiveId, qint64 subArchive);

    /// Records that a clause holds for, trashed or not; those that the session sees unless it administers.
    Result<qint64> count(const QString &clause);
    /// Exact oid, or everything below it when the pattern ends in ".%".
    Result<qint64> countInFolder(const QString &pattern);
    /// One row per saved version, oldest first.
    Result<QStringList> history(const QString &classificationId);

private:
    Session &m_session;
};

} // namespace kelva
