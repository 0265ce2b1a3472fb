#include "files/journal.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/processlock.h"
#include "files/snapshots.h"
#include "files/wholefile.h"
#include "image/image.h"
#include "tuning/settings.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/text.h"

namespace zandrel {
namespace {

// The file: the block records of a data file as the base, then a line to each gesture. "+", its items, "*"
// and the sum of all that stands before the star. An item "8D@3-1=07 ": in block 8D, from byte 3 on (counted
// from 0), 1 byte is replaced by these. "TT" are the notes in UTF-8. All numbers are hexadecimal.

constexpr int kMostPrograms = 9;
constexpr std::size_t kLargestJournal = 128U << 20;  // notes of the largest file take six times their bytes
constexpr std::size_t kMostLines = 1U << 20;         // bytes; then a new base is written
constexpr std::size_t kSumDigits = 16;
constexpr std::string_view kLineEnd = "\r\n";

// Place of one running program's journal.
struct Place {
    std::string Path;
    std::unique_ptr<ProcessLock> Lock;
};

Place Own;             // held; no path: none yet
bool Waits = false;    // a crashed run has left the journal that stands there
DataText Waiting;      // what it gives
bool Begun = false;    // edits are journalled
bool Failing = false;  // the user's log has a line about it
QFile Lines;           // open for appending while the journal has a base
std::uint64_t Sum = 0;
std::size_t LineBytes = 0;

// What the journal gives when it is recovered.
std::array<ByteString, 256> Kept;
std::string KeptNotes;

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

std::string PathOf(int program, const char* suffix) {
    return ProgramFolder + "/Unsaved" + (program == 1 ? "" : " " + std::to_string(program)) + suffix;
}

constexpr std::uint64_t kEmptySum = 0xCBF29CE484222325;

std::uint64_t SumOf(std::uint64_t sum, std::string_view bytes) {
    for (const char byte : bytes) sum = (sum ^ static_cast<std::uint8_t>(byte)) * 0x100000001B3;
    return sum;
}

void AppendHex(std::string& text, std::uint64_t value, int digits) {
    for (int i = digits - 1; i >= 0; --i) text += "0123456789ABCDEF"[(value >> (4 * i)) & 15];
}

bool TakeHex(std::string_view text, std::uint64_t& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return error == std::errc() && end == text.data() + text.size();
}

bool TakeBytes(std::string_view text, std::string& bytes) {
    if (text.size() % 2 != 0) return false;
    bytes.clear();
    for (std::size_t i = 0; i < text.size(); i += 2) {
        std::uint64_t byte = 0;
        if (!TakeHex(text.substr(i, 2), byte)) return false;
        bytes += static_cast<char>(byte);
    }
    return true;
}

// The item that makes `before` to `after`; nothing if they are the same.
void AppendItem(std::string& line, std::string_view before, std::string_view after) {
    const auto first = static_cast<std::size_t>(
        std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first - before.begin());
    before.remove_prefix(first);
    after.remove_prefix(first);
    const auto same = static_cast<std::size_t>(
        std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend()).first - before.rbegin());
    before.remove_suffix(same);
    after.remove_suffix(same);
    line += '@';
    AppendHex(line, first, 8);
    line += '-';
    AppendHex(line, before.size(), 8);
    line += '=';
    for (const char byte : after) AppendHex(line, static_cast<std::uint8_t>(byte), 2);
    line += ' ';
}

std::string Closed(std::string line, std::uint64_t& sum) {
    sum = SumOf(sum, line);
    line += '*';
    AppendHex(line, sum, kSumDigits);
    return line.append(kLineEnd);
}

// False: `item` is none, or does not fit.
bool TakeItem(std::string_view item, DataText& data) {
    const auto at = item.find('@'), minus = item.find('-'), equal = item.find('=');
    if (at != 2 || minus == item.npos || equal == item.npos || minus < at || equal < minus) return false;
    std::uint64_t block = 0, start = 0, removed = 0;
    std::string bytes;
    const bool notes = item.substr(0, at) == "TT";
    if (!notes && !TakeHex(item.substr(0, at), block)) return false;
    if (!TakeHex(item.substr(at + 1, minus - at - 1), start) ||
        !TakeHex(item.substr(minus + 1, equal - minus - 1), removed) ||
        !TakeBytes(item.substr(equal + 1), bytes)) {
        return false;
    }
    std::string& target = notes ? data.Notes : data.Blocks[block];
    if (start > target.size() || removed > target.size() - start) return false;
    target.replace(start, removed, bytes);
    return true;
}

bool TakeLine(std::string_view items, DataText& data) {
    while (!items.empty()) {
        const auto end = items.find(' ');
        if (end == items.npos || !TakeItem(items.substr(0, end), data)) return false;
        items.remove_prefix(end + 1);
    }
    return true;
}

// What the journal at `path` gives, up to its last whole line. False: there is none.
bool ReadJournal(const std::string& path, DataText& data) {
    data = {};
    std::string bytes;
    if (ReadWholeFile(path, kLargestJournal, bytes) != FileResult::Done) return false;
    std::string_view rest = bytes;
    std::size_t base = 0;
    if (rest.substr(0, 1) != "+") {
        base = rest.find("\r\n+");
        if (base == rest.npos) return false;
        base += kLineEnd.size();
    }
    ParseDataText(rest.substr(0, base), data);
    std::uint64_t sum = SumOf(kEmptySum, rest.substr(0, base));
    rest.remove_prefix(base);
    bool any = false;
    for (;;) {
        const auto end = rest.find(kLineEnd);
        if (end == rest.npos || end < kSumDigits + 2) return any;
        const std::string_view line = rest.substr(0, end - kSumDigits - 1);
        std::uint64_t wanted = 0;
        sum = SumOf(sum, line);
        if (rest[line.size()] != '*' || !TakeHex(rest.substr(line.size() + 1, kSumDigits), wanted))
            return any;
        if (line[0] != '+' || sum != wanted || !TakeLine(line.substr(1), data)) return any;
        any = true;
        rest.remove_prefix(end + kLineEnd.size());
    }
}

// The lock that a program holds on its journal while it runs.
std::unique_ptr<ProcessLock> LockOf(int program) {
    return ProcessLock::Take(PathOf(program, ".lock"));
}

// A base that was being written when its program was killed.
void RemoveHalfWritten(const std::string& path) {
    const QFileInfo journal(Q(path));
    for (const QFileInfo& half :
         journal.dir().entryInfoList({journal.fileName() + ".*"}, QDir::Files | QDir::Hidden)) {
        QFile::remove(half.filePath());
    }
}

void Hold(int program, std::unique_ptr<ProcessLock> lock) {
    Own = {PathOf(program, ".journal"), std::move(lock)};
    RemoveHalfWritten(Own.Path);
}

void LetGo() {
    Own = {};
    Waits = false;
    Waiting = {};
}

// False: the folder can't be written, or too many programs run.
bool HoldFree() {
    for (int program = 1; program <= kMostPrograms; ++program) {
        const QString path = Q(PathOf(program, ".journal"));
        if (QFile::exists(path)) continue;
        auto lock = LockOf(program);
        if (!lock) continue;
        // It may have crashed in between.
        if (QFile::exists(path)) continue;
        Hold(program, std::move(lock));
        return true;
    }
    return false;
}

void Fail() {
    if (!std::exchange(Failing, true)) DebugLog("Could not journal unsaved changes");
}

// The line that makes these to what the image and its notes are now.
std::string LineFrom(const std::array<ByteString, 256>& kept, const std::string& keptNotes) {
    std::string line = "+";
    for (std::size_t b = 0; b < ReadData.size(); ++b) {
        if (kept[b] == ReadData[b]) continue;
        AppendHex(line, b, 2);
        AppendItem(line, kept[b], ReadData[b]);
    }
    if (keptNotes == txtNotes.Text) return line;
    line += "TT";
    AppendItem(line, keptNotes, txtNotes.Text);
    return line;
}

bool WriteBase() {
    Lines.close();
    std::string text = FormatDataText(ReadData, "");
    Sum = SumOf(kEmptySum, text);
    text += Closed(LineFrom(ReadData, {}), Sum);
    if (!WriteWholeFile(Own.Path, text)) return false;
    Kept = ReadData;
    KeptNotes = txtNotes.Text;
    LineBytes = 0;
    Lines.setFileName(Q(Own.Path));
    return Lines.open(QIODevice::Append | QIODevice::Unbuffered);
}

bool WriteLine() {
    std::string line = LineFrom(Kept, KeptNotes);
    if (line.size() == 1) return true;
    line = Closed(std::move(line), Sum);
    if (Lines.write(line.data(), static_cast<qint64>(line.size())) != static_cast<qint64>(line.size())) {
        // A line cut off here is the last one: the next edit writes a new base.
        Lines.close();
        return false;
    }
    LineBytes += line.size();
    for (std::size_t b = 0; b < ReadData.size(); ++b) {
        if (Kept[b] != ReadData[b]) Kept[b] = ReadData[b];
    }
    KeptNotes = txtNotes.Text;
    return true;
}

void RemoveOwn() {
    Lines.close();
    if (Own.Path.empty()) return;
    if (QFile::exists(Q(Own.Path)) && !QFile::remove(Q(Own.Path))) {
        DebugLog("Could not remove " + Own.Path);
    }
}

// Nothing offers it any more, but whoever needs it finds it.
void SetAside() {
    const std::string aside = ProgramFolder + "/Unsaved " + SnapshotTime() + ".unread";
    DebugLog("Unsaved changes could not be read: " + aside);
    QFile::remove(Q(aside));
    QFile::rename(Q(Own.Path), Q(aside));
}

}  // namespace

bool AskRecovery() {
    if (!JournalWaits()) return false;
    const std::string time =
        QFileInfo(Q(Own.Path)).lastModified().toString("yyyy-MM-dd HH:mm:ss").toStdString();
    if (MessageBox("Zandrel did not end properly. Your unsaved changes of " + time +
                       " can be recovered.\nDo you want to recover them?",
                   Box::YesNo) == Answer::Yes) {
        return true;
    }
    DropJournal();
    return false;
}

void BeginJournal() {
    if (Waits) LetGo();
    Begun = true;
    Failing = false;
    if (Own.Path.empty() && !HoldFree()) Fail();
}

void WriteJournal() {
    if (!Begun) return;
    if (Own.Path.empty() && !HoldFree()) {
        Fail();
        return;
    }
    const bool whole = !Lines.isOpen() || LineBytes > kMostLines;
    if ((!whole && WriteLine()) || WriteBase()) {
        Failing = false;
    } else {
        Fail();
    }
}

void RestartJournal() {
    if (Begun) RemoveOwn();
}

void EndJournal() {
    if (!Waits) RemoveOwn();
    LetGo();
    Begun = Failing = false;
    Kept.fill({});
    KeptNotes.clear();
}

bool JournalWaits() {
    if (Waits || Begun) return Waits;
    std::vector<std::pair<QDateTime, int>> left;
    for (int program = 1; program <= kMostPrograms; ++program) {
        const QFileInfo journal(Q(PathOf(program, ".journal")));
        if (journal.isFile()) left.emplace_back(journal.lastModified(), program);
    }
    std::sort(left.rbegin(), left.rend());
    for (const auto& [time, program] : left) {
        auto lock = LockOf(program);
        if (!lock) continue;
        Hold(program, std::move(lock));
        if (ReadJournal(Own.Path, Waiting)) {
            Waits = true;
            return true;
        }
        // Or the other program has just ended well.
        if (QFile::exists(Q(Own.Path))) SetAside();
        LetGo();
    }
    return false;
}

bool RecoverJournal() {
    if (!JournalWaits()) return false;
    if (!TakeInImage(Waiting, "Recovered Data")) {
        DropJournal();
        return false;
    }
    Waits = false;
    Waiting = {};
    DataChanged = true;
    // They stay safe until they are saved.
    if (!WriteBase()) Fail();
    return true;
}

void DropJournal() {
    if (!JournalWaits()) return;
    KeepSnapshotOf(Waiting);
    RemoveOwn();
    Waits = false;
    Waiting = {};
}

}  // namespace zandrel
