/// @file
/// The port that the library opens in these tests.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "sim/conversation.h"
#include "sim/simulated_device.h"
#include "tests/faults/fault.h"

namespace orvex_faults {

/// What system calls on the port's path and descriptors do when they work. One at a time; for one
/// thread.
class Port {
  public:
    explicit Port(std::string path);
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;
    virtual ~Port();

    /// The one that exists, or null.
    [[nodiscard]] static Port* current() noexcept;
    /// The one that exists, when the descriptor is open on it; else null.
    [[nodiscard]] static Port* behind(int descriptor) noexcept;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] PortHistory& history(int descriptor) { return open_.at(descriptor); }
    /// How many descriptors are open on it.
    [[nodiscard]] std::size_t openDescriptors() const noexcept { return open_.size(); }
    /// The device's state.
    [[nodiscard]] orvex::sim::DeviceState state() { return conversation().state(); }

    void opened(int descriptor) { open_[descriptor] = {}; }
    void closed(int descriptor) { open_.erase(descriptor); }

    [[nodiscard]] virtual int open(int flags) = 0;
    [[nodiscard]] virtual ssize_t read(int descriptor, void* buffer, std::size_t size) = 0;
    [[nodiscard]] virtual ssize_t write(int descriptor, const void* bytes, std::size_t size) = 0;
    [[nodiscard]] virtual int getSettings(int descriptor, termios* settings) = 0;
    [[nodiscard]] virtual int setSettings(int descriptor, const termios* settings) = 0;
    [[nodiscard]] virtual int discard(int descriptor) = 0;
    /// Waits until a reply that is on its way is there.
    virtual void awaitReply(int descriptor) = 0;
    /// The settings now.
    [[nodiscard]] virtual termios settings() = 0;
    [[nodiscard]] virtual orvex::sim::Conversation& conversation() = 0;

  private:
    std::string path_;
    std::map<int, PortHistory> open_;
};

/// A port without a terminal: its descriptors are real, the calls on them are answered here.
class DirectPort final : public Port {
  public:
    explicit DirectPort(const orvex::sim::DeviceSetup& setup);

    [[nodiscard]] int open(int flags) override;
    [[nodiscard]] ssize_t read(int descriptor, void* buffer, std::size_t size) override;
    [[nodiscard]] ssize_t write(int descriptor, const void* bytes, std::size_t size) override;
    [[nodiscard]] int getSettings(int descriptor, termios* settings) override;
    [[nodiscard]] int setSettings(int descriptor, const termios* settings) override;
    [[nodiscard]] int discard(int descriptor) override;
    void awaitReply(int /*descriptor*/) override {}
    [[nodiscard]] termios settings() override { return settings_; }
    [[nodiscard]] orvex::sim::Conversation& conversation() override { return conversation_; }

  private:
    orvex::sim::Conversation conversation_;
    std::string unread_;
    termios settings_{};
};

/// A pseudo-terminal with a simulated device at its far end.
class TerminalPort final : public Port {
  public:
    explicit TerminalPort(std::unique_ptr<orvex::sim::SimulatedDevice> device);

    [[nodiscard]] int open(int flags) override;
    [[nodiscard]] ssize_t read(int descriptor, void* buffer, std::size_t size) override;
    [[nodiscard]] ssize_t write(int descriptor, const void* bytes, std::size_t size) override;
    [[nodiscard]] int getSettings(int descriptor, termios* settings) override;
    [[nodiscard]] int setSettings(int descriptor, const termios* settings) override;
    [[nodiscard]] int discard(int descriptor) override;
    void awaitReply(int descriptor) override;
    [[nodiscard]] termios settings() override;
    [[nodiscard]] orvex::sim::Conversation& conversation() override {
        return device_->conversation();
    }

  private:
    std::unique_ptr<orvex::sim::SimulatedDevice> device_;
};

}  // namespace orvex_faults
