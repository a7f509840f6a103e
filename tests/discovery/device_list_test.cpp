// updateDeviceList and the registry that it keeps.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "api/device_registry.h"
#include "discovery/device_list.h"
#include "discovery/port_discovery.h"
#include "sim/testbed.h"
#include "tests/support/log_capture.h"

namespace {

using orvex_test::LogCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DeviceList : public ::testing::Test {
  protected:
    ~DeviceList() override {
        while (!ports.empty()) {
            unplugLast();
        }
        updateDeviceList();
    }

    void plug(int count) {
        for (int k = 0; k < count; ++k) {
            ports.push_back(testbed.plug(orvex::sim::UsbIdentity{}));
        }
    }

    void unplugLast() {
        testbed.unplug(ports.back());
        ports.pop_back();
    }

    orvex::sim::Testbed testbed;
    LogCapture log;
    std::vector<std::string> ports;
};

TEST_F(DeviceList, IsEmptyAtFirst) {
    EXPECT_TRUE(gl_devs.empty());
    EXPECT_THAT(updateDeviceList(), IsEmpty());
    EXPECT_TRUE(gl_devs.empty());
    EXPECT_THAT(log.take(), ElementsAre("updateDeviceList: no Orvex devices found."));
}

TEST_F(DeviceList, FollowsTheMappingsOrder) {
    plug(6);
    const auto mapping = getComMapping();
    const std::vector<void*> handles = updateDeviceList();
    ASSERT_EQ(handles.size(), 6u);
    auto expected = mapping.begin();
    for (void* handle : handles) {
        EXPECT_EQ(gl_devs.at(handle)->getComPort(), expected->first);
        ++expected;
    }
}

TEST_F(DeviceList, HoldsEachDeviceUnderItsOwnAddress) {
    plug(3);
    EXPECT_EQ(updateDeviceList().size(), 3u);
    EXPECT_EQ(gl_devs.size(), 3u);
    for (const auto& [handle, device] : gl_devs) {
        EXPECT_EQ(handle, device.get());
        EXPECT_EQ(handle, device->hDev());
        EXPECT_EQ(device->getType(), 8u);
        EXPECT_EQ(device->getOpenCount(), 0u);
        EXPECT_FALSE(device->isConnected());
    }
}

TEST_F(DeviceList, KeepsDevicesThatStay) {
    plug(2);
    const std::vector<void*> first = updateDeviceList();
    EXPECT_EQ(updateDeviceList(), first);
    plug(1);
    const std::vector<void*> more = updateDeviceList();
    EXPECT_EQ(more.size(), 3u);
    EXPECT_THAT(more, ::testing::IsSupersetOf(first));
}

TEST_F(DeviceList, DropsDevicesThatAreGone) {
    plug(3);
    updateDeviceList();
    unplugLast();
    EXPECT_EQ(updateDeviceList().size(), 2u);
    EXPECT_EQ(gl_devs.size(), 2u);
    unplugLast();
    unplugLast();
    EXPECT_THAT(updateDeviceList(), IsEmpty());
    EXPECT_TRUE(gl_devs.empty());
}

}  // namespace
