#include "tools/orvex-sim/place.h"

#include <utility>

namespace orvex::tools {

namespace {

std::string kernelName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

TestbedPlace::TestbedPlace(sim::Testbed& testbed, OrvexType model, std::string path,
                           std::string terminal)
    : testbed_(testbed),
      identity_(sim::usbIdentityOf(model)),
      path_(std::move(path)),
      terminal_(std::move(terminal)) {
    identity_.kernelName = kernelName(path_);
}

void TestbedPlace::appear() {
    if (!isThere_) {
        testbed_.plug(identity_, terminal_);
        isThere_ = true;
    }
}

void TestbedPlace::vanish() {
    if (isThere_) {
        testbed_.unplug(path_);
        isThere_ = false;
    }
}

LinkPlace::LinkPlace(std::string path, std::string terminal)
    : link_(std::move(path), std::move(terminal)) {}

BarePlace::BarePlace(std::string terminal) : path_(std::move(terminal)) {}

}  // namespace orvex::tools
