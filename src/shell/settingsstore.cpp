#include "shell/settingsstore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QMetaObject>
#include <QSettings>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include "files/wholefile.h"
#include "shell/inifile.h"
#include "util/diagnostics.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

constexpr std::size_t kLargestStore = 1U << 20;
constexpr int kLockMs = 2000;

// The store as this run sees it: what the file held when it was opened, and what was written since.
struct OpenStore {
    std::string Path;
    bool Users = false;  // the user's own: its folder is made where it is missing
    IniFile Seen;
    std::map<std::pair<std::string, std::string>, std::string> Unwritten;
    bool FlushWaits = false;
    std::string Trouble;
};

OpenStore Opened;

QString UsersStore() {
    // Only the name is asked for.
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Zandrel"),
                     QStringLiteral("Zandrel"))
        .fileName();
}

// A store that is not there yet is an empty one. False: there is something that cannot be read.
bool ReadStore(std::string& bytes) {
    bytes.clear();
    const QFileInfo file(QString::fromStdString(Opened.Path));
    if (!file.exists() && !file.isSymLink()) return true;
    return ReadWholeFile(Opened.Path, kLargestStore, bytes) == FileResult::Done;
}

// A trouble is told once, not at each key.
void HaveTrouble(const std::string& text) {
    if (Opened.Trouble == text) return;
    Opened.Trouble = text;
    DebugLog(text);
}

// Other runs of the program write to the same file: each brings its own keys into what stands there now. What
// cannot be read is not replaced.
void WriteOut() {
    Opened.FlushWaits = false;
    if (Opened.Unwritten.empty()) return;
    const QString path = QString::fromStdString(Opened.Path);
    if (Opened.Users) QDir().mkpath(QFileInfo(path).absolutePath());
    QLockFile lock(path + QStringLiteral(".lock"));
    // Whoever holds it for so long is stuck; the file is replaced as a whole in any case.
    static_cast<void>(lock.tryLock(kLockMs));
    std::string bytes;
    if (!ReadStore(bytes)) {
        HaveTrouble("The settings cannot be read and are not replaced: " + Opened.Path);
        return;
    }
    IniFile file(bytes);
    for (const auto& [place, value] : Opened.Unwritten) file.Set(place.first, place.second, value);
    const std::string written = file.Bytes();
    if (written != bytes && !WriteWholeFile(Opened.Path, written)) {
        HaveTrouble("The settings cannot be written: " + Opened.Path);
        return;
    }
    Opened.Trouble.clear();
    Opened.Unwritten.clear();
    Opened.Seen = std::move(file);
}

std::string ReadKey(const std::string& section, const std::string& key, const std::string& fallback) {
    const auto unwritten = Opened.Unwritten.find({section, key});
    if (unwritten != Opened.Unwritten.end()) return unwritten->second;
    return Opened.Seen.Find(section, key).value_or(fallback);
}

// Keys that are written in one go come to the disk together, at the next turn of the event loop: a crash
// after it does not lose them.
void WriteKey(const std::string& section, const std::string& key, const std::string& value) {
    Opened.Unwritten[{section, key}] = value;
    if (Opened.FlushWaits || QCoreApplication::instance() == nullptr) return;
    Opened.FlushWaits = true;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { WriteOut(); }, Qt::QueuedConnection);
}

template <class Whole>
std::optional<Whole> GetWhole(const std::string& key, Whole fallback) {
    const auto value = StrictWhole(GetSetting("Settings", key, std::to_string(fallback)));
    if (!value || *value < std::numeric_limits<Whole>::min() || *value > std::numeric_limits<Whole>::max()) {
        return std::nullopt;
    }
    return static_cast<Whole>(*value);
}

}  // namespace

void OpenSettingsStore(const std::string& path) {
    if (!Opened.Path.empty()) WriteOut();
    Opened = OpenStore();
    Opened.Users = path.empty();
    Opened.Path = Opened.Users ? UsersStore().toStdString() : path;
    std::string bytes;
    if (ReadStore(bytes)) Opened.Seen = IniFile(bytes);
    Store = {ReadKey, WriteKey};
}

std::optional<float> GetSingle(const std::string& key, float fallback) {
    const auto value = StrictNumber(GetSetting("Settings", key, FormatNumber(fallback, "")));
    if (!value || std::abs(*value) > std::numeric_limits<float>::max()) return std::nullopt;
    return static_cast<float>(*value);
}

std::optional<std::int16_t> GetInteger(const std::string& key, std::int16_t fallback) {
    return GetWhole<std::int16_t>(key, fallback);
}

std::optional<std::int32_t> GetLong(const std::string& key, std::int32_t fallback) {
    return GetWhole<std::int32_t>(key, fallback);
}

std::optional<bool> GetBoolean(const std::string& key, bool fallback) {
    const std::string text = Trim(GetSetting("Settings", key, fallback ? "True" : "False"));
    const QString word = QString::fromStdString(text);
    if (word.compare("True", Qt::CaseInsensitive) == 0) return true;
    if (word.compare("False", Qt::CaseInsensitive) == 0) return false;
    const auto number = StrictNumber(text);
    if (!number) return std::nullopt;
    return *number != 0;
}

void SaveNumber(const std::string& key, double value) {
    SaveSetting("Settings", key, FormatPoint(value, ""));
}

void SaveBoolean(const std::string& key, bool value) {
    SaveSetting("Settings", key, value ? "True" : "False");
}

void FlushSettingsStore() {
    if (!Opened.Path.empty()) WriteOut();
}

void KeepUnreadStore() {
    // An earlier one is nearer to what the user had: the stop has written defaults since.
    const std::string copy = Opened.Path + ".unread";
    if (QFileInfo::exists(QString::fromStdString(copy))) return;
    std::string bytes;
    if (!ReadStore(bytes) || bytes.empty() || !WriteWholeFile(copy, bytes)) return;
    DebugLog("The settings could not be taken in; they are kept as " + copy);
}

}  // namespace zandrel
