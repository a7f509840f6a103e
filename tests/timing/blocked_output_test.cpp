// A device that takes no bytes: writing to it has no time limit.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <termios.h>

#include <array>
#include <future>

#include "sim/pseudo_terminal.h"
#include "tests/support/registered_light.h"
#include "tests/support/thread_log.h"
#include "tests/timing/limits.h"

namespace {

using namespace orvex_test;

class BlockedOutput : public testing::Test {
  protected:
    BlockedOutput() {
        EXPECT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
        // Output that is stopped looks to a writer as a device that takes nothing.
        EXPECT_EQ(::tcflow(port_.get(), TCOOFF), 0);
        call_ = std::async(std::launch::async, [this] {
            std::array<char, 64> reply{};
            return ORVEX_ExecuteCommand(light_.handle, "GetLedHours", reply.data(), reply.size());
        });
    }

    ThreadLog log_{LOG_BIT_ERROR};
    RegisteredLight light_{ORVEX_TYPE_TAMAR};
    orvex::sim::Descriptor port_{::open(light_.device.path().c_str(), O_RDWR | O_NOCTTY)};
    std::future<std::uint32_t> call_;
};

TEST_F(BlockedOutput, IsWaitedForAsLongAsItLasts) {
    EXPECT_EQ(call_.wait_for(2 * kSilenceLimit), std::future_status::timeout);
    EXPECT_EQ(::tcflow(port_.get(), TCOON), 0);
    EXPECT_EQ(call_.get(), ORVEX_OK);
}

TEST_F(BlockedOutput, EndsWhenTheDeviceIsPulledOut) {
    EXPECT_EQ(call_.wait_for(300ms), std::future_status::timeout);
    light_.device.hangUp();
    EXPECT_EQ(call_.get(), ORVEX_ERR_SEND);
}

}  // namespace
