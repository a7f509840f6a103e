// Raw bytes to and from the device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "sim/fault.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/waiting.h"

using orvex::sim::onRequest;
using orvex::sim::scripted;
using orvex::sim::silence;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::waitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const Failure kInvalid{0xA0515001, "DriverException (0xa0515001) "};

class Arrays : public testing::Test {
  protected:
    int write(std::string data) { return light_.device.writeArray(data.data(), data.size()); }

    /// What a read of so many bytes leaves in a buffer of dots.
    std::string read(std::string request, std::size_t length) {
        std::string answer(length, '.');
        EXPECT_EQ(light_.device.readArray(request.data(), request.size(), answer.data(), length),
                  0);
        return answer;
    }

    void answerWith(const std::string& bytes) {
        light_.port.addFault(onRequest("GI"), scripted(bytes));
    }

    /// Lets bytes wait in the port.
    void leaveUnread(const std::string& bytes) {
        answerWith("1\r" + bytes);
        light_.exchange("GI");
        light_.port.clearRecord();
    }

    std::string sentBytes(std::size_t expected) {
        EXPECT_TRUE(waitUntil([&] { return light_.port.received().size() >= expected; }));
        return light_.port.received();
    }

    std::size_t readPlainly(std::string& bytes) {
        std::size_t received = 99;
        EXPECT_EQ(light_.device.Read(bytes.data(), bytes.size(), received), received);
        return received;
    }

    OpenLight light_{ORVEX_TYPE_ALDER};
};

TEST_F(Arrays, AreWrittenAsTheyAre) {
    const std::string data("\x01\0\xFFGI", 5);
    EXPECT_EQ(write(data), 0);
    EXPECT_EQ(sentBytes(5), data);
}

TEST_F(Arrays, AreLoggedAsTextWhenWritten) {
    const LogCapture log;
    write("GI5");
    write(std::string("ab\0cd", 5));
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::writeArray: Send write command: [GI5]",
                                         "LightDevice::writeArray: Send write command: [ab]"));
}

TEST_F(Arrays, AreWrittenFromOneByteToTheLimit) {
    const std::string longest(1024, 'x');
    const LogCapture log;
    write("y");
    EXPECT_EQ(sentBytes(1), "y");
    write(longest);
    EXPECT_EQ(sentBytes(1025), "y" + longest);
    EXPECT_THAT(log.lines(),
                ElementsAre("LightDevice::writeArray: Send write command: [y]",
                            "LightDevice::writeArray: Send write command: [" + longest + "]"));
}

TEST_F(Arrays, AreNotWrittenBeyondTheLimits) {
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { write(""); }), kInvalid);
    EXPECT_EQ(failureOf([&] { write(std::string(1025, 'x')); }), kInvalid);
    EXPECT_THAT(log.lines(), IsEmpty());
    write("y");
    EXPECT_EQ(sentBytes(1), "y");
}

TEST_F(Arrays, DiscardUnreadBytesWhenWritten) {
    leaveUnread("more");
    write("x");
    sentBytes(1);
    std::string bytes(4, '.');
    EXPECT_EQ(readPlainly(bytes), 0U);
}

TEST_F(Arrays, AreReadBehindAnAcknowledgement) {
    answerWith(
        "\x06"
        "abcd");
    EXPECT_EQ(read("GI\r", 4), "abcd");
    EXPECT_EQ(light_.port.received(), "GI\r");
}

TEST_F(Arrays, AreLoggedWhenRead) {
    answerWith("Zab");
    const LogCapture log;
    read("GI\r", 2);
    EXPECT_THAT(log.lines(), ElementsAre("Info: Send [GI\r]", " <-Received [90]"));
}

TEST_F(Arrays, AreLoggedWithASignedAcknowledgement) {
    answerWith(
        "\xFF"
        "ab");
    const LogCapture log;
    read("GI\r", 2);
    EXPECT_THAT(log.lines(), ElementsAre("Info: Send [GI\r]", " <-Received [-1]"));
}

TEST_F(Arrays, AreLoggedAsInformation) {
    answerWith("Zab");
    const LogCapture log(0x7D);
    write("x\r");
    sentBytes(2);
    read("GI\r", 2);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Arrays, AreReadWithAnyAcknowledgement) {
    answerWith(std::string("\0ab", 3));
    EXPECT_EQ(read("GI\r", 2), "ab");
    answerWith("e\r\n");
    EXPECT_EQ(read("GI\r", 2), "\r\n");
}

TEST_F(Arrays, AreReadNoFartherThanAskedFor) {
    answerWith("Zabcd");
    EXPECT_EQ(read("GI\r", 2), "ab");
    std::string rest(2, '.');
    EXPECT_EQ(readPlainly(rest), 2U);
    EXPECT_EQ(rest, "cd");
}

TEST_F(Arrays, LeaveTheAnswerBeyondWhatCame) {
    answerWith("Zab");
    const LogCapture log;
    EXPECT_EQ(read("GI\r", 4), "ab..");
    EXPECT_THAT(log.lines(),
                ElementsAre("Info: Send [GI\r]", " <-Received [90]",
                            "Error: SerialLink::recvArray: read returned with EOF (0)"));
}

TEST_F(Arrays, LeaveTheAnswerWhenOnlyTheAcknowledgementComes) {
    answerWith("Z");
    EXPECT_EQ(read("GI\r", 4), "....");
}

TEST_F(Arrays, AreReadUpToTheLimits) {
    const std::string longest(1024, 'x');
    answerWith("Z" + longest);
    EXPECT_EQ(read("GI\r", 1024), longest);
    const std::string request = std::string(1023, 'r') + "\r";
    light_.port.addFault(onRequest(request), scripted("Zab"));
    EXPECT_EQ(read(request, 2), "ab");
}

TEST_F(Arrays, AreNotReadBeyondTheLimits) {
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { read("", 4); }), kInvalid);
    EXPECT_EQ(failureOf([&] { read(std::string(1025, 'x'), 4); }), kInvalid);
    EXPECT_EQ(failureOf([&] { read("GI\r", 0); }), kInvalid);
    EXPECT_EQ(failureOf([&] { read("GI\r", 1025); }), kInvalid);
    EXPECT_THAT(log.lines(), IsEmpty());
    light_.exchange("other");
    EXPECT_EQ(light_.port.received(), "other\r");
}

TEST_F(Arrays, FailWithoutAnAcknowledgement) {
    light_.port.addFault(onRequest("GI"), silence());
    EXPECT_EQ(failureOf([&] { read("GI\r", 4); }),
              Failure(0xA0515019,
                      "DriverException (0xa0515019): SerialLink::recvChar: Wrong recv length: 0"));
    EXPECT_EQ(light_.exchange("other"), "ok\r");
}

TEST_F(Arrays, DiscardUnreadBytesWhenRead) {
    leaveUnread("more");
    answerWith("Zab");
    EXPECT_EQ(read("GI\r", 2), "ab");
}

TEST_F(Arrays, WriteKeepsUnreadBytes) {
    leaveUnread("more");
    const LogCapture log;
    light_.device.Write("x", 1);
    EXPECT_EQ(sentBytes(1), "x");
    std::string bytes(4, '.');
    EXPECT_EQ(readPlainly(bytes), 4U);
    EXPECT_EQ(bytes, "more");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Arrays, WriteIsNotLimited) {
    light_.device.Write(std::string(2000, 'x').data(), 2000);
    EXPECT_EQ(sentBytes(2000), std::string(2000, 'x'));
}

TEST_F(Arrays, ReadReportsHowMuchCame) {
    leaveUnread("more");
    std::string bytes(6, '.');
    EXPECT_EQ(readPlainly(bytes), 4U);
    EXPECT_EQ(bytes, "more..");
}

TEST_F(Arrays, PurgeDiscardsUnreadBytes) {
    leaveUnread("more");
    const LogCapture log;
    EXPECT_EQ(light_.device.Purge(), 0);
    EXPECT_THAT(log.lines(), IsEmpty());
    std::string bytes(4, '.');
    EXPECT_EQ(readPlainly(bytes), 0U);
    EXPECT_EQ(light_.port.received(), "");
}

TEST(ArraysWithoutConnection, AreRefused) {
    const Failure notConnected{0x80517006, "DriverException (0x80517006) "};
    Light light(ORVEX_TYPE_ALDER);
    LightDevice& device = light.device;
    char byte = 'A';
    std::size_t received = 0;
    EXPECT_EQ(failureOf([&] { device.writeArray(&byte, 1); }), notConnected);
    EXPECT_EQ(failureOf([&] { device.readArray(&byte, 1, &byte, 1); }), notConnected);
    EXPECT_EQ(failureOf([&] { device.Write(&byte, 1); }), notConnected);
    EXPECT_EQ(failureOf([&] { device.Read(&byte, 1, received); }), notConnected);
    EXPECT_EQ(failureOf([&] { device.Purge(); }), notConnected);
    EXPECT_EQ(failureOf([&] { device.ping(); }), notConnected);
    EXPECT_EQ(light.port.received(), "");
}

}  // namespace
