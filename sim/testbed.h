/// @file
/// Simulated devices as udev sees them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "include/qtr_orvex.h"

namespace orvex::sim {

class SimulatedDevice;

/// What a device on the USB tells of itself.
struct UsbIdentity {
    std::string vendor = "04d8";   ///< Hexadecimal, as the attribute shows it.
    std::string product = "ea08";  ///< Hexadecimal.
    /// The "product" attribute; none: the attribute is missing.
    std::optional<std::string> productText = "Orvex Tamar";
    /// The port's name, "ttyUSB0"; empty: the first "ttyACM" number that is free.
    std::string kernelName;
};

/// How a model shows itself on the USB: "Orvex Cedar" and its product identifier. Models that the
/// library does not look for get an identifier that it does not know.
[[nodiscard]] UsbIdentity usbIdentityOf(OrvexType model);

/// A machine's devices, replaced by simulated ones while this object lives.
///
/// For this process and the processes it starts, /sys holds the testbed's devices alone and libudev
/// works on them unchanged, monitors too; below /dev the testbed's ports are there beside the real
/// ones. Programs that use it link orvex_umockdev (orvex_testbed brings it along); programs that
/// they start and that are not linked so need preloadLibrary() in LD_PRELOAD.
///
/// A port may be open when it is unplugged, but not when the testbed ends: a later ioctl() on it
/// would wait or abort the process. A udev monitor must be read: a full one aborts the process that
/// plugs. One testbed at a time, and one thread at a time.
class Testbed {
  public:
    /// @throws std::runtime_error when the process does not run under the preload library
    Testbed();
    Testbed(const Testbed&) = delete;
    Testbed& operator=(const Testbed&) = delete;
    ~Testbed();

    /// Attaches a simulated device, which must outlive its being attached.
    /// @return the port's path, "/dev/ttyACM0"
    /// @throws std::runtime_error when the name is taken or the testbed refuses it
    std::string plug(const SimulatedDevice& device);
    std::string plug(const SimulatedDevice& device, const UsbIdentity& identity);
    /// Attaches a port that leads to @p terminal, or to nothing when that is empty.
    std::string plug(const UsbIdentity& identity, const std::string& terminal = {});
    /// Takes a port away, with its USB device. @param port as plug() returned it
    void unplug(const std::string& port);

    /// The directory that stands for "/".
    [[nodiscard]] std::string root() const;
    /// What LD_PRELOAD has to name for programs that are not linked with orvex_umockdev.
    [[nodiscard]] static std::string preloadLibrary();

  private:
    struct Implementation;
    const std::unique_ptr<Implementation> implementation_;
};

}  // namespace orvex::sim
