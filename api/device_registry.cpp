#include "api/device_registry.h"

namespace {

std::unordered_map<void*, std::unique_ptr<LightDevice>> devices;

}  // namespace

std::unordered_map<void*, std::unique_ptr<LightDevice>>& gl_devs = devices;
