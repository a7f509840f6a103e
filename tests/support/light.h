/// @file
/// A simulated device together with the library's object for its port.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "device/light_device.h"
#include "sim/simulated_device.h"

namespace orvex_test {

constexpr unsigned kBaud = 9600;

/// What an LED model answers while it is read out: four LEDs, all off.
struct ReadOut {
    std::string wavelengths = "365,405,470,525\r";
    std::string states = "0,0,0,0\r";
    std::string minima = "50,60,70,80\r";
    std::string intensities = "100,200,300,400\r";
    std::string temperatures = "30,31,32,33\r";
    std::string names = "UV,VIOLET,BLUE,GREEN\r";
    std::string serial = "SN-0042\r";
};

/// The same for a model with eight positions and six LEDs, of which those in slots 3 to 5
/// (positions 4, 6 and 7) are in group 1.
[[nodiscard]] ReadOut groupedReadOut();

/// A device that is not open. It answers everything with "ok", an LED model its read-out with a
/// ReadOut.
class Light {
  public:
    explicit Light(OrvexType model, const ReadOut& readOut = {});

    orvex::sim::SimulatedDevice port;
    LightDevice device;

    /// Opens the device.
    void open() { device.openConnection(kBaud); }
    /// Answers a command with the device's error reply from now on.
    void refuse(const std::string& command);
    /// The requests since the last call, with their carriage returns.
    [[nodiscard]] std::vector<std::string> takeRequests();
    /// The reply to a request.
    std::string exchange(const std::string& request);
    /// The reply to a command.
    std::string command(const std::string& name, const std::string& value = "");
    /// The device's record.
    [[nodiscard]] OrvexStruct record() const;
};

/// An open device; Rowan and Spruce half-open, since they cannot be read out. What was sent so far
/// is forgotten.
class OpenLight : public Light {
  public:
    explicit OpenLight(OrvexType model, const ReadOut& readOut = {});
};

/// A handle in log lines: "0x7ffd5e8c".
[[nodiscard]] std::string handleText(const void* handle);

/// How many descriptors this process has open on the terminal behind a device's port.
[[nodiscard]] std::size_t openDescriptors(const orvex::sim::SimulatedDevice& port);

}  // namespace orvex_test
