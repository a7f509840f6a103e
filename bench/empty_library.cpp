// A library with the dependencies of the real one and nothing in it.
#include <libudev.h>

#include <cstdint>
#include <string>

extern "C" __attribute__((visibility("default"))) std::uint32_t ORVEX_GetVersion(
    std::uint32_t* /*major*/, std::uint32_t* /*minor*/, std::uint32_t* /*release*/,
    std::uint32_t* /*build*/) {
    return 0;
}
