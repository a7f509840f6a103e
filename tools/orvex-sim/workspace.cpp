#include "tools/orvex-sim/workspace.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "tools/orvex-sim/failure.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr const char* kTemporaryPlace = "TMPDIR";
// Sockets below the directory have paths of at most 107 characters.
constexpr std::size_t kLongestPath = 64;

std::optional<std::string> environmentText(const char* name) {
    const char* const text = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): no threads yet
    return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

[[noreturn]] void fail(const std::string& what) {
    throw Failure(kSystemRefused, what + ": " + errorText(errno));
}

std::string makeDirectory() {
    std::error_code error;
    const fs::path place = fs::temp_directory_path(error);
    if (error) {
        throw Failure(kSystemRefused, "TMPDIR does not name a directory");
    }
    std::string path = fs::absolute(place / "orvex-sim-XXXXXX").string();
    if (path.size() > kLongestPath) {
        throw Failure(kSystemRefused, "TMPDIR is too long: " + place.string());
    }
    if (::mkdtemp(path.data()) == nullptr) {
        fail("cannot make a directory in " + place.string());
    }
    return path;
}

/// Waits until the other end of the pipe is closed, whatever closed it, and removes the directory.
[[noreturn]] void watchOver(const std::string& path, int lifeline) {
    if (lifeline > 0) {
        ::close_range(0, static_cast<unsigned>(lifeline) - 1, 0);
    }
    ::close_range(static_cast<unsigned>(lifeline) + 1, UINT_MAX, 0);
    char byte = 0;
    while (::read(lifeline, &byte, 1) < 0 && errno == EINTR) {
    }
    std::error_code ignored;
    fs::remove_all(path, ignored);
    ::_exit(0);
}

}  // namespace

Workspace::Workspace() : given_(environmentText(kTemporaryPlace)), path_(makeDirectory()) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail("pipe");
    }
    const sim::Descriptor watched(ends[0]);
    lifeline_ = sim::Descriptor(ends[1]);
    guardian_ = ::fork();
    if (guardian_ < 0) {
        fail("fork");
    }
    // Out of the process group, which may be killed as a whole. Done on both sides: neither may go
    // on before it is so.
    ::setpgid(guardian_, guardian_);
    if (guardian_ == 0) {
        watchOver(path_, watched.get());
    }
    ::setenv(kTemporaryPlace, path_.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): no threads yet
}

Workspace::~Workspace() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
    lifeline_ = sim::Descriptor();
    while (::waitpid(guardian_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace orvex::tools
