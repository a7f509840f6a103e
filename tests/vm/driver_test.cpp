// What the kernel's driver does, without the library: what the documentation says of it is so.
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <future>

#include "tests/vm/usb_lights.h"

namespace {

using orvex_test::kAtOnce;
using orvex_test::timeTaken;
using orvex_test::waitUntil;
using ::testing::Lt;

void makeRaw(int fd) {
    termios raw{};
    EXPECT_EQ(::tcgetattr(fd, &raw), 0);
    ::cfmakeraw(&raw);
    raw.c_cc[VMIN] = 1;
    EXPECT_EQ(::tcsetattr(fd, TCSANOW, &raw), 0);
}

int available(int fd) {
    int count = 0;
    EXPECT_EQ(::ioctl(fd, FIONREAD, &count), 0);
    return count;
}

/// A USB device without a program, and both ends of its line.
class Driver : public ::testing::Test {
  protected:
    Driver() : gadget_(0, orvex_test::kTamar) {
        device_ = ::open(gadget_.deviceSide().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        makeRaw(device_);
        gadget_.plug();
    }

    ~Driver() override {
        gadget_.pull();
        ::close(device_);
        if (port_ >= 0) {
            ::close(port_);
        }
    }

    int open(int flags = 0) {
        port_ = ::open(gadget_.port().c_str(), O_RDWR | O_NOCTTY | flags);
        EXPECT_GE(port_, 0);
        return port_;
    }

    std::string deviceReads() const {
        std::array<char, 64> bytes{};
        ssize_t count = -1;
        EXPECT_TRUE(waitUntil([&] {
            count = ::read(device_, bytes.data(), bytes.size());
            return count > 0;
        }));
        return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

    orvex_test::Gadget gadget_;
    int device_ = -1;
    int port_ = -1;
};

/// A call's error, 0 when it succeeds.
template <typename Result>
int errorOf(Result result) {
    return result < 0 ? errno : 0;
}

TEST_F(Driver, RefusesAllButReadingAndClosingAfterUnplugging) {
    const int fd = open();
    makeRaw(fd);
    termios settings{};
    ASSERT_EQ(::tcgetattr(fd, &settings), 0);
    gadget_.unplug();
    char byte = 0;
    const auto taken = timeTaken([&] {
        for (int k = 0; k < 3; ++k) {
            EXPECT_EQ(::read(fd, &byte, 1), 0);
        }
        EXPECT_EQ(errorOf(::write(fd, "A", 1)), EIO);
        EXPECT_EQ(errorOf(::tcgetattr(fd, &settings)), EIO);
        EXPECT_EQ(errorOf(::tcsetattr(fd, TCSANOW, &settings)), EIO);
        EXPECT_EQ(errorOf(::tcdrain(fd)), EIO);
        EXPECT_EQ(errorOf(::ioctl(fd, TCFLSH, TCIOFLUSH)), EIO);
        pollfd state{fd, POLLIN | POLLOUT, 0};
        EXPECT_EQ(::poll(&state, 1, 0), 1);
        EXPECT_EQ(state.revents, POLLIN | POLLOUT | POLLHUP | POLLERR);
        EXPECT_EQ(::close(fd), 0);
    });
    port_ = -1;
    EXPECT_THAT(taken, Lt(kAtOnce));
}

TEST_F(Driver, EndsABlockedReadAtUnplugging) {
    const int fd = open();
    makeRaw(fd);
    auto read = std::async(std::launch::async, [fd] {
        char byte = 0;
        return ::read(fd, &byte, 1);
    });
    EXPECT_EQ(read.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
    gadget_.pull();
    EXPECT_THAT(timeTaken([&] { read.wait(); }), Lt(kAtOnce));
    EXPECT_EQ(read.get(), 0);
}

TEST_F(Driver, DropsUnreadBytesAtUnplugging) {
    const int fd = open();
    makeRaw(fd);
    ASSERT_EQ(::write(device_, "1.4.2\r", 6), 6);
    ASSERT_TRUE(waitUntil([&] { return available(fd) == 6; }));
    gadget_.unplug();
    char byte = 0;
    EXPECT_EQ(::read(fd, &byte, 1), 0);
}

TEST_F(Driver, GivesANewPortEchoAndLines) {
    const int fd = open();
    termios settings{};
    EXPECT_EQ(::tcgetattr(fd, &settings), 0);
    EXPECT_EQ(settings.c_lflag & static_cast<tcflag_t>(ECHO | ICANON),
              static_cast<tcflag_t>(ECHO | ICANON));
}

TEST_F(Driver, SendsBackWhatComesBeforeRawMode) {
    ASSERT_EQ(::write(device_, "30\r", 3), 3);
    open();
    EXPECT_EQ(deviceReads().substr(0, 2), "30");
}

TEST_F(Driver, RaisesTheModemLinesAtOpening) {
    int lines = 0;
    EXPECT_EQ(::ioctl(open(), TIOCMGET, &lines), 0);
    EXPECT_EQ(lines & (TIOCM_DTR | TIOCM_RTS), TIOCM_DTR | TIOCM_RTS);
}

TEST_F(Driver, LetsTwoProgramsOpenThePort) {
    open();
    const int second = ::open(gadget_.port().c_str(), O_RDWR | O_NOCTTY);
    EXPECT_GE(second, 0);
    ::close(second);
}

}  // namespace
