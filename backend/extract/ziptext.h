#pragma once

#include "extract/xmltext.h"

class QFile;

namespace kelva {

/// The text of the parts of a zipped office file that a reader sees.
ExtractedText zippedText(QFile &file, XmlText::Format format, const TextLimits &limits);

} // namespace kelva
