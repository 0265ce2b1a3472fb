#include "files/datatext.h"

#include <algorithm>
#include <cstdint>

#include "util/codepage.h"

namespace zandrel {
namespace {

constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> Digits() {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(kNoDigit);
    for (std::uint8_t i = 0; i < 10; ++i) digits[static_cast<std::size_t>('0' + i)] = i;
    for (std::uint8_t i = 0; i < 6; ++i) {
        digits[static_cast<std::size_t>('A' + i)] = static_cast<std::uint8_t>(10 + i);
        digits[static_cast<std::size_t>('a' + i)] = static_cast<std::uint8_t>(10 + i);
    }
    return digits;
}

constexpr std::array<std::uint8_t, 256> kDigits = Digits();

std::uint8_t Digit(char c) {
    return kDigits[static_cast<std::uint8_t>(c)];
}

// A pair that is no number counts as far as it is one.
std::uint8_t Pair(char high, char low) {
    const std::uint8_t first = Digit(high);
    const std::uint8_t second = Digit(low);
    if (first == kNoDigit) return 0;
    return second == kNoDigit ? first : static_cast<std::uint8_t>(first * 16 + second);
}

void TakeBlock(std::string_view line, DataText& data) {
    const std::uint8_t block = Pair(line[0], line[1]);
    line.remove_prefix(2);
    ByteString& bytes = data.Blocks[block];
    bytes.resize((line.size() + 1) / 2);
    const std::size_t pairs = line.size() / 2;
    for (std::size_t i = 0; i < pairs; ++i) {
        bytes[i] = static_cast<char>(Pair(line[2 * i], line[2 * i + 1]));
    }
    // A single last digit is a byte of its own.
    if (line.size() % 2 != 0) bytes[pairs] = static_cast<char>(Pair('0', line.back()));
    data.Present[block] = true;
}

// Most notes are plain ASCII, the same in either code.
void AppendNote(std::string& notes, std::string_view line) {
    std::uint8_t all = 0;
    for (const char c : line) all |= static_cast<std::uint8_t>(c);
    if (all < 0x80) {
        notes += line;
    } else {
        notes += FromCodePage(line);
    }
    notes += "\r\n";
}

void AppendHex(std::string& text, std::uint8_t byte) {
    constexpr char kHex[] = "0123456789ABCDEF";
    text += kHex[byte >> 4];
    text += kHex[byte & 15];
}

}  // namespace

void ParseDataText(std::string_view bytes, DataText& data) {
    // The next of each kind of line end, looked for anew only when it has been passed.
    std::size_t nextCr = 0, nextLf = 0;
    const auto place = [bytes](char c, std::size_t from) {
        return std::min(bytes.find(c, from), bytes.size());
    };
    for (std::size_t start = 0; start < bytes.size();) {
        if (nextCr <= start) nextCr = place('\r', start);
        if (nextLf <= start) nextLf = place('\n', start);
        const std::size_t end = std::min(nextCr, nextLf);
        const std::string_view line = bytes.substr(start, end - start);
        start = end + 1;
        if (line.substr(0, 2) == "TT") {
            if (data.Notes.empty()) data.Notes.reserve(bytes.size() - end + line.size());
            AppendNote(data.Notes, line.substr(2));
        } else if (line.size() > 3) {
            TakeBlock(line, data);
        }
    }
}

std::string FormatDataText(const std::array<ByteString, 256>& blocks, const std::string& notes) {
    std::string text;
    for (std::size_t block = 0; block < blocks.size(); ++block) {
        if (blocks[block].empty()) continue;
        AppendHex(text, static_cast<std::uint8_t>(block));
        for (const char byte : blocks[block]) AppendHex(text, static_cast<std::uint8_t>(byte));
        text += "\r\n";
    }
    if (notes.empty()) return text;
    std::string_view rest = notes;
    for (;;) {
        // A line end of another system within the notes would make a block of what stands behind it.
        const std::size_t end = rest.find_first_of("\r\n");
        text += "TT" + ToCodePage(rest.substr(0, end)) + "\r\n";
        if (end == rest.npos) return text;
        rest.remove_prefix(end + (rest.substr(end, 2) == "\r\n" ? 2 : 1));
    }
}

}  // namespace zandrel
