#pragma once

#include "store/result.h"

#include <QStringList>

namespace kelva {

class Session;

/// Ids of what the sample archive's documents refer to.
struct SampleVocabulary
{
    struct Folder
    {
        QString oid;
        QString name;
        qint64 type;
    };

    QList<Folder> folders; ///< those that documents are filed in
    QStringList users;
    QStringList departments;
    qint64 reference = 0; ///< attribute ids
    qint64 amount = 0;
    qint64 department = 0;
    qint64 paid = 0;
    qint64 due = 0;
};

/// Fills a new archive with users, roles, folders, status, types, attributes, settings and searches.
Result<SampleVocabulary> createSampleVocabulary(Session &session, const QString &password);

} // namespace kelva
