// Fuzz target of the settings store: whatever its file holds, a key gives a value of its type or none, a key
// that was written is there again, and all that the program has not written stays as it was.
//
// An input is a head of two bytes, a value and the bytes of the file:
//   0  bit 0: the value goes through a real file, and not only through its text
//   1  length of the value
#include <stdlib.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <string>

#include "files/wholefile.h"
#include "shell/inifile.h"
#include "shell/settingsstore.h"
#include "util/diagnostics.h"
#include "util/store.h"

using namespace zandrel;

namespace {

constexpr std::size_t kHeadBytes = 2;
constexpr std::size_t kLongestInput = 1 << 14;

[[noreturn]] void Surprise(const std::string& what) {
    std::fprintf(stderr, "SURPRISE: %s\n", what.c_str());
    std::abort();
}

struct Place {
    const char* Section;
    const char* Key;
};
constexpr Place kPlaces[] = {{"Settings", "MainTab"},           {"Settings", "MainLeft"},
                             {"Settings", "MapPath"},           {"Settings", "ExitSaveDefault"},
                             {"Settings", "ComPort"},           {"Settings", "StoichAF"},
                             {"RecentDatFiles", "RecentFile1"}, {"RecentDatFiles", "RecentFile4"}};

// --- What a text is as a number, by the grammar and the C library -----------------------------------------

bool AllDigits(const std::string& text, const char* digits) {
    return !text.empty() && text.find_first_not_of(digits) == text.npos;
}

bool IsDecimal(std::string text) {
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) text.erase(0, 1);
    const auto exponent = text.find_first_of("eE");
    if (exponent != text.npos) {
        std::string power = text.substr(exponent + 1);
        if (!power.empty() && (power[0] == '+' || power[0] == '-')) power.erase(0, 1);
        if (!AllDigits(power, "0123456789")) return false;
        text.resize(exponent);
    }
    const auto point = text.find('.');
    if (point != text.npos) text.erase(point, 1);
    return AllDigits(text, "0123456789");
}

std::optional<double> Number(std::string text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == text.npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(" \t") + 1 - first);
    if (text.size() > 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h')) {
        std::string digits = text.substr(2);
        if (digits.back() == '&') digits.pop_back();
        if (!AllDigits(digits, "0123456789ABCDEFabcdef")) return std::nullopt;
        errno = 0;
        const auto value = static_cast<double>(std::strtoull(digits.c_str(), nullptr, 16));
        return errno == 0 ? std::optional(value) : std::nullopt;
    }
    if (!IsDecimal(text)) return std::nullopt;
    const double value = std::strtod(text.c_str(), nullptr);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

template <class Whole>
std::optional<Whole> WholeNumber(const std::string& text) {
    const auto value = Number(text);
    if (!value) return std::nullopt;
    const double whole = std::nearbyint(*value);
    if (whole < std::numeric_limits<Whole>::min() || whole > std::numeric_limits<Whole>::max())
        return std::nullopt;
    return static_cast<Whole>(whole);
}

std::optional<float> SingleNumber(const std::string& text) {
    const auto value = Number(text);
    if (!value || std::abs(*value) > std::numeric_limits<float>::max()) return std::nullopt;
    return static_cast<float>(*value);
}

bool IsAscii(const std::string& text) {
    for (const char c : text) {
        if (static_cast<std::uint8_t>(c) > 127) return false;
    }
    return true;
}

std::optional<bool> TruthOf(std::string text) {
    const auto first = text.find_first_not_of(' ');
    std::string word = first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') + 1 - first);
    for (char& c : word) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    if (word == "true" || word == "false") return word == "true";
    const auto value = Number(text);
    return value ? std::optional(*value != 0) : std::nullopt;
}

// Below what the widest type holds, zero and no value are both fair.
bool IsBelowAllTypes(const std::string& text) {
    errno = 0;
    return std::strtold(text.c_str(), nullptr) == 0 && errno == ERANGE;
}

void CheckTypes(const std::string& key, const std::string& text) {
    if (GetSetting("Settings", key, "") != text) Surprise("another text");
    if (IsBelowAllTypes(text)) return;
    if (GetSingle(key, 0) != SingleNumber(text)) Surprise("another single");
    if (GetInteger(key, 0) != WholeNumber<std::int16_t>(text)) Surprise("another integer");
    if (GetLong(key, 0) != WholeNumber<std::int32_t>(text)) Surprise("another long");
    // Other letters may count as one of the words in another case.
    if (IsAscii(text) && GetBoolean(key, false) != TruthOf(text)) Surprise("another truth");
    static_cast<void>(GetBoolean(key, false));
}

// What was read and is written again reads as the same.
void CheckWrittenNumbers(const std::string& key) {
    if (const auto value = GetLong(key, 0)) {
        SaveNumber(key, *value);
        if (GetLong(key, 0) != value) Surprise("a whole number that does not survive");
    }
    if (const auto value = GetBoolean(key, false)) {
        SaveBoolean(key, *value);
        if (GetBoolean(key, !*value) != value) Surprise("a truth that does not survive");
    }
}

void CheckText(const std::string& bytes, const std::string& value) {
    IniFile file(bytes);
    if (file.Bytes() != bytes) Surprise("a file that is not as it was");
    std::optional<std::string> before[std::size(kPlaces)];
    for (std::size_t i = 0; i < std::size(kPlaces); ++i)
        before[i] = file.Find(kPlaces[i].Section, kPlaces[i].Key);
    for (std::size_t set = 0; set < std::size(kPlaces); ++set) {
        IniFile written(bytes);
        written.Set(kPlaces[set].Section, kPlaces[set].Key, value);
        const std::string once = written.Bytes();
        written.Set(kPlaces[set].Section, kPlaces[set].Key, value);
        if (written.Bytes() != once) Surprise("a file that grows");
        const IniFile read(once);
        if (read.Bytes() != once) Surprise("a file that is not as it was");
        for (std::size_t i = 0; i < std::size(kPlaces); ++i) {
            const auto expected = i == set ? std::optional(value) : before[i];
            if (written.Find(kPlaces[i].Section, kPlaces[i].Key) != expected)
                Surprise("another value at once");
            if (read.Find(kPlaces[i].Section, kPlaces[i].Key) != expected)
                Surprise("another value when read");
        }
    }
}

const std::string& File() {
    static std::string path;
    if (!path.empty()) return path;
    static int count = 1;
    static char name[] = "settingsstore";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
    std::string pattern = std::filesystem::temp_directory_path() / "zandrel-fuzz-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) Surprise("no folder");
    ProgramFolder = "/dev/null";  // no file can stand in it, so nothing is logged
    Flush = [](int) { return true; };
    path = pattern + "/settings.ini";
    std::atexit([] {
        unlink(path.c_str());
        rmdir(path.substr(0, path.rfind('/')).c_str());
    });
    return path;
}

void CheckFile(const std::string& bytes, const std::string& value) {
    Store = {};
    std::ofstream(File(), std::ios::binary) << bytes;
    OpenSettingsStore(File());
    const IniFile held(bytes);
    for (const Place& place : kPlaces) {
        if (GetSetting(place.Section, place.Key, "none") !=
            held.Find(place.Section, place.Key).value_or("none"))
            Surprise("another value than in the file");
    }
    SaveSetting("Settings", "MainTab", value);
    FlushSettingsStore();
    OpenSettingsStore(File());
    CheckTypes("MainTab", value);
    if (GetSetting("Settings", "MapPath", "none") != held.Find("Settings", "MapPath").value_or("none"))
        Surprise("a key that nobody has written has changed");
    CheckWrittenNumbers("MainTab");
    FlushSettingsStore();
    // The writes that wait for the event loop pile up otherwise.
    QCoreApplication::sendPostedEvents();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kHeadBytes || size > kLongestInput) return 0;
    const std::string all(reinterpret_cast<const char*>(data) + kHeadBytes, size - kHeadBytes);
    const std::string value = all.substr(0, data[1]);
    const std::string bytes = all.substr(value.size());
    File();
    CheckText(bytes, value);
    if ((data[0] & 1) != 0) {
        CheckFile(bytes, value);
        return 0;
    }
    std::string kept = value;
    Store.Get = [&kept](const std::string&, const std::string&, const std::string&) { return kept; };
    Store.Save = [&kept](const std::string&, const std::string&, const std::string& text) { kept = text; };
    CheckTypes("Any", value);
    CheckWrittenNumbers("Any");
    return 0;
}
