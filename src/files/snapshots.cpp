#include "files/snapshots.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/wholefile.h"
#include "image/image.h"
#include "tuning/settings.h"
#include "util/codepage.h"
#include "util/diagnostics.h"
#include "util/text.h"

namespace zandrel {
namespace {

constexpr std::size_t kMostSnapshots = 50;
constexpr std::string_view kSuffix = ".dat";
constexpr std::string_view kTimePicture = " 0000-00-00 00.00.00";

// A file of the folder that is a snapshot by its name.
struct Named {
    std::string Title, Build, Time;
    int Nth = 1;  // of the same second
};

std::vector<Snapshot> Listed;

std::string Folder() {
    return ProgramFolder + "/Snapshots";
}

bool HasPicture(std::string_view text, std::string_view picture) {
    return std::equal(text.begin(), text.end(), picture.begin(), picture.end(), [](char c, char wanted) {
        return wanted == '0' ? std::isdigit(static_cast<unsigned char>(c)) != 0 : c == wanted;
    });
}

// Takes " (2)" off the end of `name`. No number: 1.
int TakeNth(std::string& name) {
    const auto open = name.rfind(" (");
    if (open == name.npos || name.back() != ')') return 1;
    const std::string digits = name.substr(open + 2, name.size() - open - 3);
    if (digits.empty() || digits.size() > 4 || !HasPicture(digits, std::string(digits.size(), '0'))) return 1;
    name.resize(open);
    return std::atoi(digits.c_str());
}

std::optional<Named> NameOf(const std::string& title) {
    if (title.size() < kSuffix.size() || title.substr(title.size() - kSuffix.size()) != kSuffix) return {};
    Named named{.Title = title, .Build = title.substr(0, title.size() - kSuffix.size()), .Time = {}};
    named.Nth = TakeNth(named.Build);
    if (named.Build.size() <= kTimePicture.size()) return {};
    const auto at = named.Build.size() - kTimePicture.size();
    named.Time = named.Build.substr(at);
    if (!HasPicture(named.Time, kTimePicture)) return {};
    named.Build.resize(at);
    return named;
}

std::vector<Named> NewestFirst() {
    std::vector<Named> all;
    for (const QString& title :
         QDir(QString::fromStdString(Folder())).entryList(QDir::Files | QDir::Hidden)) {
        if (auto named = NameOf(title.toStdString())) all.push_back(std::move(*named));
    }
    std::stable_sort(all.begin(), all.end(), [](const Named& left, const Named& right) {
        return left.Time != right.Time ? left.Time > right.Time : left.Nth > right.Nth;
    });
    return all;
}

std::string TextOf(const ByteString& block, std::size_t length) {
    return Trim(FromCodePage(block.substr(0, length)));
}

// "RB26DETT 6.42", or nothing; characters that no system takes in a name stand as '_'.
std::string BuildName(const std::array<ByteString, 256>& blocks) {
    std::string name = TextOf(blocks[0xF3], 8);
    std::string number = TextOf(blocks[0xF5], 5);
    if (name.empty()) {
        name = TextOf(blocks[0x6B], 8);
        number = TextOf(blocks[0x6C], 5);
    }
    if (name.empty()) return {};
    std::string build = number.empty() ? name : name + " " + number;
    for (char& c : build) {
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7F' ||
            std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos)
            c = '_';
    }
    if (build.front() == '.') build.front() = '_';
    return build;
}

// A name that nothing has yet.
std::string FreeTitle(const std::string& name) {
    std::string title = name + std::string(kSuffix);
    for (int nth = 2; QFile::exists(QString::fromStdString(Folder() + "/" + title)); ++nth) {
        title = name + " (" + std::to_string(nth) + ")" + std::string(kSuffix);
    }
    return title;
}

// Keeps the newest, and the one just written even where the clock says that it is old.
void RemoveOld(const std::string& written) {
    std::vector<Named> all = NewestFirst();
    for (std::size_t i = all.size(), left = all.size(); i > 0 && left > kMostSnapshots; --i) {
        if (all[i - 1].Title == written) continue;
        if (!QFile::remove(QString::fromStdString(Folder() + "/" + all[i - 1].Title))) {
            DebugLog("Could not remove snapshot " + all[i - 1].Title);
        }
        --left;
    }
}

void Keep(const std::array<ByteString, 256>& blocks, const std::string& notes, const std::string& time,
          bool unnamed) {
    const std::string build = BuildName(blocks);
    if (build.empty() && !unnamed) return;
    QDir().mkpath(QString::fromStdString(Folder()));
    const std::string title = FreeTitle((build.empty() ? "Unknown" : build) + " " + time);
    if (!WriteWholeFile(Folder() + "/" + title, FormatDataText(blocks, notes))) {
        DebugLog("Could not keep snapshot " + title);
        return;
    }
    RemoveOld(title);
}

}  // namespace

std::string SnapshotTime() {
    return QDateTime::currentDateTime().toString("yyyy-MM-dd HH.mm.ss").toStdString();
}

void KeepSnapshot(const std::string& time) {
    Keep(ReadData, txtNotes.Text, time, false);
}

void KeepSnapshotOf(const DataText& data, const std::string& time) {
    Keep(data.Blocks, data.Notes, time, true);
}

std::vector<Snapshot> ListSnapshots() {
    Listed.clear();
    for (const Named& named : NewestFirst()) {
        std::string caption = named.Build + named.Time;
        std::replace(caption.end() - 8, caption.end(), '.', ':');
        if (named.Nth > 1) caption += " (" + std::to_string(named.Nth) + ")";
        Listed.push_back({Folder() + "/" + named.Title, std::move(caption)});
    }
    return Listed;
}

bool IsSnapshotFolder(const std::string& folder) {
    const auto clean = [](const std::string& path) {
        return QDir(QString::fromStdString(path)).absolutePath();
    };
    return clean(folder) == clean(Folder());
}

void OpenSnapshot(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= Listed.size()) return;
    std::string path = Listed[static_cast<std::size_t>(index)].Path;
    OpenFile(path, true);
}

}  // namespace zandrel
