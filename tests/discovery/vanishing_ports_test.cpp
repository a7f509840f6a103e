// getComMapping's dealings with libudev, and ports that vanish while it looks at them.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "discovery/port_discovery.h"
#include "tests/support/fake_udev.h"
#include "tests/support/log_capture.h"

namespace {

using orvex_test::cedarPort;
using orvex_test::FakePort;
using orvex_test::FakeUdev;
using orvex_test::Lines;
using orvex_test::LogCapture;
using orvex_test::tamarPort;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

class VanishingPorts : public ::testing::Test {
  protected:
    /// Whatever happened, everything was released once.
    ~VanishingPorts() override {
        EXPECT_EQ(udev.unreleased(), 0u);
        EXPECT_EQ(udev.misused(), 0u);
    }

    /// One port that is missing something, between two that are well.
    void listBetweenOthers(const FakePort& port) {
        udev.ports = {tamarPort(0), port, cedarPort(2)};
    }

    static void expectOnlyTheOthers() {
        EXPECT_THAT(getComMapping(),
                    UnorderedElementsAre(Pair("/dev/ttyACM0", 8u), Pair("/dev/ttyACM2", 2u)));
    }

    LogCapture log;
    FakeUdev udev;
};

TEST_F(VanishingPorts, AreAskedForInOrder) {
    udev.ports = {tamarPort(0)};
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 8u)));
    EXPECT_THAT(
        udev.calls,
        ElementsAre("udev_new", "udev_enumerate_new", "udev_enumerate_add_match_subsystem",
                    "udev_enumerate_scan_devices", "udev_enumerate_get_list_entry",
                    "udev_list_entry_get_name", "udev_device_new_from_syspath",
                    "udev_device_get_devnode", "udev_device_get_parent_with_subsystem_devtype",
                    "udev_device_get_sysattr_value idVendor",
                    "udev_device_get_sysattr_value idProduct",
                    "udev_device_get_sysattr_value product", "udev_device_unref",
                    "udev_list_entry_get_next", "udev_enumerate_unref", "udev_unref"));
}

TEST_F(VanishingPorts, AreReleasedBeforeTheNextIsLookedAt) {
    udev.ports = {tamarPort(0), cedarPort(1)};
    EXPECT_EQ(getComMapping().size(), 2u);
    const std::vector<std::string> each = {"udev_list_entry_get_name",
                                           "udev_device_new_from_syspath",
                                           "udev_device_get_devnode",
                                           "udev_device_get_parent_with_subsystem_devtype",
                                           "udev_device_get_sysattr_value idVendor",
                                           "udev_device_get_sysattr_value idProduct",
                                           "udev_device_get_sysattr_value product",
                                           "udev_device_unref",
                                           "udev_list_entry_get_next"};
    ASSERT_EQ(udev.calls.size(), 5 + 2 * each.size() + 2);
    const auto first = udev.calls.begin() + 5;
    EXPECT_EQ(std::vector<std::string>(first, first + 9), each);
    EXPECT_EQ(std::vector<std::string>(first + 9, first + 18), each);
    EXPECT_EQ(udev.handedOut(), 4u);
}

TEST_F(VanishingPorts, AreNotFoundWithoutAContext) {
    udev.ports = {tamarPort(0)};
    udev.hasContext = false;
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(udev.calls, ElementsAre("udev_new"));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(VanishingPorts, AreNotFoundWithoutAnEnumeration) {
    udev.ports = {tamarPort(0)};
    udev.hasEnumeration = false;
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(udev.calls, ElementsAre("udev_new", "udev_enumerate_new", "udev_unref"));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(VanishingPorts, AreNotFoundWhenTheScanFails) {
    udev.ports = {tamarPort(0)};
    udev.scanResult = -5;
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(VanishingPorts, AreNoneOnASystemWithoutAny) {
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(udev.calls,
                ElementsAre("udev_new", "udev_enumerate_new", "udev_enumerate_add_match_subsystem",
                            "udev_enumerate_scan_devices", "udev_enumerate_get_list_entry",
                            "udev_enumerate_unref", "udev_unref"));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(VanishingPorts, AreSkippedOnceTheDeviceIsGone) {
    FakePort port = tamarPort(1);
    port.isGone = true;
    listBetweenOthers(port);
    expectOnlyTheOthers();
    EXPECT_EQ(log.take().size(), 6u);
}

TEST_F(VanishingPorts, AreSkippedOnceTheNodeIsGone) {
    FakePort port = tamarPort(1);
    port.node.reset();
    listBetweenOthers(port);
    expectOnlyTheOthers();
    EXPECT_EQ(log.take().size(), 6u);
}

TEST_F(VanishingPorts, AreSkippedWithoutAUsbDevice) {
    FakePort port = tamarPort(1);
    port.hasUsbParent = false;
    listBetweenOthers(port);
    expectOnlyTheOthers();
    EXPECT_EQ(log.take().size(), 6u);
}

TEST_F(VanishingPorts, AreSkippedWithoutVendorOrProduct) {
    for (const char* attribute : {"idVendor", "idProduct"}) {
        FakePort port = tamarPort(1);
        port.attributes.erase(attribute);
        listBetweenOthers(port);
        expectOnlyTheOthers();
        EXPECT_EQ(log.take().size(), 6u) << attribute;
    }
}

TEST_F(VanishingPorts, AreSkippedWithIdentifiersThatAreNoNumbers) {
    for (const char* text : {"", " ", "xyz", "g4d8", "-4d8"}) {
        FakePort port = tamarPort(1);
        port.attributes["idVendor"] = text;
        listBetweenOthers(port);
        expectOnlyTheOthers();
        port.attributes["idVendor"] = "04d8";
        port.attributes["idProduct"] = text;
        listBetweenOthers(port);
        expectOnlyTheOthers();
    }
    log.take();
}

TEST_F(VanishingPorts, AreFoundWithoutAProductText) {
    FakePort port = tamarPort(0);
    port.attributes.erase("product");
    udev.ports = {port};
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 8u)));
    EXPECT_THAT(
        log.take(),
        ElementsAre("LightDevice::getComMapping: found port name in product attribute: , udev: "
                    "/sys/devices/usb1/1-0/tty/ttyACM0",
                    "LightDevice::getComMapping: port: /dev/ttyACM0, udev: "
                    "/sys/devices/usb1/1-0/tty/ttyACM0",
                    "Error: LightDevice::getComMapping: product attribute: \"\" does not match any "
                    "known device type!"));
}

TEST_F(VanishingPorts, AreAskedForNoAttributesUnderAnotherName) {
    FakePort port = tamarPort(0);
    port.sysPath = "/sys/devices/usb1/1-0/tty/ttyUSB0";
    udev.ports = {port};
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(udev.calls,
                ::testing::Not(::testing::Contains("udev_device_get_sysattr_value idVendor")));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(VanishingPorts, AreKnownByTheirPathNotTheirNode) {
    FakePort port = cedarPort(0);
    port.sysPath = "/sys/devices/ttyACM/1-0/tty/other";
    port.node = "/dev/tty_of_another_name";
    udev.ports = {port};
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/tty_of_another_name", 2u)));
}

TEST_F(VanishingPorts, OfOneNodeCountOnceAndTheLastDecides) {
    FakePort second = cedarPort(1);
    second.node = "/dev/ttyACM0";
    udev.ports = {tamarPort(0), second};
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 2u)));
}

TEST_F(VanishingPorts, HaveIdentifiersInHexadecimalOfEitherCase) {
    FakePort port = tamarPort(0);
    port.attributes["idVendor"] = "04D8";
    port.attributes["idProduct"] = "EA08";
    udev.ports = {port};
    EXPECT_THAT(getComMapping(), UnorderedElementsAre(Pair("/dev/ttyACM0", 8u)));
}

TEST_F(VanishingPorts, HaveAProductOfNoMoreThanFourDigits) {
    FakePort port = tamarPort(0);
    port.attributes["idProduct"] = "1ea08";
    udev.ports = {port};
    EXPECT_THAT(getComMapping(), IsEmpty());
    EXPECT_THAT(log.take(), IsEmpty());
}

}  // namespace
