/// @file
/// Where the library's log lines go: files, and what it writes to standard output and error.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace orvex_faults {

/// What the library has written to standard output and standard error, which is kept from there.
[[nodiscard]] std::string& writtenOutput();

/// The opening of what is no port.
int openSink(const char* path, int flags, mode_t mode);
/// The closing of what is no port.
int closeSink(int descriptor);
/// A write to a descriptor that is no port.
ssize_t writeToSink(int descriptor, const void* bytes, std::size_t size);

}  // namespace orvex_faults
