// Fits the settings pages and the map tabs to a build: which frames and tabs show, which blocks the
// controls read, which blocks exist. Writes the records of tuning/settings and tuning/maps and the block
// tables of the image.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "image/catalogue.h"
#include "util/controls.h"

namespace zandrel {

/// Set when the start of the main window has come far enough for `DisplayInit1` to act.
extern bool MainFormReady;

/// Interface version: "V1.X", "V2.0", or whatever four characters the interface reports.
extern std::string CorvaneVer;
extern std::array<MenuItem, 2> mnuSetupCorvaneVer;  // "V1.X", "V2.0"
extern MenuItem mnuReCalcBase;

/// `BaseMapIndex` of a build without a base map: no map counts as one.
inline constexpr std::int16_t kNoMap = 0x7FFF;

// Tabs of the injection map and of the first base map.
extern std::int16_t InjMapIndex;
extern std::int16_t BaseMapIndex;

// Blocks with rules of their own, set for the build in force.
extern std::uint8_t FunctionSelectBlock;
extern std::uint8_t SensorSelectBlock;
extern std::uint8_t BlockA, BlockB, BlockC;     // polls of the live data: Basic, Sensors, Map
extern std::uint8_t ExtraBlock;                 // sensor names
extern std::array<std::string, 3> MapRefBlock;  // block codes of the axes of the three base tables

/// Applies a settings record: registers the blocks, rewrites the Tags, shows frames and tabs. Does nothing
/// while `MainFormReady` is false.
void DisplayInit1(const SettingsRecord& record);

/// Applies a log record; after `DisplayInit1`.
void DisplayInit2(const LogRecord& record);

/// Runs inside `DisplayInit2` with the live data names of the record. Set by live/.
inline std::function<void(const LogRecord&)> InitLogChannels = [](const LogRecord&) {};

/// Shows what the interface version `CorvaneVer` has in frame 550 and ticks it in the menu.
void DisplayInitForCorvaneVer();

/// A range of control numbers, relative to the frame's. Last below First: none.
struct Range {
    int First = 0, Last = 9;
};
inline constexpr Range kNone{0, -1};
struct FrameRanges {
    Range Texts, Labels, Options, Checks, Curves;
};

/// Shows frame `frame` and turns its members in `ranges` over to block `code`; `field` is the entry of
/// the frame's Tag that takes the code. Touches only members that stand in the frame. False: the code is
/// empty, nothing was done.
bool SetupFrame(int frame, std::string_view code, int field, const FrameRanges& ranges = {});

/// Sets up map tab `tabIndex` for the map that begins at block `code`, then moves `tabIndex` on. False:
/// the code is empty or all map tabs are taken, nothing was done.
bool SetupMapTab(std::string_view code, const std::string& name, std::int16_t& tabIndex,
                 const std::string& splitCaption, std::string_view tagSuffix);

/// Length in bytes and flags of a block; nothing for an empty code.
void SetBlockInfo(std::string_view code, int length, bool readable, bool writable);

void HideAllFrames();

/// Shows frame `frame` and enables or disables it with its members frame to frame + 9.
void SetFrameEnabled(int frame, bool enabled);

/// Looks the build up and applies its settings record; false = not in the catalogue, nothing changed.
bool ApplySettingsProfile(const std::string& engine, const std::string& version);

/// The same with the log record.
bool ApplyLogProfile(const std::string& engine, const std::string& version);

/// True if the build has a settings record. Leaves `MainFormReady` true.
bool IsKnownVersion(const std::string& engine, const std::string& version);

}  // namespace zandrel
