#pragma once

#include "store/result.h"

#include <QDate>
#include <QString>

#include <functional>

namespace kelva {

struct SampleOptions
{
    QString path;
    QString password = QStringLiteral("kelva"); ///< of every sample user
    int documents = 2000;
    /// Only this many documents get a file; an archive for measurements needs records, not files.
    int files = 2000;
    quint32 seed = 1;
    /// The archive's dates lie around this day, so that some resubmissions are due.
    QDate today;
};

/// Makes an archive with users, folders and documents of an invented company. The same options make the same
/// archive.
Result<void> createSampleArchive(const SampleOptions &options, const std::function<void(int done)> &progress);

} // namespace kelva
