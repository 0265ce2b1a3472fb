#include "heap.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::int64_t Allocations = 0;

void* Take(std::size_t size) {
    ++Allocations;
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) std::abort();
    return memory;
}

void* TakeAligned(std::size_t size, std::align_val_t alignment) {
    ++Allocations;
    const auto step = static_cast<std::size_t>(alignment);
    void* memory = std::aligned_alloc(step, (size + step - 1) / step * step);
    if (memory == nullptr) std::abort();
    return memory;
}

}  // namespace

// The array and the nothrow forms of the library come here too.
void* operator new(std::size_t size) {
    return Take(size);
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    return TakeAligned(size, alignment);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

namespace zandrel {

std::int64_t HeapAllocations() {
    return Allocations;
}

}  // namespace zandrel
