// What stands in the blocks when the Power-FC leaves its factory.
#pragma once

#include <array>
#include <string_view>

#include "simulator/blocks.h"
#include "simulator/simulator.h"

namespace powerfc {

/// Indexed by block code; empty = the build has no such block.
using Memory = std::array<Bytes, 256>;

/// All blocks of the build in their factory state, bytes that no table sets 0xCC.
Memory FactoryContents(const Shape& shape, const VersionKey& version);

/// Takes the block records of a tuning data file into `memory`. A record longer than the block is cut,
/// a shorter one passed over. `takeAll`: blocks that are not there come into being. False if the file
/// can't be read or a record is no hexadecimal text.
bool LoadImage(const std::string& path, bool takeAll, Memory& memory);

}  // namespace powerfc
