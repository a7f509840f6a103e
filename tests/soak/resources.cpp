#include "tests/soak/resources.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/soak/heap.h"

namespace orvex_soak {

namespace {

#ifdef ORVEX_UNDER_SANITIZER
// Sanitizers keep what was freed.
constexpr bool kFreedIsGone = false;
#else
constexpr bool kFreedIsGone = true;
#endif

// What the tables of the soak itself may differ by.
constexpr std::size_t kAllocatedLimit = 1024;
constexpr std::size_t kResidentLimit = 1024 * 1024;

std::size_t entriesOf(const char* directory) {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(directory), {}));
}

std::size_t residentBytes() {
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace

Resources Resources::now() {
    Resources now;
    now.allocated = allocatedBytes();
    now.resident = residentBytes();
    now.descriptors = entriesOf("/proc/self/fd");
    now.threads = entriesOf("/proc/self/task");
    return now;
}

std::string textOf(const Resources& resources) {
    return std::to_string(resources.allocated) + " bytes allocated, " +
           std::to_string(resources.resident / 1024) + " KiB resident, " +
           std::to_string(resources.descriptors) + " descriptors, " +
           std::to_string(resources.threads) + " threads";
}

std::string growth(const Resources& before, const Resources& now) {
    if (now.allocated > before.allocated + kAllocatedLimit) {
        return "allocated memory grows";
    }
    if (kFreedIsGone && now.resident > before.resident + kResidentLimit) {
        return "resident memory grows";
    }
    if (now.descriptors != before.descriptors) {
        return "descriptors do not stay the same";
    }
    return now.threads != before.threads ? "threads do not stay the same" : "";
}

}  // namespace orvex_soak
