// Connecting a serial link to a port, and letting it go.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "serial/serial_link.h"
#include "tests/support/connected_link.h"
#include "tests/support/log_capture.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/waiting.h"

using orvex_test::ConnectedLink;
using orvex_test::LogCapture;
using orvex_test::PseudoTerminal;
using orvex_test::sameSettings;
using orvex_test::TemporaryDirectory;
using orvex_test::timeTaken;
using testing::ElementsAre;
using testing::IsEmpty;
using std::chrono_literals::operator""ms;

namespace {

TEST(SerialLink, ConnectsInAProcessWithoutStandardInput) {
    const PseudoTerminal port;
    ::close(STDIN_FILENO);
    SerialLink link('\0');

    EXPECT_EQ(link.connect(port.path(), 9600), 0U);

    EXPECT_TRUE(link.isConnected());
    EXPECT_EQ(::fcntl(STDIN_FILENO, F_GETFD), -1);
}

TEST(SerialLink, KeepsOffTheDescriptorOfAClosedStandardError) {
    const PseudoTerminal port;
    SerialLink link(0);
    const int kept = ::dup(STDERR_FILENO);
    ::close(STDERR_FILENO);
    const unsigned status = link.connect(port.path(), 9600);
    const bool isFree = ::fcntl(STDERR_FILENO, F_GETFD) == -1;
    ::dup2(kept, STDERR_FILENO);
    ::close(kept);
    EXPECT_EQ(status, 0u);
    EXPECT_TRUE(isFree);
}

TEST(SerialLink, BeginsDisconnected) {
    const LogCapture log;
    {
        const SerialLink link('x');
        EXPECT_FALSE(link.isConnected());
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SerialLink, StoresAPortWithoutOpeningIt) {
    const LogCapture log;
    const PseudoTerminal port;
    SerialLink link(0);
    EXPECT_EQ(link.setPort(port.path()), 0u);
    EXPECT_FALSE(link.isConnected());
    EXPECT_EQ(port.openDescriptors(), 0u);
    EXPECT_EQ(link.setPort("/no/such/port"), 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SerialLink, RefusesToStoreAnEmptyPort) {
    const LogCapture log;
    SerialLink link(0);
    EXPECT_EQ(link.setPort(""), 0xA0515001u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SerialLink, RefusesAnEmptyPort) {
    const LogCapture log;
    SerialLink link(0);
    EXPECT_EQ(link.connect("", 9600), 0xA0515001u);
    EXPECT_FALSE(link.isConnected());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SerialLink, ConnectsToAPort) {
    const PseudoTerminal port;
    const LogCapture log;
    SerialLink link(0);
    EXPECT_EQ(link.connect(port.path(), 9600), 0u);
    EXPECT_TRUE(link.isConnected());
    EXPECT_EQ(port.openDescriptors(), 1u);
    EXPECT_THAT(log.lines(), ElementsAre("SerialLink::connect: port: " + port.path()));
}

TEST(SerialLink, LogsThePortAsASerialEvent) {
    const PseudoTerminal port;
    LogCapture log(0x8);
    SerialLink link(0);
    EXPECT_EQ(link.connect(port.path(), 9600), 0u);
    EXPECT_THAT(log.take(), ElementsAre("SerialLink::connect: port: " + port.path()));
    ORVEX_SetLogBits(0x77);
    EXPECT_EQ(link.connect(port.path(), 9600), 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SerialLink, FailsOnAMissingPort) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("ttyACM0");
    const LogCapture log;
    SerialLink link(0);
    EXPECT_EQ(link.connect(path, 9600), 0xA0515007u);
    EXPECT_FALSE(link.isConnected());
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_THAT(
        log.lines(),
        ElementsAre("SerialLink::connect: port: " + path,
                    "Error: SerialLink::connect: open port: " + path,
                    "Error: SerialLink::connect: Error 2 from open: No such file or directory"));
}

TEST(SerialLink, FailsOnADirectory) {
    const TemporaryDirectory directory;
    const LogCapture log(0x1);
    SerialLink link(0);
    EXPECT_EQ(link.connect(directory.path(), 9600), 0xA0515007u);
    EXPECT_FALSE(link.isConnected());
    EXPECT_THAT(log.lines(),
                ElementsAre("Error: SerialLink::connect: open port: " + directory.path().string(),
                            "Error: SerialLink::connect: Error 21 from open: Is a directory"));
}

TEST_F(ConnectedLink, RestoresThePortWhenItDisconnects) {
    link_.disconnect();
    const termios original = port_.settings();
    EXPECT_EQ(link_.connect(port_.path(), 115200), 0u);
    EXPECT_FALSE(sameSettings(port_.settings(), original));
    log_.take();
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_FALSE(link_.isConnected());
    EXPECT_TRUE(sameSettings(port_.settings(), original));
    EXPECT_EQ(port_.openDescriptors(), 0u);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST(SerialLink, RestoresAndClosesThePortAtItsEnd) {
    const PseudoTerminal port;
    const LogCapture log;
    const termios original = port.settings();
    auto link = std::make_unique<SerialLink>('\0');
    EXPECT_EQ(link->connect(port.path(), 115200), 0u);
    EXPECT_FALSE(sameSettings(port.settings(), original));
    link.reset();
    EXPECT_TRUE(sameSettings(port.settings(), original));
    EXPECT_EQ(port.openDescriptors(), 0u);
    EXPECT_THAT(log.lines(), ElementsAre("SerialLink::connect: port: " + port.path()));
}

TEST(SerialLink, EndsQuietlyAfterADisconnection) {
    const PseudoTerminal port;
    LogCapture log;
    {
        SerialLink link(0);
        EXPECT_EQ(link.connect(port.path(), 9600), 0u);
        EXPECT_EQ(link.disconnect(), 0u);
        termios changed = port.settings();
        changed.c_cc[VTIME] = 77;
        port.apply(changed);
        log.take();
    }
    EXPECT_EQ(port.settings().c_cc[VTIME], 77);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ConnectedLink, ClosesThePortWithoutRestoringItWhenItConnectsToAnother) {
    const PseudoTerminal other;
    const termios configured = port_.settings();
    EXPECT_EQ(link_.connect(other.path(), 9600), 0u);
    EXPECT_EQ(port_.openDescriptors(), 0u);
    EXPECT_TRUE(sameSettings(port_.settings(), configured));
    EXPECT_EQ(other.openDescriptors(), 1u);
    link_.sendArray("x", 1);
    EXPECT_EQ(other.takeSent(1), "x");
    EXPECT_THAT(log_.lines(), ElementsAre("SerialLink::connect: port: " + other.path()));
}

TEST_F(ConnectedLink, RestoresWhatItFoundAtItsLastConnection) {
    const termios found = port_.settings();
    EXPECT_EQ(link_.connect(port_.path(), 115200), 0u);
    EXPECT_EQ(port_.openDescriptors(), 1u);
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_TRUE(sameSettings(port_.settings(), found));
}

TEST_F(ConnectedLink, ClosesThePortForAnEmptyOne) {
    const termios configured = port_.settings();
    EXPECT_EQ(link_.connect("", 9600), 0xA0515001u);
    EXPECT_FALSE(link_.isConnected());
    EXPECT_EQ(port_.openDescriptors(), 0u);
    EXPECT_TRUE(sameSettings(port_.settings(), configured));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ConnectedLink, ClosesThePortForAMissingOne) {
    EXPECT_EQ(link_.connect("/no/such/port", 9600), 0xA0515007u);
    EXPECT_FALSE(link_.isConnected());
    EXPECT_EQ(port_.openDescriptors(), 0u);
}

TEST_F(ConnectedLink, ConnectsAgainAfterADisconnection) {
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_EQ(link_.connect(port_.path(), 9600), 0u);
    link_.sendArray("x", 1);
    EXPECT_EQ(port_.takeSent(1), "x");
}

TEST(SerialLink, PausesToDisconnectEvenWhenNeverConnected) {
    const LogCapture log;
    SerialLink link(0);
    unsigned result = 1;
    EXPECT_GE(timeTaken([&] { result = link.disconnect(); }), 10ms);
    EXPECT_EQ(result, 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ConnectedLink, PausesToDisconnect) {
    EXPECT_GE(timeTaken([&] { link_.disconnect(); }), 10ms);
}

/// Interrupts the process every 3 ms.
class Interruptions {
  public:
    Interruptions() {
        std::signal(SIGALRM, [](int) {});
        set({3000, 3000});
    }
    ~Interruptions() {
        set({0, 0});
        std::signal(SIGALRM, SIG_DFL);
    }

  private:
    struct Microseconds {
        suseconds_t interval;
        suseconds_t first;
    };
    static void set(Microseconds times) {
        const itimerval timer = {{0, times.interval}, {0, times.first}};
        ::setitimer(ITIMER_REAL, &timer, nullptr);
    }
};

TEST(SerialLink, PausesTheWholeTimeWhenInterrupted) {
    SerialLink link(0);
    const Interruptions interruptions;
    EXPECT_GE(timeTaken([&] { link.disconnect(); }), 10ms);
}

TEST_F(ConnectedLink, LogsAPortThatIsGoneWhenItDisconnects) {
    port_.hangUp();
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_FALSE(link_.isConnected());
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::disconnect: set tty attributes. "
                                          "Error 5 from tcsetattr: Input/output error"));
}

TEST(SerialLink, LogsAPortThatIsGoneAtItsEnd) {
    PseudoTerminal port;
    LogCapture log;
    {
        SerialLink link(0);
        EXPECT_EQ(link.connect(port.path(), 9600), 0u);
        port.hangUp();
        log.take();
    }
    EXPECT_THAT(log.lines(), ElementsAre("Error: SerialLink::~SerialLink: set tty attributes. "
                                         "Error 5 from tcsetattr: Input/output error"));
}

void fail(const char*) {
    throw std::runtime_error("the callback failed");
}

TEST(SerialLinkDeathTest, EndsTheProcessWhenItsEndCannotBeLogged) {
    const auto endWithAFailingLog = [] {
        PseudoTerminal port;
        const LogCapture log;
        SerialLink link(0);
        static_cast<void>(link.connect(port.path(), 9600));
        port.hangUp();
        ORVEX_RegisterLogCallback(fail);
    };
    EXPECT_DEATH(endWithAFailingLog(), "the callback failed");
}

}  // namespace
