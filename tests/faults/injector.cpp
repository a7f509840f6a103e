#include "tests/faults/injector.h"

#include <cerrno>

namespace orvex_faults {

namespace {

thread_local bool inside_library = false;

/// How a call fails when everything does.
Fault anyFault(Call call) {
    return {Effect::Fails, call == Call::Udev ? 0 : EIO};
}

}  // namespace

void Injector::start(const Plan& plan) {
    plan_ = plan;
    calls_.clear();
    events_.clear();
    allocations_ = 0;
    failedAllocations_ = 0;
}

std::optional<Fault> Injector::next(Call call, const PortHistory& history, std::size_t length,
                                    const std::string& name) {
    if (!inside_library) {
        return std::nullopt;
    }
    const OutsideLibrary counting;
    const std::size_t index = calls_.size();
    calls_.push_back({call, step});
    if (index == plan_.call) {
        firstCall_ = call;
    }
    const std::optional<Fault> fault = planned(call, index);
    if (fault) {
        events_.push_back({call, *fault, step, history, length, name});
    }
    return fault;
}

std::optional<Fault> Injector::planned(Call call, std::size_t index) const {
    if (call == plan_.always) {
        return anyFault(call);
    }
    if (index < plan_.call || (index > plan_.call && plan_.span == Span::Once)) {
        return std::nullopt;
    }
    if (call == firstCall_) {
        return plan_.fault;
    }
    return plan_.span == Span::EveryCall ? std::optional(anyFault(call)) : std::nullopt;
}

bool Injector::nextAllocationFails() noexcept {
    const std::size_t index = allocations_++;
    const bool fails =
        index == plan_.allocation || (index > plan_.allocation && plan_.allAllocations);
    failedAllocations_ += fails ? 1 : 0;
    return fails;
}

Injector& injector() {
    // Never destroyed: the library's last calls come after the tests.
    static Injector& instance = *new Injector;
    return instance;
}

InsideLibrary::InsideLibrary() noexcept {
    inside_library = true;
}
InsideLibrary::~InsideLibrary() {
    inside_library = false;
}

OutsideLibrary::OutsideLibrary() noexcept : before_(inside_library) {
    inside_library = false;
}
OutsideLibrary::~OutsideLibrary() {
    inside_library = before_;
}

bool isInsideLibrary() noexcept {
    return inside_library;
}

}  // namespace orvex_faults
