#include "tests/support/output_capture.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace orvex_test {

namespace {

int nameless() {
    std::string path = "/tmp/orvex_output_XXXXXX";
    const int file = ::mkstemp(path.data());
    if (file < 0) {
        throw std::runtime_error("no temporary file");
    }
    ::unlink(path.c_str());
    return file;
}

}  // namespace

OutputCapture::OutputCapture(int descriptor) : descriptor_(descriptor) {
    std::fflush(nullptr);
    original_ = ::dup(descriptor_);
    file_ = nameless();
    ::dup2(file_, descriptor_);
}

OutputCapture::~OutputCapture() {
    std::fflush(nullptr);
    ::dup2(original_, descriptor_);
    ::close(original_);
    ::close(file_);
}

std::string OutputCapture::text() const {
    std::string text;
    std::array<char, 4096> part{};
    ssize_t count = 0;
    while ((count = ::pread(file_, part.data(), part.size(), static_cast<off_t>(text.size()))) >
           0) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace orvex_test
