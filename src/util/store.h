// What is remembered between runs: sections of string keys. One door, opened by the shell on the user's own
// store; until then nothing is remembered.
#pragma once

#include <functional>
#include <string>

namespace zandrel {

struct StoreDoor {
    std::function<std::string(const std::string& section, const std::string& key,
                              const std::string& fallback)>
        Get;
    std::function<void(const std::string& section, const std::string& key, const std::string& value)> Save;
};

/// The open door. Written by `OpenSettingsStore` and by tests, nobody else.
extern StoreDoor Store;

/// Value of a key; `fallback` if the store has none.
std::string GetSetting(const std::string& section, const std::string& key, const std::string& fallback);

/// Keeps a value. A store that can't be written is passed over.
void SaveSetting(const std::string& section, const std::string& key, const std::string& value);

}  // namespace zandrel
