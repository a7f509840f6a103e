/// @file
/// A caller's use of one device, each call checked against what came and went on the wire.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/support/devices.h"
#include "tests/fuzz/support/expected_write.h"

namespace orvex_fuzz {

class Session {
  public:
    Session(unsigned model, FakePort& port);

    /// Makes the call that a line tells of by its first letter:
    ///
    /// - x<reply_len>:<name>:<value>: a command; X: with the value 64 times; y: with a reply_len of
    ///   the reply's length and 1 less to 2 more
    /// - n, N: null pointers; no device
    /// - r<count>,<information>;<intensity>,<state>;…: a record write; R: of a record too small
    /// - s<enable><on>: switching, each 0 or 1
    /// - o, c, i<port_len>: open again, close, ask for information
    /// - !<letters>: no call; faults of the port from now on (support/fake_port.h)
    void perform(std::string_view step);

  private:
    struct Command {
        std::uint32_t size;
        std::string name;
        std::string value;
    };

    void execute(const Command& command);
    void callWithoutPointers() const;
    void callWithoutDevice() const;
    void write(std::string_view text);
    void writeShort(std::string_view text) const;
    void switchLight(std::string_view text);
    void reopen();
    void close();
    void inform(std::string_view text) const;

    void learnPositions(const Exchanges& opening);
    [[nodiscard]] Exchanges exchangesOfCall() const;
    [[nodiscard]] std::uint32_t expectedStatus(const Command& command) const;
    [[nodiscard]] OrvexStruct recordFrom(std::string_view text, const OrvexStruct& before) const;
    void requireWriteRequests(const WrittenRecord& written) const;
    void requireAllSent(const WrittenRecord& written) const;
    [[nodiscard]] std::size_t knownChannels() const;
    [[nodiscard]] bool hasSent(const char* command) const;
    void requireIntensities(const std::string& request, const OrvexStruct& record) const;
    void requirePositions(const std::string& request, const OrvexStruct& record, bool on) const;
    void requireOutcome(std::uint32_t status) const;
    void requireSettled(const OrvexStruct& record) const;

    unsigned model_;
    FakePort& port_;
    UsedDevice device_;
    std::uint64_t handle_;
    std::vector<int> positions_;  ///< Of the fitted LEDs, from 1.
    int last_ = 0;                ///< The number of positions.
    std::size_t before_ = 0;      ///< Exchanges before the present call.
    std::uint32_t count_ = 0;     ///< How often the device is open.
    bool isSwitching_ = false;    ///< Switching is enabled.
    bool isSwitchedOn_ = false;
};

}  // namespace orvex_fuzz
