// Which blocks a build has, how long they are and which of them it lets itself be written.
#pragma once

#include <string_view>
#include <vector>

#include "image/catalogue.h"

namespace powerfc {

enum class MapKind { Injection, Ignition, Leading, Trailing, Vvt, Intake, Exhaust, Base, BaseSecond };

/// 20 x 20 cells of one or two bytes, in blocks of 100 bytes from FirstBlock on.
struct MapSpec {
    MapKind Kind;
    int FirstBlock;
    int CellBytes;
    int Blocks() const { return CellBytes * 4; }
};

/// Where a group's code stands in the build's records.
enum class Record { Settings, Log };

/// A block of settings. Wide: the longer or later form of those groups that exist in two.
struct GroupSpec {
    Record Where;
    int Field;
    int Code;
    int Length;
    bool Wide;
    bool Writable;
};

/// All that the Power-FC of one build is made of. Codes that the build lacks are -1.
struct Shape {
    char Family = 'N';
    std::vector<MapSpec> Maps;
    std::vector<GroupSpec> Groups;
    int SensorSelect = -1;
    int FunctionSelect = -1;
    int Custom = -1;                // the interface's own features, 8 bytes
    std::vector<int> Transmission;  // shift and lock-up tables
    int SensorNames = -1;           // 80 bytes, or 48 with SwitchNames beside
    int SwitchNames = -1;           // 72 bytes
    int BasicPoll = -1, SensorPoll = -1, MapPoll = -1;
    const zandrel::ChannelRow* Channels = nullptr;

    /// The oldest builds, whose write commands are not the block codes.
    bool Oldest() const { return Family == 'O'; }
    bool LongSensors() const { return SwitchNames >= 0; }
};

Shape ShapeOf(const zandrel::Build& build);

/// Length of transmission block `code`, 0x40 to 0x44.
int TransmissionLength(int code);

}  // namespace powerfc
