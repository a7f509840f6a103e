/// @file
/// System calls of the library under a test's control.
///
/// A program that compiles forced_calls.cpp defines these system calls itself, so that the
/// library's calls come to it. They are passed on to the system unless one of the objects below
/// says otherwise. For use in one thread.
#pragma once

#include <termios.h>

#include <chrono>
#include <functional>
#include <utility>
#include <vector>

namespace orvex_test {

enum class Call {
    Open,
    Close,
    Read,
    Write,
    GetAttributes,
    SetAttributes,
    Ioctl,
    GetInputSpeed,
    GetOutputSpeed
};

/// While it exists, a call is not made (a descriptor is closed all the same) but has a given
/// result.
class Forced {
  public:
    Forced(Call call, long result, int error = 0);
    Forced(const Forced&) = delete;
    Forced& operator=(const Forced&) = delete;
    ~Forced();

    /// How often the call was asked for.
    [[nodiscard]] int count() const;

  private:
    Call call_;
};

/// While it exists, a port's settings read as given, whatever they are.
class ForcedSettings {
  public:
    explicit ForcedSettings(const termios& settings);
    ForcedSettings(const ForcedSettings&) = delete;
    ForcedSettings& operator=(const ForcedSettings&) = delete;
    ~ForcedSettings();
};

/// The arguments of the calls while it exists.
class Recording {
  public:
    Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording();

    std::vector<int> openFlags;
    std::vector<std::pair<int, termios>> settings;                  ///< action, settings
    std::vector<std::pair<unsigned long, unsigned long>> controls;  ///< request, argument
};

/// While it exists, pauses take no time.
class SkippedPauses {
  public:
    using Nanoseconds = std::chrono::nanoseconds;

    SkippedPauses();
    SkippedPauses(const SkippedPauses&) = delete;
    SkippedPauses& operator=(const SkippedPauses&) = delete;
    ~SkippedPauses();

    /// What was asked for, in order.
    std::vector<Nanoseconds> asked;
    /// Called in every pause with its number, from 1. Returns the time that remains because a
    /// signal ended the pause; zero for a whole pause.
    std::function<Nanoseconds(std::size_t)> during;
};

}  // namespace orvex_test
