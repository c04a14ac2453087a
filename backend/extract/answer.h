#pragma once

#include <cstdint>

namespace kelva {

/// What a reader that serves writes for each file: the state, and the text's bytes if it is Text. Once before
/// the first file it says that it is Ready.
struct AnswerHead
{
    enum State : std::uint32_t { Ready = 0x6b656c76, Text = 1, NoText = 2 };

    std::uint32_t state;
    std::uint32_t size;
};

/// What it is asked: one byte with the kind of the file, and with it the file, open for reading.
using Question = std::uint8_t;

} // namespace kelva
