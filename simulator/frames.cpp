#include "simulator/frames.h"

#include <algorithm>

namespace powerfc {
namespace {

constexpr std::int64_t kBaud = 57600;
constexpr std::int64_t kBitsPerByte = 10;  // start bit, 8 data bits, stop bit

int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return -1;
}

}  // namespace

std::int64_t WireTimeNs(std::int64_t bytes) {
    return (bytes * kBitsPerByte * 1'000'000'000 + kBaud / 2) / kBaud;
}

std::int64_t WireTimeUs(std::int64_t bytes) {
    return (WireTimeNs(bytes) + 500) / 1000;
}

std::string ToHex(const Bytes& bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

Bytes FromHex(std::string_view digits) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        const int high = DigitValue(digits[i]);
        const int low = DigitValue(digits[i + 1]);
        if (high < 0 || low < 0) break;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return bytes;
}

std::uint8_t SumOf(const Bytes& bytes) {
    unsigned sum = 0;
    for (const std::uint8_t byte : bytes) sum += byte;
    return static_cast<std::uint8_t>(sum);
}

Bytes Frame(std::uint8_t code, const Bytes& data) {
    const std::size_t count = std::min<std::size_t>(data.size(), 253);
    Bytes frame;
    frame.reserve(count + 3);
    frame.push_back(code);
    frame.push_back(static_cast<std::uint8_t>(count + 2));
    frame.insert(frame.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(count));
    frame.push_back(static_cast<std::uint8_t>(255 - SumOf(frame)));
    return frame;
}

VersionKey SplitKey(std::string_view key) {
    const std::size_t dot = key.find('.');
    if (dot == key.npos) return {std::string(key.substr(0, 8)), ""};
    const std::size_t begin = dot == 0 ? 0 : dot - 1;
    return {std::string(key.substr(0, std::min<std::size_t>(begin, 8))), std::string(key.substr(begin, 5))};
}

void FrameReader::Feed(const std::uint8_t* bytes, std::size_t count, std::int64_t firstNs,
                       std::int64_t lastNs) {
    if (buffer_.empty()) firstNs_ = firstNs;
    lastNs_ = lastNs;
    buffer_.insert(buffer_.end(), bytes, bytes + count);
}

Request FrameReader::Take(std::size_t count, bool malformed) {
    const auto end = buffer_.begin() + static_cast<std::ptrdiff_t>(count);
    Request request{Bytes(buffer_.begin(), end), firstNs_, lastNs_, malformed};
    buffer_.erase(buffer_.begin(), end);
    firstNs_ = lastNs_;
    return request;
}

std::optional<Request> FrameReader::Next() {
    if (buffer_.size() < 2) return std::nullopt;
    const std::size_t whole = buffer_[1] + std::size_t{1};
    if (whole < 3) return Take(buffer_.size(), true);
    if (buffer_.size() < whole) return std::nullopt;
    const Bytes frame(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(whole));
    if (SumOf(frame) != 255) return Take(buffer_.size(), true);
    return Take(whole, false);
}

std::optional<Request> FrameReader::GiveUp() {
    if (buffer_.empty()) return std::nullopt;
    return Take(buffer_.size(), true);
}

}  // namespace powerfc
