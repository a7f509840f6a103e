// The system's figures cannot be compared: it counts freed blocks that it keeps for later.
#include "tests/soak/heap.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

std::size_t allocated = 0;

void* allocate(std::size_t size) {
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    allocated += ::malloc_usable_size(block);
    return block;
}

void release(void* block) noexcept {
    if (block != nullptr) {
        allocated -= ::malloc_usable_size(block);
        std::free(block);
    }
}

}  // namespace

namespace orvex_soak {

std::size_t allocatedBytes() noexcept {
    return allocated;
}

}  // namespace orvex_soak

void* operator new(std::size_t size) {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    release(block);
}
