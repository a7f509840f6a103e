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
#include "tests/support/child_program.h"
#include "tests/support/log_capture.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/waiting.h"
#include "tests/vm/gadget.h"

namespace orvex_test {

inline const UsbIdentity kTamar = {"0x04d8", "0xea08", "Orvex Tamar", "TA-7"};
/// Without a serial number.
inline const UsbIdentity kCedar = {"0x04d8", "0xea02", "Orvex Cedar", ""};

/// What calls that wait for nothing may take on a busy machine; one that hangs takes longer.
constexpr auto kAtOnce = std::chrono::seconds(5);

/// What a simulated light is and what befalls it.
struct SimulatedLight {
    std::string model;
    std::string serial;    ///< What it tells when it is asked, whatever its USB device says.
    std::string timeline;  ///< That of a scenario, without its brackets.
};

/// A simulated light on a USB device of its own.
class UsbLight {
  public:
    UsbLight(unsigned bus, const UsbIdentity& identity, const SimulatedLight& light);

    void plug() { gadget_.plug(); }
    void unplug() { gadget_.unplug(); }
    void pull() { gadget_.pull(); }
    [[nodiscard]] const std::string& port() const noexcept { return gadget_.port(); }

    /// All requests so far, without their carriage returns.
    [[nodiscard]] std::vector<std::string> requests() const;
    /// Waits until a request has reached the light so often.
    [[nodiscard]] bool awaitRequest(const std::string& request, long times = 1) const;
    /// Waits until the light has sent a reply.
    [[nodiscard]] bool awaitReply(const std::string& reply) const;

  private:
    [[nodiscard]] std::vector<std::string> said(char side) const;
    [[nodiscard]] std::vector<std::string> command(const SimulatedLight& light) const;

    TemporaryDirectory directory_;
    Gadget gadget_;
    std::unique_ptr<ChildProgram> simulator_;
};

/// A machine without lights but those that the test plugs in. At the end all are unplugged and the
/// library has noticed.
class UsbLights : public ::testing::Test {
  protected:
    UsbLights() = default;
    ~UsbLights() override;

    /// A Tamar, plugged in.
    UsbLight& plugTamar(const std::string& timeline = "");
    /// A Cedar, plugged in.
    UsbLight& plugCedar(const std::string& timeline = "");
    /// A light that is not yet plugged in.
    UsbLight& make(const UsbIdentity& identity, const SimulatedLight& light);

    /// The handles of a scan into an empty list.
    static std::vector<std::uint64_t> scan();
    /// The handle of the light at a port; 0 when there is none.
    static std::uint64_t handleAt(const std::string& port);
    /// Scans and opens.
    static std::uint64_t open(const UsbLight& light);
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
