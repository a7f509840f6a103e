// The calls that open, write and close log files, and write standard output.
#include <fcntl.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstdio>
#include <optional>

#include "tests/faults/injector.h"
#include "tests/faults/real_calls.h"
#include "tests/faults/sink_calls.h"

using orvex_faults::Call;
using orvex_faults::injector;
using orvex_faults::isInsideLibrary;
using orvex_faults::OutsideLibrary;
using orvex_faults::real;
using orvex_faults::writtenOutput;

namespace orvex_faults {

namespace {

/// The library's open log file; -1: none is.
int& openLogFile() {
    thread_local int descriptor = -1;
    return descriptor;
}

}  // namespace

std::string& writtenOutput() {
    static auto& text = *new std::string;
    return text;
}

ssize_t writeToSink(int descriptor, const void* bytes, std::size_t size) {
    if (const auto fault = injector().next(Call::SinkWrite)) {
        errno = fault->error;
        return -1;
    }
    return real().write(descriptor, bytes, size);
}

int openSink(const char* path, int flags, mode_t mode) {
    if ((flags & O_APPEND) == 0) {  // Only log files are appended to.
        return real().open(path, flags, mode);
    }
    if (const auto fault = injector().next(Call::SinkOpen)) {
        errno = fault->error;
        return -1;
    }
    openLogFile() = real().open(path, flags, mode);
    return openLogFile();
}

int closeSink(int descriptor) {
    if (descriptor < 0 || descriptor != openLogFile()) {
        return real().close(descriptor);
    }
    openLogFile() = -1;
    const auto fault = injector().next(Call::SinkClose);
    const int closed = real().close(descriptor);
    if (fault) {
        errno = fault->error;
    }
    return fault ? -1 : closed;
}

}  // namespace orvex_faults

namespace {

bool isOutputOfLibrary(const std::FILE* file) {
    return isInsideLibrary() && (file == stdout || file == stderr);
}

/// @return whether the call is to fail; errno is set then
bool fails(Call call) {
    const auto fault = injector().next(call);
    if (fault) {
        errno = fault->error;
    }
    return fault.has_value();
}

}  // namespace

extern "C" {

ssize_t writev(int descriptor, const iovec* pieces, int count) {
    return fails(Call::SinkWrite) ? -1 : real().writev(descriptor, pieces, count);
}

std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count, std::FILE* file) {
    if (!isOutputOfLibrary(file)) {
        return real().fwrite(bytes, size, count, file);
    }
    if (fails(Call::SinkWrite)) {
        return 0;
    }
    const OutsideLibrary test;
    writtenOutput().append(static_cast<const char*>(bytes), size * count);
    return count;
}

int putc(int character, std::FILE* file) {
    if (!isOutputOfLibrary(file)) {
        return real().putc(character, file);
    }
    if (fails(Call::SinkWrite)) {
        return EOF;
    }
    const OutsideLibrary test;
    writtenOutput() += static_cast<char>(character);
    return character;
}

int fflush(std::FILE* file) {
    if (!isOutputOfLibrary(file)) {
        return real().fflush(file);
    }
    return fails(Call::SinkFlush) ? EOF : 0;
}

}  // extern "C"
