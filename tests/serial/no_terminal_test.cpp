// A serial link without a port, and on a file that is no terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "serial/serial_link.h"
#include "tests/support/exceptions.h"
#include "tests/support/log_capture.h"
#include "tests/support/temporary_directory.h"

using orvex_test::contentsOf;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using orvex_test::TemporaryDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Failure noHandle(const std::string& operation) {
    return {0xA0515007u, "DriverException (0xa0515007): SerialLink::" + operation + ": no handle."};
}

class WithoutAPort : public testing::Test {
  protected:
    const LogCapture log_;
    SerialLink link_{0};
    char byte_ = 'x';
};

TEST_F(WithoutAPort, EveryOperationIsRefusedWithoutALogLine) {
    EXPECT_EQ(failureOf([&] { link_.recvArray(&byte_, 1); }), noHandle("recvArray"));
    EXPECT_EQ(failureOf([&] { link_.recvChar(); }), noHandle("recvArray"));
    EXPECT_EQ(failureOf([&] { link_.sendArray(&byte_, 1); }), noHandle("sendArray"));
    EXPECT_EQ(failureOf([&] { link_.sendChar('x'); }), noHandle("sendArray"));
    EXPECT_EQ(failureOf([&] { link_.purge(); }), noHandle("purge"));
    EXPECT_EQ(failureOf([&] { link_.setTimeout(100); }), noHandle("setTimeout"));
    EXPECT_EQ(failureOf([&] { link_.resetTimeouts(); }), noHandle("resetTimeouts"));
    EXPECT_EQ(failureOf([&] { link_.setBaudrate(9600); }), noHandle("setBaudrate"));
    EXPECT_EQ(failureOf([&] { static_cast<void>(link_.getBaudrate()); }), noHandle("getBaudrate"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(WithoutAPort, TransfersOfNothingAreRefusedToo) {
    EXPECT_EQ(failureOf([&] { link_.recvArray(&byte_, 0); }), noHandle("recvArray"));
    EXPECT_EQ(failureOf([&] { link_.sendArray(&byte_, 0); }), noHandle("sendArray"));
}

TEST_F(WithoutAPort, AStoredPathIsNoPort) {
    const TemporaryDirectory directory;
    EXPECT_EQ(link_.setPort(directory.path()), 0u);
    EXPECT_EQ(failureOf([&] { link_.purge(); }), noHandle("purge"));
}

class OnAFile : public testing::Test {
  protected:
    OnAFile() { std::ofstream(path_) << "abcdef"; }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_.file("file");
    LogCapture log_;
    std::unique_ptr<SerialLink> link_ = std::make_unique<SerialLink>('\0');
};

TEST_F(OnAFile, ConnectingFailsButLeavesTheFileOpen) {
    EXPECT_EQ(link_->connect(path_, 9600), 0x80515003u);
    EXPECT_TRUE(link_->isConnected());
    EXPECT_EQ(contentsOf(path_), "abcdef");
    EXPECT_THAT(log_.lines(), ElementsAre("SerialLink::connect: port: " + path_,
                                          "Error: SerialLink::connect: Error 25 from tcgetattr: "
                                          "Inappropriate ioctl for device"));
}

class OnAnOpenFile : public OnAFile {
  protected:
    OnAnOpenFile() {
        EXPECT_EQ(link_->connect(path_, 9600), 0x80515003u);
        log_.take();
    }
};

TEST_F(OnAnOpenFile, BytesAreReadUpToTheEnd) {
    std::string text(8, '?');
    EXPECT_EQ(link_->recvArray(text.data(), 8), 6u);
    EXPECT_EQ(text, "abcdef??");
    EXPECT_THAT(log_.lines(),
                ElementsAre("Error: SerialLink::recvArray: read returned with EOF (0)"));
}

TEST_F(OnAnOpenFile, BytesAreWritten) {
    link_->sendArray("XY", 2);
    EXPECT_EQ(contentsOf(path_), "XYcdef");
}

TEST_F(OnAnOpenFile, WhatNeedsATerminalFails) {
    const auto failed = [](const std::string& text) {
        return Failure(0x80515003u, "DriverException (0x80515003): SerialLink::" + text);
    };
    EXPECT_EQ(failureOf([&] { link_->purge(); }), failed("purge: read."));
    EXPECT_EQ(failureOf([&] { link_->setTimeout(100); }), failed("setTimeout: tcgetattr."));
    EXPECT_EQ(failureOf([&] { link_->resetTimeouts(); }), failed("resetTimeouts: tcgetattr."));
    EXPECT_EQ(failureOf([&] { link_->setBaudrate(9600); }), failed("setBaudrate: tcgetattr."));
    EXPECT_EQ(failureOf([&] { static_cast<void>(link_->getBaudrate()); }),
              failed("getBaudrate: tcgetattr."));
    const auto line = [](const std::string& beginning) {
        return "Error: SerialLink::" + beginning + ": Inappropriate ioctl for device";
    };
    EXPECT_THAT(log_.lines(), ElementsAre(line("purge: Error 25 from ioctl"),
                                          line("setTimeout: Error 25 from tcgetattr"),
                                          line("resetTimeouts: Error 25 from tcgetattr"),
                                          line("setBaudrate: Error 25 from tcgetattr"),
                                          line("getBaudrate: Error 25 from tcgetattr")));
}

TEST_F(OnAnOpenFile, DisconnectingLogsTheSettingsAndCloses) {
    EXPECT_EQ(link_->disconnect(), 0u);
    EXPECT_FALSE(link_->isConnected());
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::disconnect: set tty attributes. "
                                          "Error 25 from tcsetattr: "
                                          "Inappropriate ioctl for device"));
}

TEST_F(OnAnOpenFile, TheLinksEndLogsTheSettings) {
    link_.reset();
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::~SerialLink: set tty attributes. "
                                          "Error 25 from tcsetattr: "
                                          "Inappropriate ioctl for device"));
}

}  // namespace
