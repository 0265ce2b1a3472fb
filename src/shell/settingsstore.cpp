#include "shell/settingsstore.h"

#include <QSettings>
#include <QStringList>
#include <cmath>
#include <limits>
#include <memory>

#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

std::unique_ptr<QSettings> Ini;

QSettings& OpenStore() {
    if (Ini == nullptr) OpenSettingsStore("");
    return *Ini;
}

QString Path(const std::string& section, const std::string& key) {
    return QString::fromStdString(section + "/" + key);
}

std::string ReadIni(const std::string& section, const std::string& key, const std::string& fallback) {
    const QVariant value = OpenStore().value(Path(section, key));
    if (!value.isValid()) return fallback;
    // A comma list that was typed into the file without quotes comes back as a list.
    if (value.metaType().id() == QMetaType::QStringList) return value.toStringList().join(",").toStdString();
    return value.toString().toStdString();
}

void WriteIni(const std::string& section, const std::string& key, const std::string& value) {
    OpenStore().setValue(Path(section, key), QString::fromStdString(value));
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
    if (path.empty()) {
        Ini = std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, "Zandrel", "Zandrel");
    } else {
        Ini = std::make_unique<QSettings>(QString::fromStdString(path), QSettings::IniFormat);
    }
    // A missing key is its default, and not what another program or the whole system has under its name.
    Ini->setFallbacksEnabled(false);
    Store = {ReadIni, WriteIni};
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
    OpenStore().sync();
}

}  // namespace zandrel
