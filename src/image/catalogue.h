// The version catalogue: which block holds which map and which group of settings on each of the 214
// Power-FC builds, and which live data channels the build sends. Constant; read by everybody.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace zandrel {

/// One build. Key is engine name + version number joined ("RB26DETT6.42"), Family 'A' to 'P' names the
/// column of the settings table, Channels the row of `ChannelRows()`.
struct Build {
    std::string_view Key;
    char Family;
    std::uint8_t Channels;
};

/// Live data of a group of builds: the ten Basic and 21 Advanced names in row order (empty = no such
/// row), the codes of the Basic, Sensors and Map polls and of the block that holds the sensor names
/// (256 and above: the long sensor set, block = code less 256).
struct ChannelRow {
    std::array<std::string_view, 10> Basic;
    std::array<std::string_view, 21> Advanced;
    std::string_view BlockA, BlockB, BlockC, SensorNameBlock;
};

/// The arguments of `DisplayInit1` and `DisplayInit2`. Element 0 is field 1. An empty text means that the
/// build has no such group.
using SettingsRecord = std::array<std::string_view, 58>;
using LogRecord = std::array<std::string_view, 54>;

/// All builds in catalogue order. "RB26DETT4.23" stands twice with identical records.
std::span<const Build> Builds();

/// The first build whose key equals `key` byte for byte, or nullptr.
const Build* FindBuild(std::string_view key);

/// The 16 distinct settings records, indexed by family letter less 'A'.
const SettingsRecord& SettingsRecordOfFamily(char family);

/// The rows that `Build::Channels` indexes.
std::span<const ChannelRow> ChannelRows();

/// Both records of a build, as `DisplayInit1` and `DisplayInit2` take them.
const SettingsRecord& SettingsRecordOf(const Build& build);
LogRecord LogRecordOf(const Build& build);

}  // namespace zandrel
