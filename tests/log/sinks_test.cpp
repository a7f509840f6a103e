// The four sinks, called directly: they know neither classes nor methods.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <future>
#include <thread>

#include "log/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/output_capture.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/waiting.h"

using orvex_test::contentsOf;
using orvex_test::LogCapture;
using orvex_test::LogSettings;
using orvex_test::OutputCapture;
using orvex_test::TemporaryDirectory;
using orvex_test::WorkingDirectory;
using testing::ElementsAre;

namespace {

bool lockIsFree() {
    return std::async(std::launch::async,
                      [] {
                          const std::unique_lock<std::mutex> attempt(gl_lock, std::try_to_lock);
                          return attempt.owns_lock();
                      })
        .get();
}

bool locked_in_callback = false;
void testLock(const char*) {
    locked_in_callback = !lockIsFree();
}

class Sinks : public testing::Test {
  protected:
    /// Sets what a sink must not look at.
    Sinks() {
        ORVEX_SetLogBits(0);
        ORVEX_SetLogMode(3);
    }

    const LogSettings settings_;
    const TemporaryDirectory directory_;
};

TEST_F(Sinks, StandardOutputGetsALineAndIsFlushed) {
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    stdOut("text");
    EXPECT_EQ(out.text(), "text\n");
    EXPECT_EQ(err.text(), "");
}

TEST_F(Sinks, StandardErrorGetsALine) {
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    stdErr("text");
    EXPECT_EQ(err.text(), "text\n");
    EXPECT_EQ(out.text(), "");
}

TEST_F(Sinks, FileIsCreatedAndAppendedTo) {
    const std::string path = directory_.file("log");
    ORVEX_SetLogFile(path.c_str());
    fileLog("first");
    EXPECT_EQ(contentsOf(path), "first\n");
    std::ofstream(path, std::ios::app) << "someone else's\n";
    fileLog("second");
    EXPECT_EQ(contentsOf(path), "first\nsomeone else's\nsecond\n");
}

TEST_F(Sinks, FileIsNotKeptOpen) {
    const std::string path = directory_.file("log");
    ORVEX_SetLogFile(path.c_str());
    fileLog("first");
    std::filesystem::remove(path);
    fileLog("second");
    EXPECT_EQ(contentsOf(path), "second\n");
}

TEST_F(Sinks, FileIsSoughtInTheWorkingDirectoryAtEachLine) {
    std::filesystem::create_directory(directory_.path() / "other");
    {
        const WorkingDirectory here(directory_.path());
        fileLog("first");
    }
    {
        const WorkingDirectory there(directory_.path() / "other");
        fileLog("second");
    }
    EXPECT_EQ(contentsOf(directory_.file("lib_debug.log")), "first\n");
    EXPECT_EQ(contentsOf(directory_.file("other/lib_debug.log")), "second\n");
}

TEST_F(Sinks, FileThatCannotBeOpenedIsIgnored) {
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    for (const std::string& path : {directory_.file("missing/log"), directory_.path().string(),
                                    std::string("/proc/version"), std::string()}) {
        ORVEX_SetLogFile(path.c_str());
        EXPECT_NO_THROW(fileLog("lost")) << path;
    }
    EXPECT_EQ(out.text() + err.text(), "");
    EXPECT_FALSE(std::filesystem::exists(directory_.path() / "missing"));
}

TEST_F(Sinks, CallbackGetsTheTextWithoutANewline) {
    const LogCapture lines;
    ORVEX_SetLogBits(0);
    ORVEX_SetLogMode(3);
    callback("text");
    EXPECT_THAT(lines.lines(), ElementsAre("text"));
}

TEST_F(Sinks, CallbackThatIsNullIsIgnored) {
    ORVEX_RegisterLogCallback(nullptr);
    EXPECT_NO_THROW(callback("lost"));
}

TEST_F(Sinks, CallbackRunsUnderTheLock) {
    ORVEX_RegisterLogCallback(testLock);
    callback("text");
    EXPECT_TRUE(locked_in_callback);
    EXPECT_TRUE(lockIsFree());
}

TEST_F(Sinks, FileIsWrittenUnderTheLock) {
    const std::string path = directory_.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    ORVEX_SetLogFile(path.c_str());
    auto writer = std::async(std::launch::async, [] { fileLog("text"); });
    EXPECT_TRUE(orvex_test::waitUntil([] { return !lockIsFree(); }));  // It waits for a reader.
    EXPECT_EQ(contentsOf(path), "text\n");
    writer.get();
    EXPECT_TRUE(lockIsFree());
}

/// A pipe that takes the place of a descriptor and is full, so that its writer waits.
class FullPipe {
  public:
    explicit FullPipe(int descriptor) : redirected_(descriptor), descriptor_(descriptor) {
        EXPECT_EQ(::pipe(ends_), 0);
        EXPECT_GT(::fcntl(ends_[1], F_SETPIPE_SZ, 4096), 0);
        const std::string filling(4096, '.');
        EXPECT_EQ(::write(ends_[1], filling.data(), filling.size()), 4096);
        ::dup2(ends_[1], descriptor_);
    }
    ~FullPipe() {
        ::close(ends_[0]);
        ::close(ends_[1]);
    }

    std::string drain(std::size_t count) const {
        std::string text(count, '\0');
        for (std::size_t got = 0; got < count;) {
            got += static_cast<std::size_t>(::read(ends_[0], text.data() + got, count - got));
        }
        return text.substr(4096);
    }

  private:
    OutputCapture redirected_;  ///< Puts the descriptor back.
    int descriptor_;
    int ends_[2] = {};
};

void expectLineUnderLock(int descriptor, const std::function<void()>& sink) {
    std::string text;
    bool locked = false;
    {
        const FullPipe pipe(descriptor);
        auto writer = std::async(std::launch::async, sink);
        locked = orvex_test::waitUntil([] { return !lockIsFree(); });
        text = pipe.drain(4096 + 5);
        writer.get();
    }
    EXPECT_TRUE(locked);
    EXPECT_EQ(text, "text\n");
    EXPECT_TRUE(lockIsFree());
}

TEST_F(Sinks, StandardOutputIsWrittenUnderTheLock) {
    expectLineUnderLock(STDOUT_FILENO, [] { stdOut("text"); });
}

TEST_F(Sinks, StandardErrorIsWrittenUnderTheLock) {
    expectLineUnderLock(STDERR_FILENO, [] { stdErr("text"); });
}

}  // namespace
