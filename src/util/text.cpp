#include "util/text.h"

namespace zandrel {

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const auto end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == text.npos) return parts;
        text.remove_prefix(end + 1);
    }
}

std::string Join(const std::vector<std::string>& parts, char separator) {
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) text += separator;
        text += parts[i];
    }
    return text;
}

std::string Trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == text.npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string ReplaceField(std::string_view text, std::string_view value, int field) {
    auto parts = Split(text, ',');
    if (field >= 0 && field < static_cast<int>(parts.size())) parts[static_cast<std::size_t>(field)] = value;
    return Join(parts, ',');
}

}  // namespace zandrel
