/// @file
/// One light driven through the exported calls, with everything taken down.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "device/light_device.h"
#include "include/qtr_orvex.h"
#include "sim/simulated_device.h"
#include "tests/support/log_settings.h"
#include "tests/transcripts/tape.h"

namespace orvex_test {

/// A simulated device that is plugged in and, once attached, known to the library.
class TapedLight {
  public:
    /// @param logBits the classes of messages that are taken down
    TapedLight(OrvexType model, std::uint32_t logBits);
    TapedLight(const TapedLight&) = delete;
    TapedLight& operator=(const TapedLight&) = delete;
    ~TapedLight();

    /// Everything from here on belongs to the transcript.
    void startTape() { tape_.start(); }
    /// With the handle's and the port's texts replaced.
    [[nodiscard]] std::vector<Event> events() const;

    /// @name Steps
    /// Each calls the library and takes down the call and its result.
    /// @{
    void attach();
    void open();
    void close();
    void command(const std::string& name, const std::string& value = {});
    /// Reads the state record, has it changed, and writes it.
    void writeRecord(const std::string& what, const std::function<void(OrvexStruct&)>& change);
    void switchOrvex(bool enable, bool on);
    void setLamp(bool on);
    void setShutter(bool open);
    void ping();
    /// @}

    /// @name What befalls the device
    /// @{
    void refuse(const std::string& command);
    void answer(const std::string& command, const std::string& bytes);
    /// No reply to any request of the steps in @p steps.
    void whileSilent(const std::function<void()>& steps);
    void unplug();
    /// @}

    [[nodiscard]] OrvexStruct record();

  private:
    void step(const std::string& what);
    void result(std::uint32_t status);
    void directly(const std::string& what, const std::function<void(LightDevice&)>& call);
    [[nodiscard]] LightDevice& device() const;
    [[nodiscard]] std::uint64_t handle() const;

    const LogSettings settings_;
    orvex::sim::SimulatedDevice port_;
    Tape tape_;
    void* key_ = nullptr;
};

}  // namespace orvex_test
