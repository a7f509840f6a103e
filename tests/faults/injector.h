/// @file
/// Decides, call by call, what goes wrong.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/fault.h"

namespace orvex_faults {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

/// Which calls, and which allocations, counted from 0, are to go wrong.
struct Plan {
    std::size_t call = kNever;
    Fault fault;
    Span span = Span::Once;
    std::size_t allocation = kNever;
    bool allAllocations = false;  ///< All allocations from that one on.
    std::optional<Call> always;   ///< Calls of this kind always go wrong, with EIO.
};

/// One of the calls as they were counted.
struct CountedCall {
    Call call;
    Step step;
};

/// Counts the library's calls and allocations while an application's thread is inside the library,
/// and makes them go wrong as planned.
class Injector {
  public:
    /// Begins to count anew.
    void start(const Plan& plan);

    /// What happens to the call that is being made; nothing when it is to work.
    [[nodiscard]] std::optional<Fault> next(Call call, const PortHistory& history = {},
                                            std::size_t length = 0, const std::string& name = {});
    /// Whether the library's allocation that is being made is to fail.
    [[nodiscard]] bool nextAllocationFails() noexcept;

    [[nodiscard]] const std::vector<CountedCall>& calls() const noexcept { return calls_; }
    [[nodiscard]] const std::vector<Event>& events() const noexcept { return events_; }
    [[nodiscard]] std::size_t failedAllocations() const noexcept { return failedAllocations_; }

    Step step = Step::Scan;

  private:
    [[nodiscard]] std::optional<Fault> planned(Call call, std::size_t index) const;

    Plan plan_;
    Call firstCall_ = Call::Open;
    std::vector<CountedCall> calls_;
    std::vector<Event> events_;
    std::size_t allocations_ = 0;
    std::size_t failedAllocations_ = 0;
};

/// The only one there is.
[[nodiscard]] Injector& injector();

/// Marks the thread, while it exists, as inside the library.
class InsideLibrary {
  public:
    InsideLibrary() noexcept;
    InsideLibrary(const InsideLibrary&) = delete;
    InsideLibrary& operator=(const InsideLibrary&) = delete;
    ~InsideLibrary();
};

/// Takes the thread, while it exists, out of the library again: for a test's code that it calls.
class OutsideLibrary {
  public:
    OutsideLibrary() noexcept;
    OutsideLibrary(const OutsideLibrary&) = delete;
    OutsideLibrary& operator=(const OutsideLibrary&) = delete;
    ~OutsideLibrary();

  private:
    bool before_;
};

/// Whether this thread is inside the library.
[[nodiscard]] bool isInsideLibrary() noexcept;

}  // namespace orvex_faults
