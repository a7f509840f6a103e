#include "api/device_registry.h"

std::unordered_map<void*, std::unique_ptr<LightDevice>> gl_devs;
