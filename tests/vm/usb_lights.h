/// @file
/// Tests on simulated lights behind the kernel's own USB serial driver.
#pragma once

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"
#include "tests/support/log_capture.h"
#include "tests/support/waiting.h"
#include "tests/vm/device_side.h"
#include "tests/vm/gadget.h"

namespace orvex_test {

inline const UsbIdentity kTamar = {"0x04d8", "0xea08", "Orvex Tamar", "TA-7"};
/// Without a serial number.
inline const UsbIdentity kCedar = {"0x04d8", "0xea02", "Orvex Cedar", ""};

/// What calls that wait for nothing may take on a busy machine; one that hangs takes longer.
constexpr auto kAtOnce = std::chrono::seconds(5);

/// A simulated light on a USB device of its own.
class UsbLight {
  public:
    UsbLight(unsigned bus, const UsbIdentity& identity, const orvex::sim::DeviceSetup& setup)
        : gadget_(bus, identity), device_(gadget_.deviceSide(), setup) {}
    ~UsbLight() { gadget_.pull(); }

    void plug() { gadget_.plug(); }
    void unplug() { gadget_.unplug(); }
    void pull() { gadget_.pull(); }
    [[nodiscard]] bool awaitGone() const { return gadget_.awaitGone(); }
    [[nodiscard]] const std::string& port() const noexcept { return gadget_.port(); }

    void addFault(const orvex::sim::Trigger& trigger, const orvex::sim::Fault& fault) {
        device_.conversation().faults().add(trigger, fault);
    }
    /// All requests so far, with their carriage returns.
    [[nodiscard]] std::vector<std::string> requests() const {
        return device_.conversation().record().requests();
    }
    /// Waits until a request has reached the light.
    [[nodiscard]] bool awaitRequest(const std::string& request) const;
    /// Waits until the light has sent so many bytes more than now.
    [[nodiscard]] bool awaitSent(std::size_t bytes) const;
    /// Makes the light send something without being asked.
    void speak(const std::string& bytes) const;
    void forgetRequests() { device_.conversation().record().clear(); }

  private:
    Gadget gadget_;
    DeviceSide device_;
};

/// A machine without lights but those that the test plugs in. At the end all are unplugged and the
/// library has noticed.
class UsbLights : public ::testing::Test {
  protected:
    UsbLights() = default;
    ~UsbLights() override;

    /// A Tamar with the serial text TA-7, plugged in.
    UsbLight& plugTamar();
    /// A Cedar, plugged in.
    UsbLight& plugCedar();
    /// A light that is not yet plugged in.
    UsbLight& make(const UsbIdentity& identity, OrvexType model, const std::string& serial);

    /// The handles of a scan into an empty list.
    static std::vector<std::uint64_t> scan();
    /// The handle of the light at a port; 0 when there is none.
    static std::uint64_t handleAt(const std::string& port);
    /// Scans and opens; the light's requests so far are forgotten.
    static std::uint64_t open(UsbLight& light);
    /// The reply with its carriage return, or the status code in digits.
    static std::string reply(std::uint64_t handle, const char* command,
                             const char* value = nullptr);
    /// The log's lines that tell of a read that ended with nothing.
    [[nodiscard]] long emptyReads() const;
    static OrvexStruct record(std::uint64_t handle);

    LogCapture log;

  private:
    std::vector<std::unique_ptr<UsbLight>> lights_;
};

}  // namespace orvex_test
