// Reading and changing single values of the image through field descriptors. None of these routines
// reports anything: whatever fails inside one ends it at once, a read then gives the empty text or 0 and
// a write has changed nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "util/text.h"

namespace zandrel {

/// Runs after a write accessor has changed bytes and raised the flags; within a gesture (image/history) once,
/// at its end. Set by link/transfers.
inline std::function<void()> AfterEdit = [] {};

/// `descriptor`: block, offset, size, scale, value offset, format. The formatted value.
std::string GetNumber(std::string_view descriptor);

/// `descriptor`: block, offset, length. The text there; shorter where the block ends.
std::string GetString(std::string_view descriptor);

/// `descriptor`: block, offset, polarity. 1 = the box is ticked.
int GetFlag(std::string_view descriptor);

/// `descriptor`: block, offset, mask. 1 = some bit of the mask is set.
int GetBit(std::string_view descriptor);

/// `descriptor`: block, offset, value, mask. True = the masked byte equals value.
bool GetOption(std::string_view descriptor);

/// Raw value of cell (`row`, `column`), each 1 to 20, of `map`; 0 where the block is not whole. With
/// `useCompare` the compared file's value, row and column 0 to 20.
std::int32_t GetCell(int map, int row, int column, bool useCompare);

/// Stores the number in `text`, rounded to the nearest raw step (ties to even) and limited to what the
/// size can hold. An empty text changes nothing.
void SetNumber(std::string_view descriptor, std::string_view text);

void SetFlag(std::string_view descriptor, int value);
void SetBit(std::string_view descriptor, int value);

/// Selects this option: overwrites the whole byte, the bits outside the mask are cleared.
void SetOption(std::string_view descriptor);

void SetCell(int map, int row, int column, std::int32_t raw);

/// The whole of block `block` (0 to 255) becomes `bytes`; its flags are raised even where they are the same.
void ReplaceBlock(std::size_t block, const ByteString& bytes);

/// Limited to the range and rounded to the nearest whole number, ties to even.
int ClampByte(float value);        // 0 to 255
int ClampSignedByte(float value);  // -128 to 127
int ClampWord(float value);        // 0 to 65535

/// 16-bit little-endian value at 1-based `position`; 0 unless the bytes are longer than `position`.
int GetWord(const ByteString& bytes, int position);

/// A byte as -128 to 127.
int ToSigned(int byte);

}  // namespace zandrel
