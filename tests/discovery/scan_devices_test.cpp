// ORVEX_ScanDevices: arguments, and what the caller's array holds afterwards.
#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using orvex_test::lowBitsText;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr std::uint32_t kUntouched = 0xAAAAAAAA;
constexpr std::uint64_t kCanary = 0xCACACACACACACACA;

class ScanDevices : public orvex_test::AttachedDevices {
  protected:
    /// Scans into the array's first @p slots slots; `found` gets the count.
    std::uint32_t scanInto(std::vector<std::uint64_t>& array, std::uint32_t slots) {
        found = kUntouched;
        return api().ScanDevices(array.data(), slots, &found);
    }

    static std::string registered(std::uint64_t handle, const std::string& port) {
        return "updateDeviceList: new LightDevice <" + lowBitsText(handle) +
               ", 8> registered at COM port \"" + port + "\"";
    }
    static std::string registeredAlready(std::uint64_t handle, const std::string& port) {
        return "updateDeviceList: LightDevice <" + lowBitsText(handle) +
               "> already registered at COM port \"" + port + "\"";
    }
    static std::string listedAlready(std::uint64_t handle) {
        return "ORVEX_ScanDevices: LightDevice <" + lowBitsText(handle) + "> already in h_list.";
    }
    static std::string notFound(std::uint64_t handle) {
        return "ORVEX_ScanDevices: LightDevice <" + lowBitsText(handle) +
               "> not found in gl_devs. Delete from h_list.";
    }
    static std::string vanished(std::uint64_t handle, const std::string& port) {
        return "updateDeviceList: LightDevice <" + lowBitsText(handle) + ", 8> @ " + port +
               " was not found anymore. Close and delete.";
    }

    /// The lines so far but those of the search for ports.
    Lines linesOfTheScan() {
        Lines lines;
        for (const std::string& line : log.take()) {
            if (line.rfind("LightDevice::getComMapping: ", 0) != 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    std::uint32_t found = kUntouched;
};

TEST_F(ScanDevices, ChecksItsArgumentsInOrder) {
    attach(ORVEX_TYPE_TAMAR);
    std::uint64_t slot = kCanary;
    EXPECT_EQ(api().ScanDevices(nullptr, 0, nullptr), 0xA0515002u);
    EXPECT_EQ(api().ScanDevices(nullptr, 0, &found), 0xA0515002u);
    EXPECT_EQ(api().ScanDevices(nullptr, 1, &found), 0xA0515002u);
    EXPECT_EQ(api().ScanDevices(&slot, 0, nullptr), 0xA0515001u);
    EXPECT_EQ(api().ScanDevices(&slot, 0, &found), 0xA0515001u);
    EXPECT_EQ(api().ScanDevices(&slot, 1, nullptr), 0xA0515001u);
    EXPECT_THAT(log.take(), ElementsAre("Error: ORVEX_ScanDevices: handle list is nullptr",
                                        "Error: ORVEX_ScanDevices: handle list is nullptr",
                                        "Error: ORVEX_ScanDevices: handle list is nullptr",
                                        "Error: ORVEX_ScanDevices: buf_len for handels is 0.",
                                        "Error: ORVEX_ScanDevices: buf_len for handels is 0.",
                                        "Error: ORVEX_ScanDevices: size_out is nullptr."));
    EXPECT_EQ(slot, kCanary);
    EXPECT_EQ(found, kUntouched);
}

TEST_F(ScanDevices, FindsNoneWhereNoneIsAttached) {
    std::vector<std::uint64_t> array(8);
    EXPECT_EQ(scanInto(array, 8), 0u);
    EXPECT_EQ(found, 0u);
    EXPECT_THAT(array, Each(0u));
    EXPECT_THAT(log.take(), ElementsAre("updateDeviceList: no Orvex devices found."));
}

TEST_F(ScanDevices, PutsTwoDevicesIntoTheFirstSlots) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array(9);
    array[8] = kCanary;
    EXPECT_EQ(scanInto(array, 8), 0u);
    EXPECT_EQ(found, 2u);
    const Lines lines = linesOfTheScan();
    const std::string first = portOf(array[0]);
    const std::string second = portOf(array[1]);
    EXPECT_THAT((std::vector<std::string>{first, second}),
                UnorderedElementsAre("/dev/ttyACM0", "/dev/ttyACM1"));
    EXPECT_THAT(lines, ElementsAre("LightDevice::LightDevice: new LightDevice <8> @ " + first,
                                   registered(array[0], first),
                                   "LightDevice::LightDevice: new LightDevice <8> @ " + second,
                                   registered(array[1], second)));
    EXPECT_THAT(array, ElementsAre(array[0], array[1], 0u, 0u, 0u, 0u, 0u, 0u, kCanary));
}

TEST_F(ScanDevices, NamesTheModelInTheLineOfItsRegistration) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = scan().at(0);
    EXPECT_THAT(linesOfTheScan(),
                ElementsAre("LightDevice::LightDevice: new LightDevice <2> @ /dev/ttyACM0",
                            "updateDeviceList: new LightDevice <" + lowBitsText(handle) +
                                ", 2> registered at COM port \"/dev/ttyACM0\""));
}

TEST_F(ScanDevices, KeepsTheSlotsOfDevicesThatStay) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array(8);
    EXPECT_EQ(scanInto(array, 8), 0u);
    const auto before = array;
    log.take();
    EXPECT_EQ(scanInto(array, 8), 0u);
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(array, before);
    const Lines lines = linesOfTheScan();
    EXPECT_THAT(lines, ElementsAre(registeredAlready(array[0], portOf(array[0])),
                                   registeredAlready(array[1], portOf(array[1])),
                                   listedAlready(array[0]), listedAlready(array[1])));
}

TEST_F(ScanDevices, ClearsTheSlotOfADeviceThatIsGone) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array(8);
    EXPECT_EQ(scanInto(array, 8), 0u);
    const std::uint64_t gone = array[0];
    const std::uint64_t kept = array[1];
    const std::string gonePort = portOf(gone);
    const std::string keptPort = portOf(kept);
    unplug(gonePort);
    log.take();
    EXPECT_EQ(scanInto(array, 8), 0u);
    EXPECT_EQ(found, 1u);
    EXPECT_THAT(array, ElementsAre(0u, kept, 0u, 0u, 0u, 0u, 0u, 0u));
    EXPECT_THAT(linesOfTheScan(),
                ElementsAre(vanished(gone, gonePort), registeredAlready(kept, keptPort),
                            notFound(gone), listedAlready(kept)));
}

TEST_F(ScanDevices, ClearsEverySlotOnceAllAreGone) {
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array(2);
    EXPECT_EQ(scanInto(array, 2), 0u);
    const std::uint64_t gone = array[0];
    unplug("/dev/ttyACM0");
    log.take();
    EXPECT_EQ(scanInto(array, 2), 0u);
    EXPECT_EQ(found, 0u);
    EXPECT_THAT(array, Each(0u));
    EXPECT_THAT(log.take(), ElementsAre("updateDeviceList: no Orvex devices found.",
                                        vanished(gone, "/dev/ttyACM0"), notFound(gone)));
}

TEST_F(ScanDevices, GivesANewDeviceTheFirstFreeSlot) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array(8);
    EXPECT_EQ(scanInto(array, 8), 0u);
    const std::uint64_t kept = array[1];
    unplug(portOf(array[0]));
    Identity identity;
    identity.kernelName = "ttyACM5";
    attach(ORVEX_TYPE_TAMAR, identity);
    EXPECT_EQ(scanInto(array, 8), 0u);
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(portOf(array[0]), "/dev/ttyACM5");
    EXPECT_THAT(array, ElementsAre(array[0], kept, 0u, 0u, 0u, 0u, 0u, 0u));
}

TEST_F(ScanDevices, FillsOnlyWhatIsFree) {
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array(4);
    EXPECT_EQ(scanInto(array, 4), 0u);
    const std::uint64_t first = array[0];
    array = {0, 0, first, 0};
    attach(ORVEX_TYPE_CEDAR);
    EXPECT_EQ(scanInto(array, 4), 0u);
    EXPECT_EQ(portOf(array[0]), "/dev/ttyACM1");
    EXPECT_THAT(array, ElementsAre(array[0], 0u, first, 0u));
}

TEST_F(ScanDevices, ReportsMoreDevicesThanSlots) {
    for (int k = 0; k < 3; ++k) {
        attach(ORVEX_TYPE_TAMAR);
    }
    std::vector<std::uint64_t> array = {kCanary, 0, kCanary};
    EXPECT_EQ(scanInto(array, 2), 0xA0515006u);
    EXPECT_EQ(found, 3u);
    EXPECT_THAT(array, ElementsAre(kCanary, 0u, kCanary));
    EXPECT_EQ(linesOfTheScan().size(), 6u);
    array.assign(3, 0);
    EXPECT_EQ(scanInto(array, 3), 0u);
    EXPECT_EQ(found, 3u);
    EXPECT_THAT(linesOfTheScan(), ElementsAre(registeredAlready(array[0], portOf(array[0])),
                                              registeredAlready(array[1], portOf(array[1])),
                                              registeredAlready(array[2], portOf(array[2]))));
    for (const std::uint64_t handle : array) {
        EXPECT_EQ(openCount(handle), 0u);
    }
}

TEST_F(ScanDevices, TakesAnArrayThatJustFits) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_CEDAR);
    std::vector<std::uint64_t> array = {0, 0, kCanary};
    EXPECT_EQ(scanInto(array, 2), 0u);
    EXPECT_NE(array[0], 0u);
    EXPECT_NE(array[1], 0u);
    EXPECT_EQ(array[2], kCanary);
}

TEST_F(ScanDevices, ClearsWhatIsNoHandle) {
    std::vector<std::uint64_t> array = {1, 0xDEADBEEF00000ABC, 0, 0xFFFFFFFFFFFFFFFF, kCanary};
    EXPECT_EQ(scanInto(array, 4), 0u);
    EXPECT_EQ(found, 0u);
    EXPECT_THAT(array, ElementsAre(0u, 0u, 0u, 0u, kCanary));
    EXPECT_THAT(
        log.take(),
        ElementsAre(
            "updateDeviceList: no Orvex devices found.",
            "ORVEX_ScanDevices: LightDevice <1> not found in gl_devs. Delete from h_list.",
            "ORVEX_ScanDevices: LightDevice <ABC> not found in gl_devs. Delete from h_list.",
            "ORVEX_ScanDevices: LightDevice <FFFFFFFF> not found in gl_devs. Delete from "
            "h_list."));
}

TEST_F(ScanDevices, TellsWhatIsNoHandleAsInformation) {
    log.restart(0x2);
    std::vector<std::uint64_t> array = {1, kCanary};
    EXPECT_EQ(scanInto(array, 1), 0u);
    EXPECT_THAT(log.take(), ElementsAre("updateDeviceList: no Orvex devices found.", notFound(1)));
}

TEST_F(ScanDevices, ReusesASlotThatItHasCleared) {
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array = {1, 2};
    EXPECT_EQ(scanInto(array, 2), 0u);
    EXPECT_EQ(portOf(array[0]), "/dev/ttyACM0");
    EXPECT_EQ(array[1], 0u);
}

TEST_F(ScanDevices, LeavesADoubledHandleWhereItIs) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t first = handleAt("/dev/ttyACM0");
    const std::uint64_t second = handleAt("/dev/ttyACM1");
    std::vector<std::uint64_t> array = {first, first, 0, 0};
    log.restart(0x2);
    EXPECT_EQ(scanInto(array, 4), 0u);
    EXPECT_THAT(array, ElementsAre(first, first, second, 0u));
    array = {first, first};
    EXPECT_EQ(scanInto(array, 2), 0u);
    EXPECT_EQ(found, 2u);
    EXPECT_THAT(array, ElementsAre(first, first));
}

TEST_F(ScanDevices, FindsSixtyFourDevices) {
    for (int k = 0; k < 64; ++k) {
        attachDead({});
    }
    std::vector<std::uint64_t> array(65);
    array[64] = kCanary;
    EXPECT_EQ(scanInto(array, 63), 0xA0515006u);
    EXPECT_EQ(found, 64u);
    EXPECT_EQ(scanInto(array, 64), 0u);
    EXPECT_EQ(found, 64u);
    EXPECT_EQ(array[64], kCanary);
    array.pop_back();
    std::vector<std::string> ports;
    for (const std::uint64_t handle : array) {
        ports.push_back(portOf(handle));
    }
    for (int k = 0; k < 64; ++k) {
        EXPECT_THAT(ports, ::testing::Contains("/dev/ttyACM" + std::to_string(k)));
    }
    const auto before = array;
    EXPECT_EQ(scanInto(array, 64), 0u);
    EXPECT_EQ(array, before);
}

TEST_F(ScanDevices, LooksAtTheWholeLengthItIsGiven) {
    attach(ORVEX_TYPE_TAMAR);
    std::vector<std::uint64_t> array(300, 7);
    EXPECT_EQ(scanInto(array, 300), 0u);
    EXPECT_EQ(found, 1u);
    EXPECT_EQ(portOf(array[0]), "/dev/ttyACM0");
    array.erase(array.begin());
    EXPECT_THAT(array, Each(0u));
}

}  // namespace
