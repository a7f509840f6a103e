/// @file
/// What a device object of the library must do and hold, from the rules alone.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"
#include "tests/soak/transcript.h"

namespace orvex_soak {

/// A device as it must be. Each call takes the same arguments as the library's and accounts for
/// what the library did on the port: every request must be the one the rules ask for, and its
/// outcome decides how the call goes on and what it returns.
class DeviceModel {
  public:
    DeviceModel(OrvexType type, std::string path, std::uint64_t handle);

    /// @return the status code of the call
    [[nodiscard]] std::uint32_t open(unsigned baud, Transcript& port);
    void close(Transcript& port);
    [[nodiscard]] std::uint32_t setRecord(const OrvexStruct& in, Transcript& port);
    [[nodiscard]] std::uint32_t switchOrvex(bool enable, bool on, Transcript& port);
    /// @param[out] reply the whole reply
    [[nodiscard]] std::uint32_t execute(const std::string& command, const std::string& value,
                                        std::string& reply, Transcript& port);
    /// The device is erased.
    void destroy(Transcript& port) const;

    /// The record that is handed out.
    [[nodiscard]] OrvexStruct record() const;
    /// All positions, fitted or not.
    [[nodiscard]] const OrvexStruct& state() const noexcept { return state_; }
    [[nodiscard]] OrvexType type() const noexcept { return type_; }
    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] std::uint64_t handle() const noexcept { return handle_; }
    [[nodiscard]] std::uint32_t openCount() const noexcept { return count_; }
    [[nodiscard]] bool isConnected() const noexcept { return connected_; }
    /// Whether channels that are switched on are only remembered.
    [[nodiscard]] bool isSwitchedOff() const noexcept { return enabled_ && !internalOn_; }

  private:
    std::string exchange(const std::string& request, Transcript& port) const;
    std::string command(const std::string& name, const std::string& value, Transcript& port) const;
    std::string query(const std::string& name, Transcript& port) const;
    [[nodiscard]] bool knows(const std::string& name) const;
    [[nodiscard]] bool isLed() const noexcept;

    void connect(Transcript& port);
    void readOut(Transcript& port);
    void readPositions(Transcript& port);
    void readLamp(Transcript& port);
    void readLeds(Transcript& port);
    void reset();

    bool takeIntensities(const OrvexStruct& in);
    bool takeStates(const OrvexStruct& in);
    void sendIntensities(Transcript& port) const;
    void sendStates(Transcript& port);
    void internalOn(const std::string& channels, Transcript& port);
    void internalOff(Transcript& port) const;

    OrvexType type_;
    std::string path_;
    std::uint64_t handle_;
    std::uint32_t count_ = 0;
    bool connected_ = false;
    OrvexStruct state_{};
    std::vector<int> fitted_;
    std::string onList_;
    std::string allList_;
    bool internalOn_ = false;
    bool enabled_ = false;
    bool groupChanged_ = false;
};

/// A record with everything behind the ends of its texts zeroed.
[[nodiscard]] OrvexStruct comparable(const OrvexStruct& record);
/// The first difference of two records, "" when there is none.
[[nodiscard]] std::string differenceOf(const OrvexStruct& actual, const OrvexStruct& expected);

}  // namespace orvex_soak
