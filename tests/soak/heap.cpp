#include "tests/soak/heap.h"

#ifdef ORVEX_UNDER_SANITIZER
// A sanitizer watches the operators itself, and counts.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

std::size_t orvex_soak::allocatedBytes() noexcept {
    return ::__sanitizer_get_current_allocated_bytes();
}

#else
// The system's figures cannot be compared: they count freed blocks that are kept for later.
#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

std::size_t allocated = 0;

}  // namespace

std::size_t orvex_soak::allocatedBytes() noexcept {
    return allocated;
}

void* operator new(std::size_t size) {
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    allocated += ::malloc_usable_size(block);
    return block;
}

void operator delete(void* block) noexcept {
    if (block != nullptr) {
        allocated -= ::malloc_usable_size(block);
        std::free(block);
    }
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
}

#endif
