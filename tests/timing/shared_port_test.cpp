// A port that is opened twice. The second opener here has a device object of its own and shares
// nothing with the first but the port, as another program does.
#include <gmock/gmock.h>

#include <array>
#include <future>
#include <string>

#include "api/driver_exception.h"
#include "sim/fault.h"
#include "tests/support/registered_light.h"
#include "tests/support/thread_log.h"
#include "tests/timing/limits.h"

namespace {

using namespace orvex_test;
using orvex::sim::onAny;
using orvex::sim::silence;

class SharedPort : public testing::Test {
  protected:
    SharedPort() {
        first_.openConnection(9600);
        second_.openConnection(9600);
    }

    static std::string ask(LightDevice& device, const char* name) {
        std::string reply;
        try {
            device.executeCommand(name, reply, "");
        } catch (const DriverException& failure) {
            return std::to_string(failure.error_code());
        }
        return reply;
    }

    ThreadLog log_{LOG_BIT_ERROR};
    orvex::sim::SimulatedDevice device_{[] {
        orvex::sim::DeviceSetup setup;
        setup.wavelengths = {365, 405, 470, 525};
        return setup;
    }()};
    LightDevice first_{ORVEX_TYPE_TAMAR, device_.path()};
    LightDevice second_{ORVEX_TYPE_TAMAR, device_.path()};
};

const std::string kNoAnswer = std::to_string(ORVEX_ERR_RECV);

TEST_F(SharedPort, IsRefusedToNobody) {
    EXPECT_EQ(first_.getOpenCount(), 1U);
    EXPECT_EQ(second_.getOpenCount(), 1U);
    EXPECT_EQ(ask(first_, "GetUnitSerialNumber"), "SN-0042\r");
    EXPECT_EQ(ask(second_, "GetUnitSerialNumber"), "SN-0042\r");
}

TEST_F(SharedPort, LosesItsDeviceForAllWhenOneCloses) {
    first_.closeConnection(false);
    EXPECT_FALSE(device_.state().connected);
    EXPECT_TRUE(second_.isConnected());
}

TEST_F(SharedPort, GivesAReplyToWhoeverReadsIt) {
    const std::string request = "sn?\r";
    first_.Write(request.data(), request.size());
    std::array<char, 8> reply{};
    std::size_t received = 0;
    second_.Read(reply.data(), reply.size(), received);
    EXPECT_EQ(std::string(reply.data(), received), "SN-0042\r");
}

// The first puts back the settings that it has found, and those know no time-out.
TEST_F(SharedPort, HasNoTimeLimitAfterTheFirstHasClosed) {
    first_.closeConnection(false);
    device_.addFault(onAny(), silence());
    auto second = std::async(std::launch::async, [this] { return ask(second_, "GetLedHours"); });
    EXPECT_EQ(second.wait_for(2 * kSilenceLimit), std::future_status::timeout);
    device_.hangUp();
    EXPECT_EQ(second.get(), kNoAnswer);
}

TEST_F(SharedPort, IsInOrderAgainWhenItIsOpenedAnew) {
    first_.closeConnection(false);
    second_.closeConnection(false);
    second_.openConnection(9600);
    device_.addFault(onAny(), silence());
    expectInTime(kSilenceLimit - 50ms, kSilenceLimit, [this] {
        const auto begin = std::chrono::steady_clock::now();
        const std::string reply = ask(second_, "GetLedHours");
        return Measured{std::chrono::steady_clock::now() - begin,
                        reply == kNoAnswer ? "" : "got " + reply};
    });
}

}  // namespace
