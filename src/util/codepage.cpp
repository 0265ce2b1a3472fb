#include "util/codepage.h"

#include <array>
#include <cstdint>

namespace zandrel {
namespace {

// Code points of the bytes 0x80 to 0x9F.
constexpr std::array<std::uint16_t, 32> kUpper = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& text, std::uint32_t point) {
    if (point < 0x80) {
        text += static_cast<char>(point);
    } else if (point < 0x800) {
        text += static_cast<char>(0xC0 | (point >> 6));
        text += static_cast<char>(0x80 | (point & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | (point >> 12));
        text += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (point & 0x3F));
    }
}

// Takes one code point off the front; 0xFFFD for a broken sequence, of which one byte is taken.
std::uint32_t TakePoint(std::string_view& text) {
    const auto lead = static_cast<std::uint8_t>(text.front());
    const int length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (length == 0 || static_cast<int>(text.size()) < length) {
        text.remove_prefix(1);
        return 0xFFFD;
    }
    std::uint32_t point = length == 1 ? lead : lead & (0x7F >> length);
    for (int i = 1; i < length; ++i) {
        const auto next = static_cast<std::uint8_t>(text[static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80) {
            text.remove_prefix(1);
            return 0xFFFD;
        }
        point = (point << 6) | (next & 0x3F);
    }
    // A longer form than the point needs is no valid one.
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (point < kLeast[length]) {
        text.remove_prefix(1);
        return 0xFFFD;
    }
    text.remove_prefix(static_cast<std::size_t>(length));
    return point;
}

char ByteOf(std::uint32_t point) {
    if (point < 0x80 || (point >= 0xA0 && point <= 0xFF)) return static_cast<char>(point);
    for (std::size_t i = 0; i < kUpper.size(); ++i) {
        if (kUpper[i] == point) return static_cast<char>(0x80 + i);
    }
    return '?';
}

}  // namespace

std::string FromCodePage(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        AppendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kUpper[byte - 0x80] : byte);
    }
    return text;
}

std::string ToCodePage(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty()) bytes += ByteOf(TakePoint(text));
    return bytes;
}

}  // namespace zandrel
