// The allocation functions: those of the library fail as planned.
#include <cstdlib>
#include <new>

#include "tests/faults/injector.h"

namespace {

void* allocate(std::size_t size) {
    const bool fails =
        orvex_faults::isInsideLibrary() && orvex_faults::injector().nextAllocationFails();
    void* const memory = fails ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size) {
    return allocate(size == 0 ? 1 : size);
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
