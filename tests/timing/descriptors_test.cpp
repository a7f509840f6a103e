// Ports on descriptors that select() could not take.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "sim/pseudo_terminal.h"
#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;

constexpr int kSelectable = 1024;

/// Takes up the first 1024 descriptors, and some more, while it exists.
class TakenDescriptors {
  public:
    TakenDescriptors() {
        rlimit limit{};
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        limit.rlim_cur = limit.rlim_max;
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        do {
            taken_.emplace_back(::dup(STDERR_FILENO));
        } while (taken_.back().get() >= 0 && taken_.back().get() <= kSelectable);
    }
    [[nodiscard]] bool areEnough() const { return taken_.back().get() > kSelectable; }

  private:
    std::vector<orvex::sim::Descriptor> taken_;
};

/// The highest descriptor that this process has on a device's terminal.
int highestDescriptorOn(const orvex::sim::SimulatedDevice& device) {
    int highest = -1;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (std::filesystem::read_symlink(entry.path(), ignored) == device.slavePath()) {
            highest = std::max(highest, std::stoi(entry.path().filename()));
        }
    }
    return highest;
}

class HighDescriptors : public orvex_test::AttachedDevices {};

TEST_F(HighDescriptors, AreAsGoodAsOthers) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const TakenDescriptors taken;
    ASSERT_TRUE(taken.areEnough());
    std::uint64_t handle = 0;
    ASSERT_EQ(api().OpenDevice(&handle, ORVEX_TYPE_TAMAR, nullptr, 9600), ORVEX_OK);
    EXPECT_GT(highestDescriptorOn(device), kSelectable);
    std::array<char, 64> reply{};
    EXPECT_EQ(api().ExecuteCommand(handle, "GetUnitSerialNumber", reply.data(), reply.size()),
              ORVEX_OK);
    EXPECT_STREQ(reply.data(), "SN-0042\r");
    OrvexStruct record{};
    record.iSize = sizeof record;
    ASSERT_EQ(api().GetOVStruct(handle, &record), ORVEX_OK);
    record.aChannels[0].iState = 1;
    EXPECT_EQ(api().SetOVStruct(handle, &record), ORVEX_OK);
    EXPECT_TRUE(device.state().channels[0].on);
    api().CloseDevice(handle);
    EXPECT_EQ(device.requests().back(), "dc\r");
    EXPECT_LE(highestDescriptorOn(device), kSelectable);
}

}  // namespace
