#pragma once

#include "extract/extractedtext.h"

#include <QByteArray>

class QFile;

namespace kelva {

/// By its byte order mark, else UTF-8, else Windows-1252.
QString decodedText(const QByteArray &bytes);
/// The beginning of a text file.
ExtractedText plainText(QFile &file, const TextLimits &limits);

} // namespace kelva
