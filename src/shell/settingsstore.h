// What is remembered between runs: sections of string keys in one INI file of the user's. Keys are never
// deleted, all values are texts. What the file holds beside them is kept, and a file that cannot be read is
// left alone: this run remembers its keys in memory only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "util/store.h"

namespace zandrel {

/// Opens the door `Store` on the INI file at `path`; an empty path is the user's own store.
void OpenSettingsStore(const std::string& path);

// Typed reads of section "Settings". No value: the key holds a text that is none of the type.
std::optional<float> GetSingle(const std::string& key, float fallback);
std::optional<std::int16_t> GetInteger(const std::string& key, std::int16_t fallback);
std::optional<std::int32_t> GetLong(const std::string& key, std::int32_t fallback);
std::optional<bool> GetBoolean(const std::string& key, bool fallback);

// Writes to section "Settings": numbers in plain decimal text, booleans as "True" and "False".
void SaveNumber(const std::string& key, double value);
void SaveBoolean(const std::string& key, bool value);

/// Brings everything written so far to the disk.
void FlushSettingsStore();

/// Keeps a copy of the store's file beside it, with ".unread" behind its name: for a start that could not
/// take it in, before the stop writes the keys anew.
void KeepUnreadStore();

}  // namespace zandrel
