#pragma once

#include "store/result.h"

#include <QString>

namespace kelva {

/// Removes what processes that are no more have left.
void clearTemporaryFiles();

/// A new empty file in a directory that only this user can enter, named after a document: its suffix, and a
/// base name without dots. It belongs to the caller and goes at the latest when the process ends, or when the
/// next one begins, unless it was finished.
Result<QString> makeTemporaryFile(const QString &documentName);

/// The file is whole: it stays where it is, for whoever has it open, until somebody removes it.
void finishTemporaryFile(const QString &path);

} // namespace kelva
