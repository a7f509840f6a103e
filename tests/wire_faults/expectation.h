/// @file
/// What a call must return and log, told from what went over the wire.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/wire_faults/scenario.h"
#include "tests/wire_faults/wire_monitor.h"

namespace orvex_test {

/// A device's connection as its calls leave it.
struct Connection {
    std::string port;          ///< The path.
    std::uint32_t opens = 0;   ///< Wraps below zero.
    bool hasLink = false;      ///< The library has the port open.
    bool linkIsDead = false;   ///< The link's terminal has ended.
    bool isPluggedIn = true;   ///< Now, after the call.
    bool wasPluggedIn = true;  ///< Before the call.
};

/// Compares a call with what it must have done, and follows the connection.
///
/// @param exchanges what the device saw during the call
/// @param[in,out] connection before the call, then after it
/// @return what is wrong, a line each
[[nodiscard]] std::vector<std::string> complaints(const Step& step, const Outcome& outcome,
                                                  const std::vector<Exchange>& exchanges,
                                                  Connection& connection);

/// The longest that a call with these exchanges may take: what the device itself took, 2.1 s for a
/// reply that did not end, and the calls' own pauses.
[[nodiscard]] std::chrono::nanoseconds longest(const Step& step,
                                               const std::vector<Exchange>& exchanges);
/// The shortest: a device that does not end its reply is waited for.
/// @param hungUp the port ended during the call: nothing more to wait for
[[nodiscard]] std::chrono::nanoseconds shortest(const std::vector<Exchange>& exchanges,
                                                bool hungUp);

/// Whether a reply is whole: up to its carriage return, or 1024 bytes.
[[nodiscard]] bool isWhole(const std::string& reply);

}  // namespace orvex_test
