/// @file
/// A program that uses a light source, as one is written that looks at every status code.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"
#include "tests/faults/fault.h"
#include "tests/faults/lights.h"
#include "tests/faults/port.h"
#include "tests/faults/port_listing.h"

namespace orvex_faults {

/// How long a program keeps the device.
enum class Usage {
    Whole,     ///< Record, switching, command, a second open; closed before it is pulled out.
    PulledOut  ///< Pulled out while it is open.
};

/// How a call of the library ended.
struct Outcome {
    Step step;
    std::uint32_t status = ORVEX_OK;  ///< ORVEX_OK for a call without a result.
    bool outOfMemory = false;         ///< std::bad_alloc left it.
    bool otherException = false;
    std::size_t openDescriptors = 0;  ///< On the port, afterwards.
    bool isRegistered = false;        ///< The device, afterwards.
    std::uint32_t openCount = 0;      ///< Of the device, afterwards.
};

/// One device, from its first scan until it is gone. While it exists, the registry holds nothing
/// else.
class Application {
  public:
    Application(const Light& light, Port& port);

    /// Uses the device; calls may go wrong. A device that cannot be opened is not used.
    void use(Usage usage);
    /// Uses the device again, when everything works: opens it and reads its record, closes it.
    /// Adds failures to the test when anything is not as for a new device.
    void useAgain();
    /// Pulls the device out when everything works. Nothing may be left.
    void pullOut();

    [[nodiscard]] const std::vector<Outcome>& outcomes() const noexcept { return outcomes_; }

  private:
    void perform(Step step, const std::function<std::uint32_t()>& call);
    [[nodiscard]] bool lastSucceeded() const;
    void operate();
    void changeRecord();
    void scan();
    void registerByHand();
    void closeAll();
    void expectRecordOfDevice();

    const Light& light_;
    Port& port_;
    PortListing listing_;
    std::array<std::uint64_t, 4> slots_{};
    std::uint32_t count_ = 0;
    std::uint64_t handle_ = 0;
    OrvexStruct record_{};
    std::vector<Outcome> outcomes_;
};

}  // namespace orvex_faults
