#pragma once

#include <QString>

/// Name under which a document leaves the archive: "1234_Invoice.pdf", or "1234_1_Invoice.pdf" with a
/// counter. Of the proposal only letters, digits and dots stay, so that no name leaves its directory or hides
/// in one; an empty one becomes the base name of the temporary file, whose suffix the name gets. Never longer
/// than a file name may be.
QString exportFileName(qint64 id, const QString &proposal, const QString &temporaryPath, int counter);
