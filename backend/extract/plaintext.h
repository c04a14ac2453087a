#pragma once

#include "extract/extractedtext.h"

#include <QByteArray>

namespace kelva {

/// By its byte order mark, else UTF-8, else Windows-1252.
QString decodedText(const QByteArray &bytes);
/// The beginning of a text file.
ExtractedText plainText(const QString &path, const TextLimits &limits);

} // namespace kelva
