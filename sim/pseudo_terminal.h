/// @file
/// The system resources a simulated port is made of.
#pragma once

#include <string>

namespace orvex::sim {

/// A file descriptor that closes itself.
class Descriptor {
  public:
    explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    [[nodiscard]] int get() const noexcept { return fd_; }

  private:
    int fd_;
};

/// A directory below the system's place for temporary files; goes with all that is in it.
class TemporaryDirectory {
  public:
    /// @throws std::system_error
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    std::string path_;
};

/// A raw pseudo-terminal with a link to its slave.
///
/// It holds the slave open itself, so that clients may come and go without the master noticing.
class PseudoTerminal {
  public:
    /// @param link where to make the link
    /// @throws std::system_error
    explicit PseudoTerminal(std::string link);
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    /// Removes the link first: a client that sees the port end cannot open it again.
    ~PseudoTerminal();

    /// The device's end; does not block.
    [[nodiscard]] int master() const noexcept { return master_.get(); }
    [[nodiscard]] const std::string& slavePath() const noexcept { return slavePath_; }

  private:
    const std::string link_;
    const Descriptor master_;
    const std::string slavePath_;
    const Descriptor slave_;
};

}  // namespace orvex::sim
