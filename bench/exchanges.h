/// @file
/// The exchange that is measured, and the system calls it cannot do without.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/open_light.h"
#include "bench/rounds.h"

namespace orvex_bench {

/// A Tamar that has been opened and now answers everything with a reply of so many bytes. The log,
/// silent at first, goes to a callback.
class OpenTamar : public Light {
  public:
    OpenTamar(std::size_t replyLength, bool inMemory);
};

/// Flush, write, one read per byte: what an exchange must ask of the kernel.
void exchangeBare(int port, char* reply);
[[nodiscard]] Contestant bare(OpenTamar& light);

/// The exported call.
void exchange(std::uint64_t handle);
/// The exported call under a log mask.
[[nodiscard]] Contestant library(OpenTamar& light, const std::string& name, std::uint32_t bits);

}  // namespace orvex_bench
