#include "shell/inifile.h"

#include <algorithm>
#include <cstdint>

namespace zandrel {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kEscapes = "abfnrtv0\"\\";
constexpr std::string_view kEscaped("\a\b\f\n\r\t\v\0\"\\", 10);

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The character of a hexadecimal escape; `text` loses its digits.
std::string TakeHex(std::string_view& text) {
    std::uint32_t code = 0;
    while (!text.empty() && HexDigit(text.front()) >= 0) {
        code =
            std::min<std::uint32_t>(code * 16 + static_cast<std::uint32_t>(HexDigit(text.front())), 0xFFFF);
        text.remove_prefix(1);
    }
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    if (code < 0x80) return {byte(code)};
    if (code < 0x800) return {byte(0xC0 | code >> 6), byte(0x80 | (code & 63))};
    return {byte(0xE0 | code >> 12), byte(0x80 | (code >> 6 & 63)), byte(0x80 | (code & 63))};
}

// What follows a backslash; one that begins no escape stands for itself.
std::string TakeEscape(std::string_view& text) {
    if (text.empty()) return "\\";
    if (text.size() > 1 && text[0] == 'x' && HexDigit(text[1]) >= 0) {
        text.remove_prefix(1);
        return TakeHex(text);
    }
    const std::size_t known = kEscapes.find(text[0]);
    if (known == kEscapes.npos) return "\\";
    text.remove_prefix(1);
    return {kEscaped[known]};
}

std::string ReadValue(std::string_view text) {
    std::string value;
    while (!text.empty()) {
        const char c = text.front();
        text.remove_prefix(1);
        if (c == '\\') {
            value += TakeEscape(text);
        } else if (c != '"') {
            value += c;
        }
    }
    // A first "@" is doubled in the file.
    if (value.substr(0, 2) == "@@") value.erase(0, 1);
    return value;
}

std::string WriteValue(const std::string& value) {
    constexpr char kHex[] = "0123456789abcdef";
    std::string text;
    if (!value.empty() && value.front() == '@') text += '@';
    bool afterHex = false;
    for (const char c : value) {
        const auto byte = static_cast<std::uint8_t>(c);
        const std::size_t known = kEscaped.find(c);
        const bool hex = known == kEscaped.npos ? byte < 0x20 : false;
        // A digit behind a hexadecimal escape would be taken for one of its own.
        if (hex || (afterHex && HexDigit(c) >= 0)) {
            text += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
            afterHex = true;
            continue;
        }
        afterHex = false;
        if (known != kEscaped.npos) {
            text += {'\\', kEscapes[known]};
            afterHex = c == '\0';
        } else {
            text += c;
        }
    }
    const bool blanks = !text.empty() && (text.front() == ' ' || text.back() == ' ');
    return blanks || text.find_first_of(";,=#") != text.npos ? '"' + text + '"' : text;
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlank);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(kBlank) + 1 - first);
}

}  // namespace

IniFile::IniFile(std::string_view bytes) {
    std::string section;
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
        TakeLine(bytes.substr(0, end), section);
        bytes.remove_prefix(end);
    }
}

void IniFile::TakeLine(std::string_view line, std::string& section) {
    lines_.emplace_back(line);
    const std::size_t at = lines_.size() - 1;
    if (at == 0 && line.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        line.remove_prefix(kByteOrderMark.size());
    }
    line = Trimmed(line);
    if (line.empty() || line.front() == ';' || line.front() == '#') return;
    if (line.front() == '[' && line.back() == ']') {
        section = Trimmed(line.substr(1, line.size() - 2));
    } else if (const std::size_t equals = line.find('='); equals != line.npos) {
        const std::string key(Trimmed(line.substr(0, equals)));
        entries_[{section, key}] = {at, ReadValue(Trimmed(line.substr(equals + 1)))};
    }
    lastLine_[section] = at;
}

std::optional<std::string> IniFile::Find(const std::string& section, const std::string& key) const {
    const auto found = entries_.find({section, key});
    return found == entries_.end() ? std::nullopt : std::optional(found->second.Value);
}

void IniFile::Set(const std::string& section, const std::string& key, const std::string& value) {
    const std::string line = key + "=" + WriteValue(value) + "\n";
    if (const auto found = entries_.find({section, key}); found != entries_.end()) {
        if (found->second.Value == value) return;
        lines_[found->second.Line] = line;
        found->second.Value = value;
        return;
    }
    // A last line without its end was cut off.
    if (!lines_.empty() && lines_.back().back() != '\n') lines_.back() += '\n';
    std::size_t at = lines_.size();
    if (const auto last = lastLine_.find(section); last != lastLine_.end()) {
        at = last->second + 1;
    } else {
        if (at != 0) lines_.emplace_back("\n");
        lines_.push_back("[" + section + "]\n");
        at = lines_.size();
    }
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), line);
    for (auto& [name, entry] : entries_) entry.Line += entry.Line >= at ? 1 : 0;
    for (auto& [name, last] : lastLine_) last += last >= at ? 1 : 0;
    entries_[{section, key}] = {at, value};
    lastLine_[section] = at;
}

std::string IniFile::Bytes() const {
    std::string bytes;
    for (const std::string& line : lines_) bytes += line;
    return bytes;
}

}  // namespace zandrel
