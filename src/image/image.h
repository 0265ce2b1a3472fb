// The data image: every block of the engine computer, as last read or edited, and what is known of the
// blocks. Written by link/ (transfers, identification, scan), files/ (open), the Set... accessors and the
// map set-up, nobody else.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "util/text.h"

namespace zandrel {

// Indexed by block code 0x00 to 0xFF, which is also the command byte that fetches the block.
extern std::array<ByteString, 256> ReadData;       // data bytes alone; empty = not read
extern std::array<std::uint8_t, 256> BlockLength;  // data bytes on this build; 0 = no such block
extern std::array<bool, 256> BlockRead;            // takes part in a Read All
extern std::array<bool, 256> BlockWrite;           // may be written
extern std::array<bool, 256> BlockChanged;         // edited since last in step with the Power-FC
extern std::array<bool, 256> BlockInForce;         // bytes read from, or loaded for, the version in force

/// The image holds a change that no file holds.
extern bool DataChanged;

inline constexpr int kMaps = 7;
inline constexpr int kMapSide = 20;  // rows and columns of a map; both count from 1

// Indexed by map 0 to 6 (its tab number).
extern std::array<std::uint8_t, kMaps> MapFirstBlock;
extern std::array<std::int32_t, kMaps> MapCellSize;  // bytes a cell: 1 or 2
extern std::array<float, kMaps> MapScale;
extern std::array<float, kMaps> MapOffset;
extern std::array<float, kMaps> MapMin;  // limits of the raw value
extern std::array<float, kMaps> MapMax;
extern std::array<std::string, kMaps> MapFormat;

// Indexed by map 0 to 6, row 0 to 20, column 0 to 20; row 0 and column 0 are not used by a map's cells.
template <class T>
using MapTable = std::array<std::array<std::array<T, kMapSide + 1>, kMapSide + 1>, kMaps>;
extern MapTable<std::int32_t> MapCompare;  // raw cells of the compared file
extern MapTable<bool> MapCellChanged;      // edited since the map was last in step with the Power-FC

/// Sets `BlockRead` and `BlockWrite` of all blocks to false. `BlockLength` stays.
void ClearBlockFlags();

/// Gives block `code` ("&H8D" or "141") its length in bytes and raises its flags where `readable` and
/// `writable` are true; a false one leaves the flag. An empty code does nothing. False: the code is no
/// block number (0 to 255), and nothing has changed.
[[nodiscard]] bool RegisterBlock(std::string_view code, int length, bool readable, bool writable);

/// Where a map's cell lies: block and 1-based offset of its first byte. `row` and `column` 1 to 20.
struct CellPlace {
    int Block;
    int Offset;
};
CellPlace PlaceOfCell(int map, int row, int column);

}  // namespace zandrel
