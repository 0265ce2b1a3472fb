#include "util/diagnostics.h"

#include <cstdint>
#include <cstdio>
#include <ctime>

#include "util/codepage.h"
#include "util/desktop.h"
#include "util/numbers.h"
#include "util/product.h"

namespace zandrel {

std::string ProgramFolder = ".";
std::string VerName;
std::string VerNumber;

namespace {

bool DebugLogFirst = true;
std::uint32_t DebugLogStartTick = 0;
std::string DebugLogVerName;
std::string DebugLogVerNumber;
std::string ErrorDescription;

// Date and time in the short form of the user's language.
std::string DateAndTime() {
    const std::time_t now = std::time(nullptr);
    char buffer[100];
    const std::tm* local = std::localtime(&now);
    if (local == nullptr || std::strftime(buffer, sizeof buffer, "%x %X", local) == 0) return {};
    return buffer;
}

}  // namespace

void DebugLogInit() {
    DebugLogFirst = true;
    DebugLogStartTick = TickCount();
    DebugLogVerName.clear();
    DebugLogVerNumber.clear();
    ErrorDescription.clear();
}

void DebugLog(const std::string& text) {
    std::FILE* file = std::fopen((ProgramFolder + "/DebugLog.txt").c_str(), "ab");
    if (file == nullptr) return;
    std::string lines;
    if (DebugLogFirst) lines += "*** " + DateAndTime() + " " + kProgramVersion + " ***\r\n";
    // The line names the version that is left behind; a log's reader finds the new one in the next.
    if (VerName != DebugLogVerName || VerNumber != DebugLogVerNumber) {
        lines += DebugLogVerName + DebugLogVerNumber + "\r\n";
    }
    const double elapsed = (TickCount() - DebugLogStartTick) / 1000.0;
    lines += FormatPoint(elapsed, "0.000") + " " + text + "\r\n";
    const std::string bytes = ToCodePage(lines);
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !written) return;
    DebugLogFirst = false;
    DebugLogVerName = VerName;
    DebugLogVerNumber = VerNumber;
}

void ClearError() {
    ErrorDescription.clear();
}

void RaiseError(const std::string& description) {
    ErrorDescription = description;
}

void ErrorLog(const std::string& routine) {
    if (ErrorDescription.empty()) {
        DebugLog("Error in " + routine);
    } else {
        DebugLog(ErrorDescription + " error in " + routine);
    }
    ErrorDescription = "My";
}

}  // namespace zandrel
