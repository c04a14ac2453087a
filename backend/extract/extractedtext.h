#pragma once

#include <QString>

#include <optional>

namespace kelva {

/// How much one extraction may unpack and hand out. What lies behind the text's end is not searched for.
struct TextLimits
{
    qint64 unpackedBytes = 64 * 1024 * 1024;
    int characters = 4 * 1024 * 1024;
};

/// The text of a file, or none when it is damaged or larger inside than it may be.
using ExtractedText = std::optional<QString>;

} // namespace kelva
