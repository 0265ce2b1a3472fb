// The bytes of a tuning data file: one line to a block or to a line of notes. No checks: whatever the bytes
// are, something comes of them.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "util/text.h"

namespace zandrel {

/// What a data file holds.
struct DataText {
    std::array<ByteString, 256> Blocks;  // by block code; empty = the file has none
    std::array<bool, 256> Present{};     // the file has a record of it
    std::string Notes;                   // UTF-8, lines end with CR LF
};

/// Reads `bytes`. Lines end with CR, LF or CR LF.
void ParseDataText(std::string_view bytes, DataText& data);

/// The bytes of a file with these blocks and notes.
std::string FormatDataText(const std::array<ByteString, 256>& blocks, const std::string& notes);

}  // namespace zandrel
