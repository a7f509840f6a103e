/// @file
/// One scenario with one fault.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/registered_light.h"
#include "tests/wire_faults/expectation.h"
#include "tests/wire_faults/fault_kinds.h"
#include "tests/wire_faults/scenario.h"
#include "tests/wire_faults/scheduling_delay.h"
#include "tests/wire_faults/wire_monitor.h"

namespace orvex_test {

/// Where a fault comes in.
struct Injection {
    FaultKind kind = FaultKind::silence;
    unsigned exchange = 1;  ///< From 1.
    bool forEver = false;   ///< With all later exchanges, too.
};

/// A device of its own that fails during a scenario; afterwards the fault is taken away, and the
/// device must be as good as new.
class Run {
  public:
    Run(const Scenario& scenario, std::optional<Injection> injection, const SchedulingDelay& delay);

    /// Goes through the whole scenario. Different runs may go at the same time.
    void go();
    /// Ends a call that waits for a group that will not settle; to be called now and then from
    /// another thread.
    void helpToSettle();

    [[nodiscard]] const std::string& name() const { return name_; }
    /// What was wrong, a line each.
    [[nodiscard]] const std::vector<std::string>& wrong() const { return wrong_; }
    /// Calls that took too long or too short. A busy machine may be the reason.
    [[nodiscard]] const std::vector<std::string>& untimely() const { return untimely_; }
    [[nodiscard]] std::size_t faultyExchanges() const { return faulty_; }
    [[nodiscard]] std::size_t calls() const { return calls_; }
    [[nodiscard]] bool wasHelped() const { return helps_ != 0; }

  private:
    void runStep(const Step& step);
    void compare(const Step& step, const Outcome& outcome, std::size_t first);
    void judgeTime(const Step& step, const std::vector<Exchange>& exchanges,
                   std::chrono::nanoseconds taken, std::chrono::nanoseconds late);
    void checkRequests();
    void recover();
    void checkRecord();
    void checkDescriptors();
    void complain(const std::string& step, const std::string& text);

    const Scenario& scenario_;
    const std::optional<Injection> injection_;
    const SchedulingDelay& delay_;
    const std::string name_;
    WireMonitor monitor_;
    RegisteredLight light_;
    Connection connection_;
    std::atomic<std::size_t> callStart_{0};
    std::atomic<int> helps_{0};
    std::size_t faulty_ = 0;
    std::size_t calls_ = 0;
    std::vector<std::string> wrong_;
    std::vector<std::string> untimely_;
};

}  // namespace orvex_test
