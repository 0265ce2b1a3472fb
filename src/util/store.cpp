#include "util/store.h"

namespace zandrel {

StoreDoor Store = {
    [](const std::string&, const std::string&, const std::string& fallback) { return fallback; },
    [](const std::string&, const std::string&, const std::string&) {},
};

std::string GetSetting(const std::string& section, const std::string& key, const std::string& fallback) {
    return Store.Get(section, key, fallback);
}

void SaveSetting(const std::string& section, const std::string& key, const std::string& value) {
    Store.Save(section, key, value);
}

}  // namespace zandrel
