// Devices that are pulled out in the middle of an exchange, found again by udev, and used again.
#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "sim/fault.h"
#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;

const std::string kPort = "/dev/ttyACM0";

/// A program's use of one device, as far as it gets.
std::vector<std::uint32_t> use(std::uint64_t& handle, const char* command) {
    std::array<char, 256> reply{};
    std::vector<std::uint32_t> statuses;
    handle = 0;
    statuses.push_back(api().OpenDevice(&handle, ORVEX_TYPE_UNDEFINED, kPort.c_str(), 9600));
    if (statuses.back() != ORVEX_OK) {
        return statuses;
    }
    statuses.push_back(api().ExecuteCommand(handle, command, reply.data(), reply.size()));
    statuses.push_back(api().SwitchOrvex(handle, true, false));
    api().CloseDevice(handle);
    return statuses;
}

/// How many descriptors this process has on terminals. The testbed's own come and go.
std::size_t terminals() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        const std::string target = std::filesystem::read_symlink(entry.path(), ignored);
        count += target.rfind("/dev/pt", 0) == 0 || target.rfind("/dev/tty", 0) == 0 ? 1 : 0;
    }
    return count;
}

struct Model {
    OrvexType type;
    const char* name;
    const char* command;
    unsigned exchanges;  ///< Of use().
};

void PrintTo(const Model& model, std::ostream* out) {
    *out << model.name;
}

class Unplugging : public orvex_test::AttachedDevices, public testing::WithParamInterface<Model> {
  protected:
    Unplugging() { setup_.model = GetParam().type; }

    /// Plugs the device in, lets it be pulled out at an exchange, and plugs it in again.
    void pullOutAt(unsigned exchange) {
        SCOPED_TRACE("exchange " + std::to_string(exchange));
        orvex::sim::SimulatedDevice device(setup_);
        testbed.plug(device);
        device.addFault(orvex::sim::onAny().nth(exchange), orvex::sim::hangUp());
        std::uint64_t handle = 0;
        expectFailure(use(handle, GetParam().command), exchange);
        EXPECT_FALSE(device.isPluggedIn());
        testbed.unplug(kPort);
        EXPECT_THAT(scan(), testing::IsEmpty());

        device.plugIn();
        testbed.plug(device);
        EXPECT_THAT(use(handle, GetParam().command), testing::Each(ORVEX_OK));
        testbed.unplug(kPort);
        EXPECT_THAT(scan(), testing::IsEmpty());
    }

    /// The call that meets the end receives nothing; those behind it cannot even send.
    static void expectFailure(const std::vector<std::uint32_t>& statuses, unsigned exchange) {
        const unsigned last = GetParam().exchanges;
        const unsigned opening = last - 3;
        if (exchange <= opening) {
            EXPECT_THAT(statuses, testing::ElementsAre(ORVEX_ERR_RECV));
        } else if (exchange == opening + 1) {
            EXPECT_THAT(statuses, testing::ElementsAre(ORVEX_OK, ORVEX_ERR_RECV, ORVEX_ERR_IO));
        } else if (exchange == opening + 2) {
            EXPECT_THAT(statuses, testing::ElementsAre(ORVEX_OK, ORVEX_OK, ORVEX_ERR_RECV));
        } else {
            EXPECT_THAT(statuses, testing::Each(ORVEX_OK));
        }
    }

    orvex::sim::DeviceSetup setup_;
};

TEST_P(Unplugging, AtEveryExchangeLeavesNothingBehind) {
    const std::size_t before = terminals();
    for (unsigned exchange = 1; exchange <= GetParam().exchanges; ++exchange) {
        pullOutAt(exchange);
    }
    EXPECT_EQ(terminals(), before);
}

INSTANTIATE_TEST_SUITE_P(, Unplugging,
                         testing::Values(Model{ORVEX_TYPE_CEDAR, "Cedar", "GetLampHours", 9},
                                         Model{ORVEX_TYPE_TAMAR, "Tamar", "GetLedHours", 11}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
