/// @file
/// What can go wrong in one call that the library makes.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvex_faults {

/// The system's calls, by what the library uses them for. The four sink calls write log lines.
enum class Call {
    Open,
    Duplicate,
    GetSettings,
    SetSettings,
    Discard,
    Write,
    Read,
    Close,
    Udev,
    SinkOpen,
    SinkWrite,
    SinkFlush,
    SinkClose
};

enum class Effect { Fails, ReadsNothing, WritesShort };

/// One way in which a call goes wrong. The error is errno's value, where the call has one.
struct Fault {
    Effect effect = Effect::Fails;
    int error = 0;
};

/// Which calls go wrong from the chosen one on: this one alone, all later ones of its kind with the
/// same fault, or all later calls of any kind.
enum class Span { Once, SameCall, EveryCall };

/// What a port had been through when a call on it went wrong.
struct PortHistory {
    bool settingsUnread = false;   ///< Its settings could not be read when it was opened.
    bool settingsRefused = false;  ///< Its settings could not be set when it was opened.
    bool isDuplicated = false;     ///< Another descriptor of it was asked for.
    int settingsWritten = 0;       ///< How often its settings were to be set.
    int requests = 0;              ///< How many requests were to be written.
};

/// What an application was calling.
enum class Step {
    Scan,
    Open,
    GetRecord,
    SetRecord,
    SwitchOn,
    SwitchOff,
    Command,
    OpenAgain,
    CloseAgain,
    Close,
    Unplug
};

/// A call that went wrong.
struct Event {
    Call call;
    Fault fault;
    Step step;
    PortHistory history;
    std::size_t length = 0;  ///< Of a write.
    std::string name;        ///< Of a udev function, with what it is asked about.
};

/// Whether the call writes log lines.
[[nodiscard]] bool servesLog(Call call);

/// Every way in which a call plausibly goes wrong.
[[nodiscard]] std::vector<Fault> faultsOf(Call call);

[[nodiscard]] const char* nameOf(Call call);
[[nodiscard]] const char* nameOf(Span span);
[[nodiscard]] const char* nameOf(Step step);
/// "EIO" and the like, or what happens instead of an error.
[[nodiscard]] std::string nameOf(const Fault& fault);

}  // namespace orvex_faults
