#pragma once

#include "store/result.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace kelva {

class Session;

/// What happened to a document, as it is recorded.
enum class Action {
    Shown = 0,
    Exported = 1,
    Mailed = 2,
    Deleted = 3,
    Fixed = 4,
    Created = 5,
    NewVersion = 6,
    Printed = 7,
    ArchiveChanged = 8,
    Api = 9,
};

/// The files of documents and what was done with them. Every operation asks whether the session sees one of
/// the document's records, or stored it itself.
class Content
{
public:
    /// Bytes moved so far; false ends the transfer and undoes it.
    using Progress = std::function<bool(qint64 done)>;

    explicit Content(Session &session) : m_session(session) {}

    /// Stores a file in the session's sub-archive and returns its archive id. With newDocument false a
    /// document of the same file name there gets a new version and keeps its id.
    Result<qint64> store(const QString &localFile, bool newDocument, const Progress &progress);
    /// Writes the file to a fresh temporary file of the caller's and returns its path; records action.
    Result<QString> fetch(qint64 archiveId, Action action, const Progress &progress);
    Result<qint64> size(qint64 archiveId);
    /// Writes every version of the file into a directory, as "<version>-<file name>", and records that; for
    /// administrators. Returns the paths, oldest version first. What is there already is never overwritten:
    /// nothing is written then.
    Result<QStringList> exportVersions(qint64 archiveId, const QString &directory);

    /// Per id: archive id, file name, "", extension without dot, joined by the list separator.
    Result<QStringList> info(const QStringList &archiveIds);
    /// Records of archive id, event id, action code, time, user. action -1 and an empty user mean all.
    Result<QStringList> actions(const QStringList &archiveIds, int action, const QString &user);
    Result<void> record(qint64 archiveId, Action action);
    /// Removes the file for good; administrators only, and only when all records of it are in the trash and
    /// no retention is in force.
    Result<void> remove(const QString &archiveId, const QString &comment);
    /// Documents whose file or description holds the words: entries of id and id.
    Result<QStringList> search(const QString &text);

private:
    Session &m_session;
};

} // namespace kelva
