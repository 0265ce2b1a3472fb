// The one place where bytes of blocks and files become text and back: Windows-1252 outside, UTF-8 inside.
#pragma once

#include <string>
#include <string_view>

namespace zandrel {

/// UTF-8 text of Windows-1252 bytes. The five unused bytes (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the
/// control characters of the same number, so that all 256 survive a round trip.
std::string FromCodePage(std::string_view bytes);

/// Windows-1252 bytes of UTF-8 text; what has no byte, and a broken sequence, becomes '?'.
std::string ToCodePage(std::string_view text);

}  // namespace zandrel
