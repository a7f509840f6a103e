// The allocation functions: those of the library fail as planned.
#include <cstdlib>
#include <new>

#include "tests/faults/injector.h"

namespace {

/// Null when the allocation fails.
void* attempt(std::size_t size) noexcept {
    const bool fails =
        orvex_faults::isInsideLibrary() && orvex_faults::injector().nextAllocationFails();
    return fails ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* allocate(std::size_t size) {
    void* const memory = attempt(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
    return attempt(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
