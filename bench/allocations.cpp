#include "bench/allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local orvex_bench::Allocations counted;

}  // namespace

namespace orvex_bench {

const Allocations& allocations() noexcept {
    return counted;
}

}  // namespace orvex_bench

void* operator new(std::size_t size) {
    ++counted.count;
    counted.bytes += size;
    if (void* memory = std::malloc(size); memory != nullptr) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
