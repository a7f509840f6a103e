/// @file
/// DriverException in expectations.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "api/driver_exception.h"

namespace orvex_test {

/// A failure's code and text.
using Failure = std::pair<std::uint32_t, std::string>;

/// The failure that @p action ends with; code 0 and an empty text when it ends well.
template <typename Action>
[[nodiscard]] Failure failureOf(Action action) {
    try {
        action();
    } catch (const DriverException& exception) {
        return {exception.error_code(), exception.what()};
    }
    return {};
}

}  // namespace orvex_test
