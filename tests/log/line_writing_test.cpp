// A line's way into a file or a stream that does not take it at once.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <iostream>
#include <stdexcept>
#include <streambuf>

#include "log/log.h"
#include "tests/support/log_settings.h"
#include "tests/support/temporary_directory.h"

using orvex_test::contentsOf;

namespace {

/// The results of the next writes: so many bytes, or a negative error number.
std::deque<int> next_writes;

class LinesIntoAFile : public testing::Test {
  protected:
    LinesIntoAFile() { ORVEX_SetLogFile(path_.c_str()); }
    ~LinesIntoAFile() override { next_writes.clear(); }

    const orvex_test::LogSettings settings_;
    const orvex_test::TemporaryDirectory directory_;
    const std::string path_ = directory_.file("log");
};

TEST_F(LinesIntoAFile, AreWrittenInPiecesWhenTheSystemTakesPieces) {
    next_writes = {3, 1};
    fileLog("a line");
    EXPECT_EQ(contentsOf(path_), "a line\n");
}

TEST_F(LinesIntoAFile, GetTheirNewlineInAWriteOfItsOwn) {
    next_writes = {6};
    fileLog("a line");
    EXPECT_EQ(contentsOf(path_), "a line\n");
}

TEST_F(LinesIntoAFile, SurviveASignal) {
    next_writes = {-EINTR, 2, -EINTR};
    fileLog("a line");
    EXPECT_EQ(contentsOf(path_), "a line\n");
}

TEST_F(LinesIntoAFile, AreLostAloneWhenTheDiskIsFull) {
    next_writes = {-ENOSPC};
    fileLog("lost");
    fileLog("kept");
    EXPECT_EQ(contentsOf(path_), "kept\n");
}

TEST_F(LinesIntoAFile, AreGivenUpWhenNothingIsTaken) {
    next_writes = {0};
    fileLog("lost");
    EXPECT_EQ(contentsOf(path_), "");
}

/// Takes the place of standard output's buffer.
class OutputInto {
  public:
    explicit OutputInto(std::streambuf* buffer) : before_(std::cout.rdbuf(buffer)) {}
    OutputInto(const OutputInto&) = delete;
    OutputInto& operator=(const OutputInto&) = delete;
    ~OutputInto() { std::cout.rdbuf(before_); }

  private:
    std::streambuf* before_;
};

class Throwing : public std::streambuf {
    std::streamsize xsputn(const char* /*text*/, std::streamsize /*length*/) override {
        throw std::runtime_error("no");
    }
};

class EndingTheThread : public std::streambuf {
    std::streamsize xsputn(const char* /*text*/, std::streamsize /*length*/) override {
        ::pthread_exit(this);
    }
};

TEST(LinesToAStream, AreLostWithoutABuffer) {
    const OutputInto nothing(nullptr);
    EXPECT_NO_THROW(stdOut("lost"));
}

TEST(LinesToAStream, AreLostWhenTheBufferThrows) {
    Throwing buffer;
    const OutputInto redirected(&buffer);
    EXPECT_NO_THROW(stdOut("lost"));
}

TEST(LinesToAStream, LetAThreadEndInsideTheBuffer) {
    EndingTheThread buffer;
    const OutputInto redirected(&buffer);
    pthread_t thread{};
    const auto print = [](void*) -> void* {
        stdOut("lost");
        return nullptr;
    };
    ASSERT_EQ(::pthread_create(&thread, nullptr, print, nullptr), 0);
    void* ended = nullptr;
    ASSERT_EQ(::pthread_join(thread, &ended), 0);
    EXPECT_EQ(ended, &buffer);
    EXPECT_TRUE(gl_lock.try_lock());
    gl_lock.unlock();
}

}  // namespace

extern "C" ssize_t writev(int descriptor, const iovec* pieces, int count) {
    using Writev = ssize_t(int, const iovec*, int);
    static const auto real = reinterpret_cast<Writev*>(::dlsym(RTLD_NEXT, "writev"));
    if (next_writes.empty()) {
        return real(descriptor, pieces, count);
    }
    const int next = next_writes.front();
    next_writes.pop_front();
    if (next < 0) {
        errno = -next;
        return -1;
    }
    const iovec some{pieces->iov_base, std::min(pieces->iov_len, static_cast<std::size_t>(next))};
    return real(descriptor, &some, 1);
}
