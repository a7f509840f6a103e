/// @file
/// A fixture for tests of a serial link on a pseudo-terminal.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "serial/serial_link.h"
#include "tests/support/log_capture.h"
#include "tests/support/pseudo_terminal.h"

namespace orvex_test {

/// A link connected to port_ at 9600 baud, and the log lines since then.
class ConnectedLink : public testing::Test {
  protected:
    ConnectedLink() {
        EXPECT_EQ(link_.connect(port_.path(), 9600), 0u);
        log_.take();
    }

    PseudoTerminal port_;
    LogCapture log_;
    SerialLink link_{0};
};

}  // namespace orvex_test
