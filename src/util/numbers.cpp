#include "util/numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace zandrel {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

bool StartsHexadecimal(std::string_view text) {
    return text.size() >= 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h');
}

// The number that `text` begins with and how many characters it takes; none taken = no number.
// from_chars knows "inf" and "nan" too, so a digit or a point has to come first.
std::size_t TakeDecimal(std::string_view text, double& value) {
    std::size_t start = 0;
    bool negative = false;
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
        negative = text[0] == '-';
        start = 1;
    }
    if (start >= text.size() || !((text[start] >= '0' && text[start] <= '9') || text[start] == '.')) return 0;
    const char* first = text.data() + start;
    const auto [end, error] = std::from_chars(first, text.data() + text.size(), value);
    if (error == std::errc::invalid_argument) return 0;
    if (error == std::errc::result_out_of_range) {
        // Too small a number is a zero; too large a one is infinite and refused by the callers.
        long double wide = 0;
        const bool fits = std::from_chars(first, end, wide).ec == std::errc();
        // Beyond even that only its form tells which it is.
        const std::string_view form(first, static_cast<std::size_t>(end - first));
        const auto power = form.find_first_of("eE");
        const bool tiny = power == form.npos ? form.find_first_not_of('0') == form.find('.')
                                             : form.substr(power + 1, 1) == "-";
        value = (fits ? wide < 1 : tiny) ? 0.0 : std::numeric_limits<double>::infinity();
    }
    if (negative) value = -value;
    return static_cast<std::size_t>(end - text.data());
}

std::size_t TakeHexadecimal(std::string_view text, double& value) {
    std::uint64_t whole = 0;
    const auto [end, error] = std::from_chars(text.data() + 2, text.data() + text.size(), whole, 16);
    if (error == std::errc::invalid_argument) return 0;
    value = error == std::errc() ? static_cast<double>(whole) : std::numeric_limits<double>::infinity();
    std::size_t taken = static_cast<std::size_t>(end - text.data());
    if (taken < text.size() && text[taken] == '&') ++taken;
    return taken;
}

std::size_t TakeNumber(std::string_view text, double& value) {
    return StartsHexadecimal(text) ? TakeHexadecimal(text, value) : TakeDecimal(text, value);
}

}  // namespace

std::optional<double> StrictNumber(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    double value = 0;
    if (text.empty() || TakeNumber(text, value) != text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<std::int32_t> StrictWhole(std::string_view text) {
    const auto value = StrictNumber(text);
    if (!value) return std::nullopt;
    const double whole = RoundEven(*value);
    if (whole < std::numeric_limits<std::int32_t>::min() ||
        whole > std::numeric_limits<std::int32_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(whole);
}

double LenientNumber(std::string_view text) {
    return LeadingNumber(text).value_or(0);
}

std::optional<double> LeadingNumber(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    double value = 0;
    if (TakeNumber(text, value) == 0) return 0;
    if (!std::isfinite(value)) return std::nullopt;
    return value;
}

std::string WithDecimalPoint(std::string_view text) {
    const auto comma = text.find(',');
    if (comma == text.npos || StrictNumber(text)) return std::string(text);
    std::string pointed(text);
    pointed[comma] = '.';
    return StrictNumber(pointed) ? pointed : std::string(text);
}

double RoundEven(double value) {
    return std::nearbyint(value);
}

std::string FormatNumber(double value, std::string_view picture) {
    char buffer[400];
    std::to_chars_result result{};
    if (picture.empty()) {
        result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15);
    } else {
        const auto point = picture.find('.');
        const auto decimals = point == picture.npos ? 0 : picture.size() - point - 1;
        result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                               static_cast<int>(decimals));
    }
    if (result.ec != std::errc()) return {};
    std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
    const bool zero = text.find_first_of("123456789") == text.npos && std::isfinite(value);
    if (zero && text.front() == '-') text.remove_prefix(1);
    return std::string(text);
}

std::string FormatPoint(double value, std::string_view picture) {
    std::string text = FormatNumber(value, picture);
    const auto comma = text.find(',');
    if (comma != text.npos) text[comma] = '.';
    return text;
}

std::string NumberText(std::int64_t value) {
    return (value < 0 ? "" : " ") + std::to_string(value);
}

std::string Hex(std::uint32_t value) {
    char buffer[8];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value, 16);
    std::string text(buffer, end);
    for (char& c : text) {
        if (c >= 'a') c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

std::string Hex2(std::uint32_t value) {
    const std::string digits = "0" + Hex(value);
    return digits.substr(digits.size() - 2);
}

double SafeNumber(std::string_view text) {
    return StrictNumber(text).value_or(0);
}

float MinSingle(float a, float b) {
    return a < b ? a : b;
}

float MaxSingle(float a, float b) {
    return a > b ? a : b;
}

}  // namespace zandrel
