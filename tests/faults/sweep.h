/// @file
/// Runs of an application, each with one thing that goes wrong.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tests/faults/application.h"
#include "tests/faults/injector.h"
#include "tests/faults/lights.h"
#include "tests/faults/log_setting.h"

namespace orvex_faults {

/// What an application is run with.
struct Setting {
    Light light;
    Usage usage = Usage::Whole;
    LogTo log = LogTo::Callback;
    bool isTerminal = false;      ///< On a pseudo-terminal instead of a port without a terminal.
    bool isWithoutInput = false;  ///< In a process that has closed its standard input.
};

/// What a run has shown.
struct Result {
    std::string port;
    std::vector<Outcome> outcomes;
    std::vector<std::string> lines;
    std::vector<CountedCall> calls;
    std::vector<Event> events;
    std::size_t failedAllocations = 0;
};

/// Uses a new device once while things go wrong as planned. Afterwards the device must work, the
/// log too, and nothing may be left behind; adds failures to the test otherwise. Ends the process
/// when it takes too long, as it does when a mutex has been left locked.
[[nodiscard]] Result runOnce(const Setting& setting, const Plan& plan);

/// Counts what a test has made go wrong, and tells of it.
class Injections {
  public:
    /// @param atLeast how many the test must make
    explicit Injections(std::size_t atLeast) : atLeast_(atLeast) {}
    Injections(const Injections&) = delete;
    Injections& operator=(const Injections&) = delete;
    /// Adds a failure to the test when there were fewer.
    ~Injections();

    void add() noexcept { ++count_; }

  private:
    std::size_t atLeast_;
    std::size_t count_ = 0;
};

/// The lines that tell of errors.
[[nodiscard]] std::vector<std::string> errorLines(const std::vector<std::string>& lines);

/// A name for a test.
[[nodiscard]] std::string nameOf(const Setting& setting);

}  // namespace orvex_faults
