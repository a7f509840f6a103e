/// @file
/// What opening a device comes to, worked out from its replies.
#pragma once

#include <cstdint>
#include <vector>

#include "include/qtr_orvex.h"
#include "tests/fuzz/support/fake_port.h"

namespace orvex_fuzz {

struct Opening {
    std::uint32_t status;
    OrvexStruct record;  ///< As a caller reads it; meaningful after success.
};

/// The outcome of one exchange: ORVEX_OK or the failure's status code.
[[nodiscard]] std::uint32_t outcomeOf(const Exchange& exchange);

/// Requires that exactly the requests of the model's read-out were sent, up to the first failure.
/// @param handle what the record gives as the device's handle
[[nodiscard]] Opening expectedOpening(unsigned model, std::uint64_t handle,
                                      const Exchanges& exchanges);

}  // namespace orvex_fuzz
