#pragma once

#include "clause/clause.h"

#include <QString>

namespace kelva {

class Session;

/// Whether the session may have a document's file: it sees one of its records, or the document has none yet
/// and the session stored it or has kelvaALLDOCS. Who stored it keeps no right of his own once it is filed.
bool maySeeDocument(Session &session, qint64 archiveId);
/// The same as a condition on the column of an archive id, for many documents in one statement.
SqlCondition visibleDocuments(Session &session, const QString &column);

} // namespace kelva
