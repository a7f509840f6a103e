// Scans with several lights, and with what is no light.
#include "tests/vm/usb_lights.h"

namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

class Scan : public orvex_test::UsbLights {
  protected:
    auto& plug(const orvex_test::UsbIdentity& identity, const std::string& serial = "") {
        auto& light = make(identity, ORVEX_TYPE_TAMAR, serial);
        light.plug();
        return light;
    }
};

TEST_F(Scan, FindsTwoLightsOfDifferentModels) {
    plugTamar();
    plugCedar();
    std::vector<std::pair<std::string, unsigned>> found;
    for (const std::uint64_t handle : scan()) {
        std::uint32_t type = 0;
        std::array<char, 64> port{};
        EXPECT_EQ(ORVEX_GetDeviceInfo(handle, &type, port.data(), 64, nullptr), ORVEX_OK);
        found.emplace_back(port.data(), type);
    }
    EXPECT_THAT(found, UnorderedElementsAre(std::pair("/dev/ttyACM0", ORVEX_TYPE_TAMAR),
                                            std::pair("/dev/ttyACM1", ORVEX_TYPE_CEDAR)));
}

TEST_F(Scan, KeepsFourLightsApart) {
    std::vector<orvex_test::UsbLight*> lights;
    for (const char* serial : {"A-1", "B-2", "C-3", "D-4"}) {
        lights.push_back(&plug(orvex_test::kTamar, serial));
    }
    EXPECT_THAT(scan(), SizeIs(4));
    int number = 1;
    for (auto* light : lights) {
        EXPECT_EQ(record(open(*light)).iSerialNumber, number++);
    }
    for (const std::uint64_t handle : scan()) {
        EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "1.4.2\r");
    }
}

TEST_F(Scan, LetsTheOthersBeWhenOneOfThreeIsUnplugged) {
    std::vector<orvex_test::UsbLight*> lights = {&plugTamar(), &plugTamar(), &plugCedar()};
    std::array<std::uint64_t, 4> slots{};
    std::uint32_t found = 0;
    ASSERT_EQ(ORVEX_ScanDevices(slots.data(), 4, &found), ORVEX_OK);
    ASSERT_EQ(found, 3u);
    std::array<std::uint64_t, 3> handles{};
    for (std::size_t k = 0; k < 3; ++k) {
        handles[k] = open(*lights[k]);
    }
    lights[1]->unplug();
    const auto before = slots;
    ASSERT_EQ(ORVEX_ScanDevices(slots.data(), 4, &found), ORVEX_OK);
    EXPECT_EQ(found, 2u);
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_EQ(slots[k], before[k] == handles[1] ? 0 : before[k]);
    }
    EXPECT_EQ(reply(handles[0], "GetSoftwareVersion"), "1.4.2\r");
    EXPECT_EQ(reply(handles[1], "GetSoftwareVersion"), "a0515007");
    EXPECT_EQ(reply(handles[2], "GetSoftwareVersion"), "1.4.2\r");
}

TEST_F(Scan, FindsALightByItsIdentityAloneWhateverItsTextSays) {
    plug({"0x04d8", "0xea08", "", ""});
    EXPECT_THAT(scan(), SizeIs(1));
    EXPECT_THAT(log.lines(), Contains("Error: LightDevice::getComMapping: product attribute: \"\" "
                                      "does not match any known device type!"));
}

TEST_F(Scan, PassesOverOtherSerialPorts) {
    plug({"0x04d8", "0x000a", "Orvex Tamar", ""});
    plug({"0x1d6b", "0xea08", "Orvex Tamar", ""});
    EXPECT_THAT(scan(), IsEmpty());
}

}  // namespace
