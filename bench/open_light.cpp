#include "bench/open_light.h"

#include <memory>

namespace orvex_bench {

namespace {

orvex::sim::DeviceSetup setupOf(OrvexType model) {
    orvex::sim::DeviceSetup setup;
    setup.model = model;
    return setup;
}

std::uint64_t registered(OrvexType model, const std::string& path) {
    auto device = std::make_unique<LightDevice>(model, path);
    void* const key = device->hDev();
    gl_devs.emplace(key, std::move(device));
    return reinterpret_cast<std::uintptr_t>(key);
}

}  // namespace

Light::Light(OrvexType model)
    : conversation_(setupOf(model)), handle_(registered(model, line_.path())) {
    answerAsModel();
}

Light::~Light() {
    gl_devs.erase(reinterpret_cast<void*>(static_cast<std::uintptr_t>(handle_)));
}

std::uint32_t Light::open() {
    return ORVEX_OpenDeviceEx(handle_);
}

void Light::close() {
    ORVEX_CloseDevice(handle_);
}

void Light::answerAsModel() {
    line_.answerWith([this](std::string_view request) { return conversation_.exchange(request); });
}

}  // namespace orvex_bench
