// Counts what the program takes from the heap through operator new.
#pragma once

#include <cstdint>

namespace zandrel {

/// Allocations of this thread since it began.
std::int64_t HeapAllocations();

}  // namespace zandrel
