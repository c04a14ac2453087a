#pragma once

#include "extract/extractedtext.h"

class QFile;

namespace kelva {

/// To be called before files can no longer be opened: the conversions of characters look for theirs once.
void preparePdfText();
/// The pages in their order, each in the order in which it is read.
ExtractedText pdfText(QFile &file, const TextLimits &limits);

} // namespace kelva
