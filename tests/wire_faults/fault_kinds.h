/// @file
/// The ways in which a device fails here.
#pragma once

#include <array>

#include "sim/fault.h"

namespace orvex_test {

enum class FaultKind {
    silence,
    hangUp,
    errorReply,
    garbage,            ///< Any bytes, then a carriage return.
    unfinishedGarbage,  ///< Any bytes and nothing more.
    byteMissing,        ///< The reply without its carriage return.
    drip,               ///< The reply byte by byte.
    endless             ///< Far more bytes than a reply may have, without a carriage return.
};

inline constexpr std::array kFaultKinds{FaultKind::silence,
                                        FaultKind::hangUp,
                                        FaultKind::errorReply,
                                        FaultKind::garbage,
                                        FaultKind::unfinishedGarbage,
                                        FaultKind::byteMissing,
                                        FaultKind::drip,
                                        FaultKind::endless};

[[nodiscard]] const char* nameOf(FaultKind kind);
/// @param seed chooses the bytes of garbage
[[nodiscard]] orvex::sim::Fault faultOf(FaultKind kind, unsigned seed);

}  // namespace orvex_test
