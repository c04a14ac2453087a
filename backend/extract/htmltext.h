#pragma once

#include "extract/extractedtext.h"

namespace kelva {

/// What a page shows: without tags, comments, scripts and styles, with its character references resolved.
QString textOfHtml(const QString &page);
ExtractedText htmlText(const QString &path, const TextLimits &limits);

} // namespace kelva
