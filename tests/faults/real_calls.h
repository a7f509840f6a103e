/// @file
/// The system's own calls, which the definitions of this program stand before.
#pragma once

#include <sys/types.h>
#include <sys/uio.h>
#include <termios.h>

#include <cstddef>
#include <cstdio>

namespace orvex_faults {

struct RealCalls {
    int (*open)(const char*, int, ...);
    int (*close)(int);
    ssize_t (*read)(int, void*, std::size_t);
    ssize_t (*write)(int, const void*, std::size_t);
    ssize_t (*writev)(int, const iovec*, int);
    int (*tcgetattr)(int, termios*);
    int (*tcsetattr)(int, int, const termios*);
    int (*ioctl)(int, unsigned long, ...);
    int (*fcntl)(int, int, ...);
    std::size_t (*fwrite)(const void*, std::size_t, std::size_t, std::FILE*);
    int (*putc)(int, std::FILE*);
    int (*fflush)(std::FILE*);
};

[[nodiscard]] const RealCalls& real();

}  // namespace orvex_faults
