/// @file
/// Random calls against devices that come, go and fail.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/soak/device_model.h"
#include "tests/soak/random.h"
#include "tests/soak/wire.h"

namespace orvex_soak {

/// How often things happened.
struct Figures {
    std::size_t steps = 0;
    std::size_t failures = 0;  ///< Calls that returned a status other than ORVEX_OK.
    std::size_t faults = 0;    ///< Set up for a call; not each of them comes to pass.
    std::size_t plugged = 0;
    std::size_t unplugged = 0;
    std::size_t opened = 0;
    std::size_t scans = 0;
};

/// The library between simulated devices and a caller that does what the seed says. After every
/// step everything the library tells must be what the model says.
class Rig {
  public:
    explicit Rig(std::uint64_t seed) : random_(seed) {}

    /// @throws Mismatch
    void step();
    /// Takes all devices away and lets the library notice.
    /// @throws Mismatch when something is left
    void empty();

    /// What the last step did.
    [[nodiscard]] const std::string& action() const noexcept { return action_; }
    [[nodiscard]] const Figures& figures() const noexcept { return figures_; }
    [[nodiscard]] std::size_t exchanges() const;

  private:
    using Path = std::string;
    struct Socket {
        bool isCedar = false;  ///< How udev lists it: a Cedar or a Tamar.
    };
    struct OpenRequest {
        OrvexType type = ORVEX_TYPE_UNDEFINED;
        Path port;
        unsigned baud = 0;
    };

    // rig.cpp: the devices' side
    void plugIn();
    void unplugOne();
    void unplugEnded();
    void faultFor(const Path& path, bool opening);
    void deviceFaultFor(Port& port, bool mayHangUp);
    void clearFaults();
    [[nodiscard]] orvex::sim::DeviceSetup randomSetup(OrvexType model);
    [[nodiscard]] OrvexType modelFor(const Path& path);

    // rig_scan.cpp: calls that change the registry
    void scan();
    void scanWrongly();
    void underUdev(const std::function<void()>& call);
    void followScan();
    void adopt(const Path& path, OrvexType model);
    void checkSlots(const std::vector<std::uint64_t>& before, std::uint32_t length);

    // rig_open.cpp: opening by model and port
    void openAny();
    [[nodiscard]] OpenRequest randomOpenRequest();
    [[nodiscard]] std::vector<DeviceModel*> candidates(OrvexType type, const Path& port);
    [[nodiscard]] std::size_t fittingAfterScan(OrvexType type) const;
    void checkOpened(const OpenRequest& request, std::uint32_t status, std::uint64_t handle);

    // rig_calls.cpp: calls on one device
    void open();
    void close();
    void execute();
    void setRecord();
    void switchLight();
    void askInfo();
    void useWrongHandle();
    void useWrongArguments();
    void changeLog();
    [[nodiscard]] std::string randomCommand(OrvexType model);
    [[nodiscard]] std::string randomValue(const std::string& command);
    [[nodiscard]] OrvexStruct randomRecord(const DeviceModel& device);
    void checkDeviceFollows(const DeviceModel& device, const std::vector<Event>& events) const;

    // rig_checks.cpp
    void checkAll();
    void checkDevice(const DeviceModel& device) const;
    void expectStatus(std::uint32_t actual, std::uint32_t expected);
    void expectQuiet(const Path& except = {});
    [[nodiscard]] DeviceModel* anyDevice(std::size_t connectedChance = 90);
    [[nodiscard]] Transcript transcriptOf(const Path& path);
    [[nodiscard]] std::uint64_t wrongHandle();

    Random random_;
    mutable Wire wire_;
    std::map<Path, Socket> sockets_;
    std::map<Path, DeviceModel> devices_;  ///< The registry as it must be.
    std::array<std::uint64_t, 8> slots_{};
    std::deque<std::uint64_t> gone_;  ///< Handles of devices that are no more.
    bool faulty_ = false;             ///< A fault is set up for this step.
    std::string action_;
    Figures figures_;
};

}  // namespace orvex_soak
