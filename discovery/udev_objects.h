/// @file
/// libudev's objects, released where their owner goes out of scope.
#pragma once

#include <libudev.h>

#include <memory>

namespace orvex {

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const noexcept {
        release(object);
    }
};

using Udev = std::unique_ptr<udev, Release<udev_unref>>;
using UdevEnumeration = std::unique_ptr<udev_enumerate, Release<udev_enumerate_unref>>;
using UdevDevice = std::unique_ptr<udev_device, Release<udev_device_unref>>;
using UdevMonitor = std::unique_ptr<udev_monitor, Release<udev_monitor_unref>>;

}  // namespace orvex
