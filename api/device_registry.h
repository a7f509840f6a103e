/// @file
/// The devices the library knows.
#pragma once

#include <memory>
#include <unordered_map>

#include "device/light_device.h"

/// Handle to device. Only updateDeviceList adds and erases entries; erasing one destroys the
/// device, and so does unloading the library. No lock guards it: the application keeps calls that
/// change it apart from all others.
extern ORVEX_API std::unordered_map<void*, std::unique_ptr<LightDevice>>& gl_devs;
