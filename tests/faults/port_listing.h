/// @file
/// What udev lists: a port that is no USB device, and the tests' port.
#pragma once

#include <cstddef>
#include <string>

namespace orvex_faults {

/// The system's serial ports while it exists. The program defines the libudev functions that the
/// library calls; each of them can be made to return null, or a negative number.
class PortListing {
  public:
    /// @param node of the listed port  @param product its USB product identifier, in hexadecimal
    PortListing(std::string node, std::string product);
    PortListing(const PortListing&) = delete;
    PortListing& operator=(const PortListing&) = delete;
    ~PortListing();

    /// How many objects were handed out and not released.
    [[nodiscard]] std::size_t unreleased() const noexcept;

    bool isPluggedIn = true;

    const std::string node;
    const std::string product;
};

}  // namespace orvex_faults
