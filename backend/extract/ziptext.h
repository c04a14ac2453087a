#pragma once

#include "extract/xmltext.h"

namespace kelva {

/// The text of the parts of a zipped office file that a reader sees.
ExtractedText zippedText(const QString &path, XmlText::Format format, const TextLimits &limits);

} // namespace kelva
