#pragma once

#include "store/result.h"

#include <QString>
#include <QStringList>

namespace kelva {

class Session;

/// The sub-archives that documents are filed in. Changing them is the administrators'.
class SubArchives
{
public:
    explicit SubArchives(Session &session) : m_session(session) {}

    /// Records of name and key (decimal).
    Result<QStringList> list();
    /// Id of the sub-archive with this key; NotFound otherwise.
    Result<qint64> find(const QString &key);
    Result<QString> name(qint64 id);
    Result<qint64> create(const QString &name, const QString &comment);
    Result<void> rename(qint64 id, const QString &name);
    /// Refuses the last one and one with documents.
    Result<void> remove(qint64 id);
    Result<int> countDocuments(qint64 id);

private:
    Session &m_session;
};

} // namespace kelva
