/// @file
/// The library's status codes in words.
#pragma once

#include <cstdint>
#include <string>

#include "tools/orvexctl/failure.h"

namespace orvex::tools {

/// "ORVEX_ERR_RECV"
[[nodiscard]] std::string statusName(std::uint32_t status);

/// A failure that names the status: "GetTemperature on /dev/ttyACM0 failed: the device did not
/// answer in time (ORVEX_ERR_RECV, 0xA0515019)".
/// @param what   what failed, on which port
/// @param detail the library's own words; may be empty
[[nodiscard]] Failure statusFailure(std::uint32_t status, const std::string& what,
                                    const std::string& detail = {});

}  // namespace orvex::tools
