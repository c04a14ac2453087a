#pragma once

#include "store/result.h"

#include <QStringList>

namespace kelva {

class Session;

/// Header row and one row per record, newest record first. Filters are where clauses and "OPT:" tokens; what
/// the session may not see never appears. "OPT:IGNORERIGHTS" is heeded for administrators alone.
Result<QStringList> listDocuments(Session &session, const QStringList &filters);

} // namespace kelva
