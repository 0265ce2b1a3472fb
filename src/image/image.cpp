#include "image/image.h"

#include "util/numbers.h"

namespace zandrel {

std::array<ByteString, 256> ReadData;
std::array<std::uint8_t, 256> BlockLength{};
std::array<bool, 256> BlockRead{};
std::array<bool, 256> BlockWrite{};
std::array<bool, 256> BlockChanged{};
std::array<bool, 256> BlockInForce{};
bool DataChanged = false;

std::array<std::uint8_t, kMaps> MapFirstBlock{};
std::array<std::int32_t, kMaps> MapCellSize{};
std::array<float, kMaps> MapScale{};
std::array<float, kMaps> MapOffset{};
std::array<float, kMaps> MapMin{};
std::array<float, kMaps> MapMax{};
std::array<std::string, kMaps> MapFormat;

MapTable<std::int32_t> MapCompare{};
MapTable<bool> MapCellChanged{};

void ClearBlockFlags() {
    BlockRead.fill(false);
    BlockWrite.fill(false);
}

bool RegisterBlock(std::string_view code, int length, bool readable, bool writable) {
    if (code.empty()) return true;
    const double number = RoundEven(LenientNumber(code));
    if (number < 0 || number > 255 || length < 0 || length > 255) return false;
    const auto block = static_cast<std::size_t>(number);
    BlockLength[block] = static_cast<std::uint8_t>(length);
    if (readable) BlockRead[block] = true;
    if (writable) BlockWrite[block] = true;
    return true;
}

CellPlace PlaceOfCell(int map, int row, int column) {
    const int cellSize = MapCellSize[static_cast<std::size_t>(map)];
    const int position = (row + kMapSide * column - kMapSide - 1) * cellSize;
    return {MapFirstBlock[static_cast<std::size_t>(map)] + position / 100, position % 100 + 1};
}

}  // namespace zandrel
