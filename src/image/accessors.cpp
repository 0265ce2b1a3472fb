#include "image/accessors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "image/history.h"
#include "image/image.h"
#include "util/codepage.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

// Size codes of a number field.
enum Size { UnsignedByte = 1, Word = 2, SignedByte = 129 };

// The head that all descriptors share. No value: the descriptor is of no use.
struct Field {
    std::array<std::string_view, 8> Parts;  // of the descriptor; more than any form has
    std::size_t Block = 0;
    int Offset = 0;  // from 1
    const ByteString& Bytes() const { return ReadData[Block]; }
    bool StandsInBlock() const { return Offset <= static_cast<int>(Bytes().size()); }
    int Byte() const { return static_cast<std::uint8_t>(Bytes()[static_cast<std::size_t>(Offset - 1)]); }
};

std::optional<Field> ParseField(std::string_view descriptor, std::size_t partsNeeded) {
    Field field;
    std::size_t count = 0;
    for (; count < field.Parts.size(); ++count) {
        const auto comma = descriptor.find(',');
        field.Parts[count] = descriptor.substr(0, comma);
        if (comma == descriptor.npos) break;
        descriptor.remove_prefix(comma + 1);
    }
    if (count + 1 < partsNeeded) return std::nullopt;
    const auto block = StrictWhole(field.Parts[0]);
    const auto offset = StrictWhole(field.Parts[1]);
    if (!block || *block < 0 || *block > 255 || !offset || *offset < 1) return std::nullopt;
    field.Block = static_cast<std::size_t>(*block);
    field.Offset = *offset;
    return field;
}

// Value or mask of a bit or option field; what is no byte stands for no bits.
int ByteOf(std::string_view text) {
    const double number = LenientNumber(text);
    return number >= 0 && number <= 255 ? static_cast<int>(number) : 0;
}

// Lays `bytes` over the block from the field's offset on; the block never grows.
void Overwrite(std::size_t block, int offset, const ByteString& bytes, int map = -1, int row = 0,
               int column = 0) {
    const auto start = static_cast<std::size_t>(offset - 1);
    const std::size_t room = std::min(bytes.size(), ReadData[block].size() - start);
    Carry(
        {block, start, ReadData[block].substr(start, room), bytes.substr(0, room), map, row, column, false});
}

ByteString WordBytes(int word) {
    return {static_cast<char>(word % 256), static_cast<char>(word / 256)};
}

bool MapExists(int map) {
    return map >= 0 && map < kMaps;
}

bool CellExists(int map, int row, int column) {
    return MapExists(map) && row >= 1 && row <= kMapSide && column >= 1 && column <= kMapSide &&
           PlaceOfCell(map, row, column).Block <= 255;
}

}  // namespace

int ClampByte(float value) {
    if (!(value > 0)) return 0;
    return value > 255 ? 255 : static_cast<int>(RoundEven(value));
}

int ClampSignedByte(float value) {
    if (!(value > -128)) return -128;
    return value > 127 ? 127 : static_cast<int>(RoundEven(value));
}

int ClampWord(float value) {
    if (!(value > 0)) return 0;
    return value > 65535 ? 65535 : static_cast<int>(RoundEven(value));
}

int GetWord(const ByteString& bytes, int position) {
    if (position < 1 || position >= std::ssize(bytes)) return 0;
    const auto at = static_cast<std::size_t>(position);
    return static_cast<std::uint8_t>(bytes[at - 1]) + 256 * static_cast<std::uint8_t>(bytes[at]);
}

int ToSigned(int byte) {
    return byte > 127 ? byte - 256 : byte;
}

std::string GetNumber(std::string_view descriptor) {
    const auto field = ParseField(descriptor, 6);
    if (!field || !field->StandsInBlock()) return {};
    const auto size = StrictWhole(field->Parts[2]);
    if (!size) return {};
    double raw = 0;
    switch (*size) {
        case UnsignedByte:
            raw = field->Byte();
            break;
        case SignedByte:
            raw = ToSigned(field->Byte());
            break;
        case Word:
            raw = GetWord(field->Bytes(), field->Offset);
            break;
        default:
            return {};
    }
    const double value = raw * LenientNumber(field->Parts[3]) + LenientNumber(field->Parts[4]);
    return FormatNumber(value, field->Parts[5]);
}

std::string GetString(std::string_view descriptor) {
    const auto field = ParseField(descriptor, 3);
    if (!field || !field->StandsInBlock()) return {};
    const auto length = StrictWhole(field->Parts[2]);
    if (!length || *length < 0) return {};
    return FromCodePage(
        std::string_view(field->Bytes())
            .substr(static_cast<std::size_t>(field->Offset - 1), static_cast<std::size_t>(*length)));
}

int GetFlag(std::string_view descriptor) {
    const auto field = ParseField(descriptor, 3);
    if (!field || !field->StandsInBlock()) return 0;
    return (field->Byte() != 0) != (LenientNumber(field->Parts[2]) == 0) ? 1 : 0;
}

int GetBit(std::string_view descriptor) {
    const auto field = ParseField(descriptor, 3);
    if (!field || !field->StandsInBlock()) return 0;
    return (field->Byte() & ByteOf(field->Parts[2])) > 0 ? 1 : 0;
}

bool GetOption(std::string_view descriptor) {
    const auto field = ParseField(descriptor, 4);
    if (!field || !field->StandsInBlock()) return false;
    const int value = ByteOf(field->Parts[2]);
    return (field->Byte() & ByteOf(field->Parts[3])) == value;
}

std::int32_t GetCell(int map, int row, int column, bool useCompare) {
    if (!MapExists(map)) return 0;
    if (useCompare) {
        if (row < 0 || row > kMapSide || column < 0 || column > kMapSide) return 0;
        return MapCompare[static_cast<std::size_t>(map)][static_cast<std::size_t>(row)]
                         [static_cast<std::size_t>(column)];
    }
    if (!CellExists(map, row, column)) return 0;
    const CellPlace place = PlaceOfCell(map, row, column);
    const ByteString& bytes = ReadData[static_cast<std::size_t>(place.Block)];
    if (bytes.size() < 100) return 0;
    if (MapCellSize[static_cast<std::size_t>(map)] == 2) {
        const auto at = static_cast<std::size_t>(place.Offset);
        return static_cast<std::uint8_t>(bytes[at - 1]) + 256 * static_cast<std::uint8_t>(bytes[at]);
    }
    return static_cast<std::uint8_t>(bytes[static_cast<std::size_t>(place.Offset - 1)]);
}

void SetNumber(std::string_view descriptor, std::string_view text) {
    if (text.empty()) return;
    const auto field = ParseField(descriptor, 5);
    const auto number = StrictNumber(text);
    if (!field || !number) return;
    const auto size = StrictWhole(field->Parts[2]);
    const double quotient = (*number - LenientNumber(field->Parts[4])) / LenientNumber(field->Parts[3]);
    if (!size || !std::isfinite(quotient) || std::abs(quotient) > std::numeric_limits<float>::max()) return;
    const float raw = static_cast<float>(quotient);

    ByteString bytes;
    switch (*size) {
        case UnsignedByte:
            bytes = static_cast<char>(ClampByte(raw));
            break;
        case SignedByte:
            bytes = static_cast<char>(ClampSignedByte(raw) & 255);
            break;
        case Word:
            bytes = WordBytes(ClampWord(raw));
            break;
        default:
            return;
    }
    if (!field->StandsInBlock()) return;
    // The count is the size code itself: a signed byte (129) compares with the rest of its block.
    const auto present =
        std::string_view(field->Bytes())
            .substr(static_cast<std::size_t>(field->Offset - 1), static_cast<std::size_t>(*size));
    if (present == bytes) return;
    Overwrite(field->Block, field->Offset, bytes);
}

void SetFlag(std::string_view descriptor, int value) {
    const auto field = ParseField(descriptor, 3);
    if (!field || !field->StandsInBlock()) return;
    const bool set = (value == 1) != (LenientNumber(field->Parts[2]) == 0);
    if (set == (field->Byte() != 0)) return;
    Overwrite(field->Block, field->Offset, ByteString(1, static_cast<char>(set ? 255 : 0)));
}

void SetBit(std::string_view descriptor, int value) {
    const auto field = ParseField(descriptor, 3);
    if (!field || !field->StandsInBlock()) return;
    const int mask = ByteOf(field->Parts[2]);
    const int byte = value == 1 ? field->Byte() | mask : field->Byte() & ~mask;
    if (byte == field->Byte()) return;
    Overwrite(field->Block, field->Offset, ByteString(1, static_cast<char>(byte)));
}

void SetOption(std::string_view descriptor) {
    const auto field = ParseField(descriptor, 4);
    if (!field || !field->StandsInBlock()) return;
    const double value = LenientNumber(field->Parts[2]);
    if ((field->Byte() & ByteOf(field->Parts[3])) == static_cast<int>(value)) return;
    Overwrite(field->Block, field->Offset,
              ByteString(1, static_cast<char>(ClampByte(static_cast<float>(value)))));
}

void SetCell(int map, int row, int column, std::int32_t raw) {
    if (!CellExists(map, row, column)) return;
    ByteString bytes;
    if (MapCellSize[static_cast<std::size_t>(map)] == 2) {
        if (raw % 256 < 0) return;  // no byte stands for a negative remainder
        bytes = {static_cast<char>(raw % 256), static_cast<char>(ClampByte(static_cast<float>(raw / 256)))};
    } else {
        bytes = static_cast<char>(ClampByte(static_cast<float>(raw)));
    }
    const CellPlace place = PlaceOfCell(map, row, column);
    const ByteString& block = ReadData[static_cast<std::size_t>(place.Block)];
    if (place.Offset > std::ssize(block)) return;
    if (std::string_view(block).substr(static_cast<std::size_t>(place.Offset - 1), bytes.size()) == bytes)
        return;
    Overwrite(static_cast<std::size_t>(place.Block), place.Offset, bytes, map, row, column);
}

void ReplaceBlock(std::size_t block, const ByteString& bytes) {
    Carry({.Block = block, .Before = ReadData[block], .After = bytes, .Whole = true});
}

}  // namespace zandrel
