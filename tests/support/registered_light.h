/// @file
/// Simulated devices of any model under the exported calls.
#pragma once

#include <cstdint>
#include <memory>

#include "api/device_registry.h"
#include "sim/simulated_device.h"

namespace orvex_test {

/// A simulated device that the exported calls know although no scan has found it. Making and
/// destroying one changes the list of devices: no device call may run meanwhile.
class RegisteredLight {
  public:
    explicit RegisteredLight(OrvexType model) : RegisteredLight(setupOf(model)) {}
    explicit RegisteredLight(const orvex::sim::DeviceSetup& setup,
                             orvex::sim::Observer observer = {})
        : device(setup, std::move(observer)), handle(registerAt(setup.model, device.path())) {}
    RegisteredLight(const RegisteredLight&) = delete;
    RegisteredLight& operator=(const RegisteredLight&) = delete;
    ~RegisteredLight() { gl_devs.erase(reinterpret_cast<void*>(handle)); }

    orvex::sim::SimulatedDevice device;
    const std::uint64_t handle;

  private:
    static orvex::sim::DeviceSetup setupOf(OrvexType model) {
        orvex::sim::DeviceSetup setup;
        setup.model = model;
        return setup;
    }
    static std::uint64_t registerAt(OrvexType model, const std::string& path) {
        auto light = std::make_unique<LightDevice>(model, path);
        void* const key = light->hDev();
        gl_devs.emplace(key, std::move(light));
        return reinterpret_cast<std::uintptr_t>(key);
    }
};

}  // namespace orvex_test
