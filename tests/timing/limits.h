/// @file
/// How long calls may take: the numbers of docs/limits.md.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

namespace orvex_test {

using namespace std::chrono_literals;

/// The latest that a byte may come after the one before it: three attempts of 0.5 s with two
/// pauses of 0.2 s between them.
constexpr std::chrono::milliseconds kByteLimit = 1900ms;
/// A device that sends nothing more: three attempts, each with a pause behind it.
constexpr std::chrono::milliseconds kSilenceLimit = 2100ms;
/// A port that has ended: the attempts return at once, the pauses remain.
constexpr std::chrono::milliseconds kHangUpLimit = 600ms;
/// The pause when a failing first request gives the port back.
constexpr std::chrono::milliseconds kReleasePause = 10ms;
/// Before a changed group is asked for its state, and before each question.
constexpr std::chrono::milliseconds kGroupPause = 1800ms;
constexpr std::chrono::milliseconds kPollPause = 100ms;
/// What the processor may take in a call on a busy machine. Less than the pauses of a group or an
/// attempt, so that one too many is noticed.
constexpr std::chrono::milliseconds kTolerance = 90ms;

/// What one attempt at a measurement found.
struct Measured {
    std::chrono::nanoseconds taken{0};
    std::string wrong;  ///< Empty: the call did what it should.
};

/// Expects a call to take @p least to @p limit, with the tolerance. One attempt in time is enough:
/// a busy machine holds some up, but not all.
inline void expectInTime(std::chrono::milliseconds least, std::chrono::milliseconds limit,
                         const std::function<Measured()>& measure) {
    constexpr int kAttempts = 10;
    std::string report = "limit " + std::to_string(limit.count()) + " ms:";
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const Measured found = measure();
        if (found.wrong.empty() && found.taken >= least && found.taken <= limit + kTolerance) {
            return;
        }
        report += " " + found.wrong + " after " + std::to_string(found.taken / 1ms) + " ms;";
    }
    ADD_FAILURE() << report;
}

}  // namespace orvex_test
