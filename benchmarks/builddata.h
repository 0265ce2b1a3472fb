// The contents of a Power-FC, as a Read All would have left them.
#pragma once

#include <array>
#include <string>

#include "image/catalogue.h"
#include "util/text.h"

namespace zandrel {

struct BuildData {
    const Build* Record;
    std::array<ByteString, 256> Blocks;
};

/// What a simulated Power-FC of build `key` holds in its blocks.
BuildData ContentsOf(const std::string& key);

/// Applies both records of the build and shows its blocks.
void Display(const BuildData& data);

}  // namespace zandrel
