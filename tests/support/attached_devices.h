/// @file
/// Tests on simulated devices that the library finds by itself.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "sim/simulated_device.h"
#include "sim/testbed.h"
#include "tests/support/api_log.h"
#include "tests/support/c_api.h"

namespace orvex_test {

/// A machine without devices but those that the test attaches. At the end everything is unplugged
/// and the library has noticed.
class AttachedDevices : public ::testing::Test {
  protected:
    using Device = orvex::sim::SimulatedDevice;
    using Setup = orvex::sim::DeviceSetup;
    using Identity = orvex::sim::UsbIdentity;
    using Lines = std::vector<std::string>;
    using Requests = std::vector<std::string>;

    AttachedDevices();
    ~AttachedDevices() override;

    /// Attaches a device at the first free port, "/dev/ttyACM0" and so on.
    Device& attach(OrvexType model);
    Device& attach(const Setup& setup);
    Device& attach(OrvexType model, const Identity& identity);
    /// Attaches a port that cannot be opened.
    std::string attachDead(const Identity& identity);
    /// Takes a port away.
    void unplug(const std::string& port);

    /// The handles of a scan into @p slots empty slots, without the slots left empty.
    std::vector<std::uint64_t> scan(std::size_t slots = 8);
    /// The handle of the device at a port, after a scan; 0 when there is none.
    std::uint64_t handleAt(const std::string& port);
    /// Scans and opens the device at a port; its requests and the log's lines so far are forgotten.
    std::uint64_t open(const std::string& port = "/dev/ttyACM0");
    [[nodiscard]] std::uint32_t openCount(std::uint64_t handle) const;
    [[nodiscard]] std::string portOf(std::uint64_t handle) const;

    orvex::sim::Testbed testbed;
    ApiLog log;

  private:
    std::vector<std::unique_ptr<Device>> devices_;
    std::vector<std::string> ports_;
};

}  // namespace orvex_test
