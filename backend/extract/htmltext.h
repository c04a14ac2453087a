#pragma once

#include "extract/extractedtext.h"

class QFile;

namespace kelva {

/// What a page shows: without tags, comments, scripts and styles, with its character references resolved.
QString textOfHtml(const QString &page);
ExtractedText htmlText(QFile &file, const TextLimits &limits);

} // namespace kelva
