/// @file
/// Waiting for signals and for what threads have to tell.
#pragma once

#include <csignal>
#include <optional>

#include "sim/pseudo_terminal.h"

namespace orvex::tools {

/// Something a thread rings and the main thread hears.
class Bell {
  public:
    /// @throws std::system_error
    Bell();
    /// For any thread.
    void ring() const noexcept;
    /// Makes it quiet again.
    void hear() const noexcept;
    [[nodiscard]] int descriptor() const noexcept { return event_.get(); }

  private:
    sim::Descriptor event_;
};

/// A signal that has arrived.
struct Signal {
    int number = 0;
    bool fromKernel = false;  ///< From the terminal, whose whole foreground has got it already.
};

/// What a process does with signals that the programs it starts inherit.
struct Inheritance {
    sigset_t blocked{};
    struct sigaction brokenPipe {};
};

/// Signals of this process, which arrive here and nowhere else while this object lives.
class Signals {
  public:
    /// To be made before any thread.
    /// @throws std::system_error
    Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals();

    [[nodiscard]] int descriptor() const noexcept { return source_.get(); }
    /// The next one that has arrived; does not wait.
    [[nodiscard]] std::optional<Signal> take() const;
    /// As it was before, for processes that are started: a library of the simulation has SIGPIPE
    /// ignored.
    [[nodiscard]] const Inheritance& before() const noexcept { return before_; }

  private:
    Inheritance before_;
    sim::Descriptor source_;
};

/// Whether a signal asks a program to end.
[[nodiscard]] bool asksToEnd(int signal) noexcept;

}  // namespace orvex::tools
