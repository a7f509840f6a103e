// getComMapping on attached devices.
#include <gmock/gmock.h>
#include <libudev.h>

#include <memory>
#include <string>

#include "discovery/port_discovery.h"
#include "sim/simulated_device.h"
#include "sim/testbed.h"
#include "tests/support/log_capture.h"

namespace {

using orvex::sim::Testbed;
using orvex::sim::UsbIdentity;
using orvex_test::Lines;
using orvex_test::LogCapture;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

class PortDiscovery : public ::testing::Test {
  protected:
    static UsbIdentity identity(const char* product, const char* text) {
        UsbIdentity identity;
        identity.product = product;
        identity.productText = text;
        return identity;
    }

    static UsbIdentity named(const char* kernelName) {
        UsbIdentity identity;
        identity.kernelName = kernelName;
        return identity;
    }

    /// The path of a port below /sys, as udev tells it to anybody.
    static std::string sysPath(const std::string& name) {
        const std::unique_ptr<udev, decltype(&udev_unref)> context(udev_new(), udev_unref);
        const std::unique_ptr<udev_device, decltype(&udev_device_unref)> device(
            udev_device_new_from_subsystem_sysname(context.get(), "tty", name.c_str()),
            udev_device_unref);
        return device != nullptr ? udev_device_get_syspath(device.get()) : "";
    }

    /// The lines for a port; @p verdict is the last.
    static Lines linesFor(const std::string& name, const std::string& text,
                          const std::string& verdict) {
        return {"LightDevice::getComMapping: found port name in product attribute: " + text +
                    ", udev: " + sysPath(name),
                "LightDevice::getComMapping: port: /dev/" + name + ", udev: " + sysPath(name),
                verdict};
    }

    Testbed testbed;
    LogCapture log;
};

TEST_F(PortDiscovery, FindsNothingAndLogsNothingWithoutDevices) {
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(PortDiscovery, FindsACedar) {
    testbed.plug(identity("ea02", "Orvex Cedar"));
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 2u)));
    EXPECT_THAT(log.take(),
                ElementsAreArray(linesFor("ttyACM0", "Orvex Cedar",
                                          "LightDevice::getComMapping: matches type: Cedar")));
}

TEST_F(PortDiscovery, FindsATamar) {
    testbed.plug(identity("ea08", "Orvex Tamar"));
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 8u)));
    EXPECT_THAT(log.take(),
                ElementsAreArray(linesFor("ttyACM0", "Orvex Tamar",
                                          "LightDevice::getComMapping: matches type: Tamar")));
}

TEST_F(PortDiscovery, FindsTwoDevices) {
    testbed.plug(identity("ea02", "Orvex Cedar"));
    testbed.plug(identity("ea08", "Orvex Tamar"));
    EXPECT_THAT(getComMapping(),
                UnorderedElementsAre(Pair("/dev/ttyACM0", 2u), Pair("/dev/ttyACM1", 8u)));
    Lines expected =
        linesFor("ttyACM0", "Orvex Cedar", "LightDevice::getComMapping: matches type: Cedar");
    for (const std::string& line :
         linesFor("ttyACM1", "Orvex Tamar", "LightDevice::getComMapping: matches type: Tamar")) {
        expected.push_back(line);
    }
    EXPECT_THAT(log.take(), ElementsAreArray(expected));
}

TEST_F(PortDiscovery, LogsEachLineWithItsOwnBit) {
    testbed.plug(identity("ea02", "Orvex Cedar"));
    testbed.plug(identity("ea08", "Something else"));
    ORVEX_SetLogBits(0x20);
    EXPECT_EQ(getComMapping().size(), 2u);
    EXPECT_THAT(log.take(), ElementsAre("LightDevice::getComMapping: matches type: Cedar"));
    ORVEX_SetLogBits(0x1);
    EXPECT_EQ(getComMapping().size(), 2u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: LightDevice::getComMapping: product attribute: \"Something "
                            "else\" does not match any known device type!"));
    ORVEX_SetLogBits(0x2);
    EXPECT_EQ(getComMapping().size(), 2u);
    EXPECT_EQ(log.take().size(), 4u);
}

TEST_F(PortDiscovery, GoesByTheProductNumberWhenTheTextNamesAnotherModel) {
    testbed.plug(identity("ea08", "Orvex Cedar"));
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 8u)));
    EXPECT_THAT(log.take(), ElementsAreArray(linesFor(
                                "ttyACM0", "Orvex Cedar",
                                "Error: LightDevice::getComMapping: product attribute: \"Orvex "
                                "Cedar\" does not match any known device type!")));
}

TEST_F(PortDiscovery, FindsTheModelsNameAnywhereInTheText) {
    testbed.plug(identity("ea08", "The new Tamarisk"));
    EXPECT_EQ(getComMapping().size(), 1u);
    EXPECT_EQ(log.take().back(), "LightDevice::getComMapping: matches type: Tamar");
}

TEST_F(PortDiscovery, ComparesTheModelsNameWithItsCase) {
    testbed.plug(identity("ea08", "Orvex TAMAR"));
    EXPECT_EQ(getComMapping().size(), 1u);
    EXPECT_EQ(
        log.take().back(),
        "Error: LightDevice::getComMapping: product attribute: \"Orvex TAMAR\" does not match "
        "any known device type!");
}

TEST_F(PortDiscovery, FindsADeviceWithoutAProductText) {
    UsbIdentity silent;
    silent.productText.reset();
    testbed.plug(silent);
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 8u)));
    EXPECT_THAT(log.take(), ElementsAreArray(linesFor(
                                "ttyACM0", "",
                                "Error: LightDevice::getComMapping: product attribute: \"\" does "
                                "not match any known device type!")));
}

TEST_F(PortDiscovery, SkipsAnUnlistedProductWhateverItsText) {
    testbed.plug(identity("ea09", "Orvex Tamar"));
    testbed.plug(identity("0000", "Orvex Cedar"));
    testbed.plug(identity("ffff", "Orvex Willow"));
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(PortDiscovery, SkipsAnotherVendor) {
    UsbIdentity foreign;
    foreign.vendor = "04d9";
    testbed.plug(foreign);
    foreign.vendor = "0403";
    testbed.plug(foreign);
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(PortDiscovery, SkipsAPortOfAnotherKind) {
    testbed.plug(named("ttyUSB0"));
    testbed.plug(named("ttyS0"));
    testbed.plug(named("ttyacm0"));
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(PortDiscovery, PicksItsOwnOfManyPorts) {
    testbed.plug(named("ttyUSB0"));
    testbed.plug(identity("ea09", "Orvex Tamar"));
    testbed.plug(identity("ea02", "Orvex Cedar"));
    testbed.plug(named("ttyS4"));
    testbed.plug(named("ttyACM77"));
    EXPECT_THAT(getComMapping(),
                UnorderedElementsAre(Pair("/dev/ttyACM1", 2u), Pair("/dev/ttyACM77", 8u)));
}

TEST_F(PortDiscovery, HoldsNothingFromOneCallToTheNext) {
    const std::string port = testbed.plug(identity("ea02", "Orvex Cedar"));
    EXPECT_EQ(getComMapping().size(), 1u);
    testbed.unplug(port);
    EXPECT_THAT(getComMapping(), IsEmpty());
    testbed.plug(identity("ea08", "Orvex Tamar"));
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 8u)));
}

TEST_F(PortDiscovery, FindsSixtyFourDevices) {
    for (int k = 0; k < 64; ++k) {
        testbed.plug(UsbIdentity{});
    }
    const auto ports = getComMapping();
    EXPECT_EQ(ports.size(), 64u);
    EXPECT_EQ(ports.count("/dev/ttyACM0"), 1u);
    EXPECT_EQ(ports.count("/dev/ttyACM63"), 1u);
}

}  // namespace
