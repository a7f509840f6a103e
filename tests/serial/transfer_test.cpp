// Sending and receiving on a connected port.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <future>
#include <string>

#include "tests/support/connected_link.h"
#include "tests/support/exceptions.h"
#include "tests/support/waiting.h"

using orvex_test::ConnectedLink;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using orvex_test::timeTaken;
using orvex_test::waitUntil;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

namespace {

constexpr const char* kSilence = "Error: SerialLink::recvArray: read returned with EOF (0)";

/// Receives up to @p count bytes.
std::string receive(SerialLink& link, std::size_t count) {
    std::string text(count, '?');
    text.resize(link.recvArray(text.data(), count));
    return text;
}

class Transfer : public ConnectedLink {};

/// All byte values: none may be changed, swallowed or acted upon.
std::string allBytes() {
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

TEST_F(Transfer, SendsBytesAsTheyAre) {
    const std::string bytes = allBytes();
    link_.sendArray(bytes.data(), bytes.size());
    EXPECT_EQ(port_.takeSent(256), bytes);
    EXPECT_TRUE(port_.nothingSent());
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, ReceivesBytesAsTheyAre) {
    const std::string bytes = allBytes();
    port_.answer(bytes);
    EXPECT_EQ(receive(link_, 256), bytes);
    EXPECT_TRUE(port_.nothingSent());  // No echo.
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, SendsAPartOfABuffer) {
    link_.sendArray("abcdef", 3);
    EXPECT_EQ(port_.takeSent(3), "abc");
    EXPECT_TRUE(port_.nothingSent());
}

TEST_F(Transfer, SendsNothing) {
    link_.sendArray("abc", 0);
    EXPECT_TRUE(port_.nothingSent());
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, SendsOneCharacter) {
    link_.sendChar('A');
    link_.sendChar('\r');
    EXPECT_EQ(port_.takeSent(2), "A\r");
}

TEST_F(Transfer, ReceivesNoMoreThanAskedFor) {
    port_.answer("abcdef");
    EXPECT_EQ(receive(link_, 4), "abcd");
    EXPECT_EQ(port_.unread(), 2u);
    EXPECT_EQ(receive(link_, 2), "ef");
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, ReceivesNothingAtOnceWhenAskedForNothing) {
    port_.answer("a");
    EXPECT_EQ(receive(link_, 0), "");
    EXPECT_EQ(port_.unread(), 1u);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, ReceivesWhatCameBeforeTheDeviceFellSilent) {
    port_.answer("ab");
    std::string text;
    EXPECT_GE(timeTaken([&] { text = receive(link_, 4); }), 450ms);
    EXPECT_EQ(text, "ab");
    EXPECT_THAT(log_.lines(), ElementsAre(kSilence));
}

TEST_F(Transfer, ReceivesNothingFromASilentDevice) {
    std::string text;
    EXPECT_GE(timeTaken([&] { text = receive(link_, 1); }), 450ms);
    EXPECT_EQ(text, "");
    EXPECT_THAT(log_.lines(), ElementsAre(kSilence));
}

TEST_F(Transfer, LogsSilenceAsAnError) {
    link_.setTimeout(0);
    ORVEX_SetLogBits(0x7E);
    EXPECT_EQ(receive(link_, 1), "");
    EXPECT_THAT(log_.lines(), IsEmpty());
    ORVEX_SetLogBits(0x1);
    EXPECT_EQ(receive(link_, 1), "");
    EXPECT_THAT(log_.lines(), ElementsAre(kSilence));
}

TEST_F(Transfer, ReceivesWhatComesInParts) {
    link_.setTimeout(25'500);
    port_.answer("ab");
    auto device = std::async(std::launch::async, [this] {
        const bool taken = waitUntil([this] { return port_.unread() == 0; });
        port_.send("cdef");
        return taken;
    });
    EXPECT_EQ(receive(link_, 4), "abcd");
    EXPECT_TRUE(device.get());
    EXPECT_EQ(receive(link_, 2), "ef");
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, DoesNotWaitWithoutATimeout) {
    link_.setTimeout(50);
    EXPECT_EQ(receive(link_, 1), "");
    port_.answer("a");
    EXPECT_EQ(receive(link_, 4), "a");
    EXPECT_THAT(log_.lines(), ElementsAre(kSilence, kSilence));
}

TEST_F(Transfer, WaitsForTheTimeoutThatIsSet) {
    link_.setTimeout(1'200);
    EXPECT_GE(timeTaken([&] { receive(link_, 1); }), 1'100ms);
    link_.resetTimeouts();
    EXPECT_GE(timeTaken([&] { receive(link_, 1); }), 450ms);
}

TEST_F(Transfer, ReceivesOneCharacter) {
    port_.answer(
        std::string("\0\xFF"
                    "A",
                    3));
    EXPECT_EQ(link_.recvChar(), '\0');
    EXPECT_EQ(link_.recvChar(), '\xFF');
    EXPECT_EQ(link_.recvChar(), 'A');
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, TriesThreeTimesToReceiveACharacter) {
    const Failure silent = {0xA0515019u,
                            "DriverException (0xa0515019): "
                            "SerialLink::recvChar: Wrong recv length: 0"};
    Failure failure;
    EXPECT_GE(timeTaken([&] { failure = failureOf([&] { link_.recvChar(); }); }), 2'000ms);
    EXPECT_EQ(failure, silent);
    EXPECT_THAT(log_.lines(), ElementsAre(kSilence, kSilence, kSilence));
}

TEST_F(Transfer, PausesAfterEachVainAttempt) {
    link_.setTimeout(0);
    EXPECT_GE(
        timeTaken([&] { EXPECT_EQ(failureOf([&] { link_.recvChar(); }).first, 0xA0515019u); }),
        600ms);
    EXPECT_THAT(log_.lines(), ElementsAre(kSilence, kSilence, kSilence));
}

TEST_F(Transfer, ReceivesALateCharacter) {
    auto device = std::async(std::launch::async, [this] {
        const bool late = waitUntil([this] { return !log_.lines().empty(); });
        port_.send("x");
        return late;
    });
    EXPECT_EQ(link_.recvChar(), 'x');
    EXPECT_TRUE(device.get());
}

TEST_F(Transfer, PurgesWhatWasNotRead) {
    port_.answer("old");
    link_.purge();
    EXPECT_EQ(port_.unread(), 0u);
    port_.answer("new");
    EXPECT_EQ(receive(link_, 3), "new");
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Transfer, ReceivesNothingFromADeviceThatIsGone) {
    link_.setTimeout(25'500);
    port_.hangUp();
    EXPECT_EQ(receive(link_, 4), "");
    EXPECT_THAT(log_.lines(), ElementsAre(kSilence));
}

TEST_F(Transfer, EndsReceivingWhenTheDeviceGoesAway) {
    link_.setTimeout(25'500);
    port_.answer("ab");
    auto device = std::async(std::launch::async, [this] {
        const bool taken = waitUntil([this] { return port_.unread() == 0; });
        port_.hangUp();
        return taken;
    });
    Failure failure;
    EXPECT_LT(timeTaken([&] { failure = failureOf([&] { receive(link_, 4); }); }), 20s);
    EXPECT_TRUE(device.get());
    // A reader that the loss finds asleep is told of an error, a later one of the end.
    EXPECT_THAT(
        failure,
        AnyOf(Failure(),
              Failure(0xA0515019u, "DriverException (0xa0515019): SerialLink::recvArray: read.")));
    EXPECT_THAT(
        log_.lines(),
        ElementsAre(AnyOf(kSilence,
                          "Error: SerialLink::recvArray: Error 5 from read: Input/output error")));
}

TEST_F(Transfer, FailsToSendToADeviceThatIsGone) {
    port_.hangUp();
    const Failure failed = {0xA051501Au,
                            "DriverException (0xa051501a): SerialLink::sendArray: write."};
    EXPECT_EQ(failureOf([&] { link_.sendArray("abc", 3); }), failed);
    EXPECT_EQ(failureOf([&] { link_.sendChar('a'); }), failed);
    const char* const line = "Error: SerialLink::sendArray: Error 5 from write: Input/output error";
    EXPECT_THAT(log_.lines(), ElementsAre(line, line));
}

TEST_F(Transfer, FailsToPurgeADeviceThatIsGone) {
    port_.hangUp();
    const Failure failed = {0x80515003u, "DriverException (0x80515003): SerialLink::purge: read."};
    EXPECT_EQ(failureOf([&] { link_.purge(); }), failed);
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::purge: "
                                          "Error 5 from ioctl: Input/output error"));
}

}  // namespace
