// Replies that come when the call has given up already.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

#include "sim/fault.h"
#include "tests/support/registered_light.h"
#include "tests/support/thread_log.h"
#include "tests/timing/limits.h"

namespace {

using namespace orvex_test;

class LateReplies : public testing::Test {
  protected:
    LateReplies() {
        EXPECT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
        orvex::sim::Fault late = orvex::sim::scripted("late\r");
        late.delay = kLateBy;
        light_.device.addFault(orvex::sim::onCommand("GetLedHours"), late);
    }

    std::string ask(const char* name) const {
        std::array<char, 64> reply{};
        const std::uint32_t status =
            ORVEX_ExecuteCommand(light_.handle, name, reply.data(), reply.size());
        return status == ORVEX_OK ? reply.data() : std::to_string(status);
    }

    static constexpr auto kLateBy = kSilenceLimit + 900ms;
    const std::string noAnswer_ = std::to_string(ORVEX_ERR_RECV);
    ThreadLog log_{LOG_BIT_ERROR};
    RegisteredLight light_{ORVEX_TYPE_TAMAR};
};

// Nothing in a reply tells which request it is for.
TEST_F(LateReplies, AreTakenForTheNextRequests) {
    EXPECT_EQ(ask("GetLedHours"), noAnswer_);
    EXPECT_EQ(ask("GetUnitSerialNumber"), "late\r");
}

TEST_F(LateReplies, AreDiscardedByARequestBehindThem) {
    EXPECT_EQ(ask("GetLedHours"), noAnswer_);
    std::this_thread::sleep_for(kLateBy);
    EXPECT_EQ(ask("GetUnitSerialNumber"), "SN-0042\r");
}

}  // namespace
