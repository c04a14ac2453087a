#pragma once

#include "store/database.h"
#include "store/result.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <memory>

namespace kelva {

class Session;

/// One document with its first record, for BulkLoad. Dates are "yyyy-MM-dd" texts.
struct BulkDocument
{
    qint64 subArchive = 1;
    QString fileName;
    QByteArray content; ///< null for a record without a file
    QString creator;
    QString created; ///< "yyyy-MM-ddTHH:mm:ss", also the time of the last change
    QString description;
    int status = 1;
    QString folder = QStringLiteral("0");
    qint64 type = 0;
    QString date;
    QString resubmission;
    bool trashed = false;
    QString note;                       ///< empty for none
    QHash<qint64, QVariant> attributes; ///< by attribute id
};

/// Fills an archive fast: many documents to a transaction, statements prepared once. For the owner of the
/// file only.
class BulkLoad
{
public:
    explicit BulkLoad(Session &session);
    ~BulkLoad();

    /// Returns the archive id.
    Result<qint64> add(const BulkDocument &document);
    Result<void> addEvent(qint64 archiveId, int action, const QString &time, const QString &user);
    /// Writes what is left and tells the query planner about the new contents.
    Result<void> finish();

private:
    struct Statements;
    Result<void> begin(const char *operation);
    Result<void> flush();

    Session &m_session;
    std::unique_ptr<Transaction> m_transaction;
    std::unique_ptr<Statements> m_statements;
    int m_pending = 0;
};

} // namespace kelva
