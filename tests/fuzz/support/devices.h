/// @file
/// The devices of all models.
#pragma once

#include <cstdint>

#include "device/light_device.h"
#include "tests/fuzz/support/fake_port.h"

namespace orvex_fuzz {

constexpr unsigned kModels = 10;

/// A registered device of one model, on a port, like new at the end of a scope.
///
/// The device behind it is made once, as its command table takes more time than an exchange does.
class UsedDevice {
  public:
    UsedDevice(unsigned model, FakePort& port);
    UsedDevice(const UsedDevice&) = delete;
    UsedDevice& operator=(const UsedDevice&) = delete;
    /// Closes the device as often as it is open, releases its port and forgets what it has read.
    ~UsedDevice();

    LightDevice* operator->() const noexcept { return &device_; }
    [[nodiscard]] std::uint64_t handle() const noexcept;

  private:
    void closeAll();
    void forgetChannels();
    void releasePort();

    LightDevice& device_;
    FakePort& port_;
};

}  // namespace orvex_fuzz
