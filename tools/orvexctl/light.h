/// @file
/// One opened light, whether a scan finds its model or not.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"
#include "tools/common/models.h"

namespace orvex::tools {

/// What a program has switched on and not off again.
struct SwitchedOn {
    bool lamp = false;
    bool shutter = false;
    std::set<int> positions;

    [[nodiscard]] bool any() const { return lamp || shutter || !positions.empty(); }
};

/// A light source. Everything that fails throws a Failure that names the command and the port.
class Light {
  public:
    Light(const Light&) = delete;
    Light& operator=(const Light&) = delete;
    /// Releases the port; sends nothing.
    virtual ~Light() = default;

    [[nodiscard]] OrvexType model() const noexcept { return model_; }
    [[nodiscard]] const std::string& port() const noexcept { return port_; }
    [[nodiscard]] const CommandTable& commands() const noexcept { return commands_; }
    [[nodiscard]] bool knows(const std::string& command) const;
    /// "Tamar on /dev/ttyACM0"
    [[nodiscard]] std::string title() const;

    void open();
    /// Whether the library could read the whole state: not of a Rowan or a Spruce.
    [[nodiscard]] bool isComplete() const noexcept { return complete_; }
    /// Sends the model's closing requests and releases the port. Failures are left to the log.
    void close();

    /// Sends a command of the model. @return the reply without its carriage return
    std::string command(const std::string& name, const std::string& value = {});
    /// A question that has as many numbers for an answer as there are positions.
    [[nodiscard]] std::vector<int> numbers(const std::string& name);
    /// Every position's wavelength; none for models with a lamp.
    [[nodiscard]] const std::vector<int>& wavelengths();
    /// The positions (from 1) with an LED: slot k of the record is the k-th of them.
    [[nodiscard]] std::vector<int> fittedPositions();

    /// The library's state record, in agreement with the device.
    [[nodiscard]] OrvexStruct record();
    /// The record as it is, without asking the device.
    [[nodiscard]] OrvexStruct cachedRecord();
    /// Sends what differs.
    void apply(const OrvexStruct& record);

    [[nodiscard]] const SwitchedOn& switchedOn() const noexcept { return switchedOn_; }
    /// Switches off what this program has switched on.
    void switchOffAgain();

  protected:
    Light(OrvexType model, std::string port);

  private:
    virtual std::uint32_t doOpen() = 0;
    virtual std::uint32_t doExecute(const std::string& name, const std::string& value,
                                    std::string& reply) = 0;
    virtual std::uint32_t doRead(OrvexStruct& record) = 0;
    virtual std::uint32_t doWrite(const OrvexStruct& record) = 0;
    virtual void doClose() = 0;

    void synchronise(OrvexStruct& record);
    void note(const std::string& command, const std::string& value);
    void note(const OrvexStruct& before, const OrvexStruct& after);
    [[nodiscard]] std::string onPort(const std::string& what) const;

    OrvexType model_;
    std::string port_;
    CommandTable commands_;
    bool complete_ = false;
    bool fresh_ = false;  ///< Nothing has happened since the library read the state.
    std::vector<int> wavelengths_;
    SwitchedOn switchedOn_;
};

/// A light that a scan has found; through the library's exported calls.
[[nodiscard]] std::unique_ptr<Light> lightByHandle(std::uint64_t handle, OrvexType model,
                                                   const std::string& port);

/// A light of any model on any port.
[[nodiscard]] std::unique_ptr<Light> lightByPath(OrvexType model, const std::string& port);

}  // namespace orvex::tools
