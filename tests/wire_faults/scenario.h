/// @file
/// A program's whole use of a device, from the open to the close.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sim/device_setup.h"

namespace orvex_test {

enum class StepKind { open, writeRecord, switchOff, switchOn, command, close };

struct Step {
    StepKind kind;
    std::string command{};  ///< Of a command, with the next.
    std::string value{};
    int selected = 0;  ///< Of a record: which of the group's channels is on, the first or second.
};

/// A device, what a program does with it, and what goes over the line when nothing fails.
struct Scenario {
    const char* name;
    orvex::sim::DeviceSetup setup;
    std::vector<Step> steps;
    /// A status query may be repeated while a group settles; here it stands once.
    std::vector<std::string> requests;
};

/// A basic lamp and an extended one.
[[nodiscard]] std::vector<Scenario> lampScenarios();
/// LED models: without a group, with a group, and with a group that takes its time to settle.
[[nodiscard]] std::vector<Scenario> ledScenarios();

/// What a call did.
struct Outcome {
    std::uint32_t status = 0;        ///< 0 for a close, which tells none.
    std::string reply;               ///< Of a command that succeeded.
    std::vector<std::string> lines;  ///< What was logged.
};

/// Makes a step's call.
[[nodiscard]] Outcome perform(const Step& step, std::uint64_t handle);

}  // namespace orvex_test
