/// @file
/// Where clients find a simulated port.
#pragma once

#include <string>

#include "sim/testbed.h"
#include "tools/orvex-sim/published_link.h"

namespace orvex::tools {

/// A port's path for clients; may come and go with the device.
class Place {
  public:
    virtual ~Place() = default;
    [[nodiscard]] virtual const std::string& path() const noexcept = 0;
    virtual void appear() = 0;
    virtual void vanish() = 0;
};

/// A port in udev's eyes.
class TestbedPlace final : public Place {
  public:
    /// @param path "/dev/ttyACM0"  @param terminal what is behind it
    TestbedPlace(sim::Testbed& testbed, OrvexType model, std::string path, std::string terminal);

    [[nodiscard]] const std::string& path() const noexcept override { return path_; }
    void appear() override;
    void vanish() override;

  private:
    sim::Testbed& testbed_;
    sim::UsbIdentity identity_;
    const std::string path_;
    const std::string terminal_;
    bool isThere_ = false;
};

/// A link in the file system, which stays while the device is pulled out and leads into nowhere.
class LinkPlace final : public Place {
  public:
    /// @throws Failure
    LinkPlace(std::string path, std::string terminal);

    [[nodiscard]] const std::string& path() const noexcept override { return link_.path(); }
    void appear() override {}
    void vanish() override {}

  private:
    PublishedLink link_;
};

/// The terminal itself.
class BarePlace final : public Place {
  public:
    explicit BarePlace(std::string terminal);

    [[nodiscard]] const std::string& path() const noexcept override { return path_; }
    void appear() override {}
    void vanish() override {}

  private:
    const std::string path_;
};

}  // namespace orvex::tools
