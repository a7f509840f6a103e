/// @file
/// A libudev under a test's control.
///
/// A program that compiles fake_udev.cpp defines the libudev functions that the library calls, so
/// that the library's calls come to it and no real device is seen.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvex_test {

/// What udev tells of a serial port; what is not given is missing.
struct FakePort {
    std::string sysPath;
    std::optional<std::string> node;
    bool isGone = false;  ///< The enumeration lists it, but there is no device any more.
    bool hasUsbParent = true;
    std::map<std::string, std::string> attributes;  ///< Of the USB parent.
};

/// The port "/dev/ttyACM<number>" of a Tamar.
[[nodiscard]] FakePort tamarPort(int number);
/// The port "/dev/ttyACM<number>" of a Cedar.
[[nodiscard]] FakePort cedarPort(int number);

/// The system's ports while it exists; none at first. For one thread.
class FakeUdev {
  public:
    FakeUdev();
    FakeUdev(const FakeUdev&) = delete;
    FakeUdev& operator=(const FakeUdev&) = delete;
    ~FakeUdev();

    /// How many objects were handed out and not released.
    [[nodiscard]] std::size_t unreleased() const;
    /// How many objects were handed out.
    [[nodiscard]] std::size_t handedOut() const;
    /// How often an object was released, or used, that had been released before.
    [[nodiscard]] std::size_t misused() const;

    std::vector<FakePort> ports;  ///< In the order in which they are listed.
    bool hasContext = true;
    bool hasEnumeration = true;
    int scanResult = 0;
    /// The calls in order, those for an attribute with its name.
    std::vector<std::string> calls;

    struct Objects;
    std::unique_ptr<Objects> objects;
};

}  // namespace orvex_test
