// Text helpers: comma lists, blanks, and the door through which texts are translated.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zandrel {

/// Raw bytes of a block or a frame. Not text: a byte becomes text only in util/codepage.
using ByteString = std::string;

/// The parts of `text` between separators; an empty text is one empty part.
std::vector<std::string> Split(std::string_view text, char separator);

std::string Join(const std::vector<std::string>& parts, char separator);

/// `text` without leading and trailing blanks (0x20 only).
std::string Trim(std::string_view text);

/// `text`, a comma list, with element `field` (from 0) replaced by `value`. A field beyond the end
/// leaves the list as it is.
std::string ReplaceField(std::string_view text, std::string_view value, int field);

/// Translation of a key; the key itself while no table is loaded. Set by the translations.
inline std::function<std::string(const std::string&)> tr = [](const std::string& text) { return text; };

}  // namespace zandrel
