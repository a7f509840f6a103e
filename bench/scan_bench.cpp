// Scanning for devices against a bare loop over what udev tells.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "api/device_registry.h"
#include "bench/machine.h"
#include "bench/processors.h"
#include "bench/rounds.h"
#include "discovery/port_discovery.h"
#include "discovery/udev_objects.h"

using orvex_bench::Machine;
using orvex_bench::Rounds;

namespace {

/// An application's list of handles.
class Application {
  public:
    explicit Application(std::size_t slots) : handles_(slots) {}

    void scan() {
        std::uint32_t found = 0;
        ORVEX_ScanDevices(handles_.data(), static_cast<std::uint32_t>(handles_.size()), &found);
        if (found != handles_.size()) {
            throw std::runtime_error("devices are missing");
        }
    }
    void forget() {
        gl_devs.clear();
        std::fill(handles_.begin(), handles_.end(), 0);
    }

  private:
    std::vector<std::uint64_t> handles_;
};

std::size_t lengthOf(const char* text) {
    return text != nullptr ? std::string(text).size() : 0;
}

/// What a port's attributes cost: the same requests to udev in the same order, no more.
std::size_t readPort(udev* context, const char* path) {
    const orvex::UdevDevice device(udev_device_new_from_syspath(context, path));
    if (std::string(path).find("ttyACM") == std::string::npos) {
        return 0;
    }
    std::size_t read = lengthOf(udev_device_get_devnode(device.get()));
    udev_device* usb =
        udev_device_get_parent_with_subsystem_devtype(device.get(), "usb", "usb_device");
    for (const char* name : {"idVendor", "idProduct", "product"}) {
        read += lengthOf(udev_device_get_sysattr_value(usb, name));
    }
    return read;
}

std::size_t readAllPorts() {
    std::size_t read = 0;
    const orvex::Udev context(udev_new());
    const orvex::UdevEnumeration enumeration(udev_enumerate_new(context.get()));
    udev_enumerate_add_match_subsystem(enumeration.get(), "tty");
    udev_enumerate_scan_devices(enumeration.get());
    for (udev_list_entry* entry = udev_enumerate_get_list_entry(enumeration.get());
         entry != nullptr; entry = udev_list_entry_get_next(entry)) {
        read += readPort(context.get(), udev_list_entry_get_name(entry));
    }
    return read;
}

void scan(benchmark::State& state) {
    const auto devices = static_cast<int>(state.range(0));
    ORVEX_SetLogBits(0);
    const Machine machine(devices);
    Application first(static_cast<std::size_t>(devices));
    Application later(static_cast<std::size_t>(devices));
    orvex_bench::stayOn(0);
    for (auto _ : state) {
        const Rounds rounds({{"floor", [](int) { benchmark::DoNotOptimize(readAllPorts()); }},
                             {"mapping", [](int) { benchmark::DoNotOptimize(getComMapping()); }},
                             {"first",
                              [&](int) {
                                  orvex_bench::exclude([&] { first.forget(); });
                                  first.scan();
                              }},
                             {"repeated",
                              [&](int) {
                                  orvex_bench::exclude([&] {
                                      later.forget();
                                      later.scan();
                                  });
                                  later.scan();
                              }}},
                            1, std::max(3, orvex_bench::roundsWanted() * 2 / (10 + devices / 8)));
        rounds.tell(state);
        state.counters["reconciliation_share"] = 1 - 1 / rounds.ratio(3, 1);
    }
    gl_devs.clear();
}
BENCHMARK(scan)->Arg(8)->Arg(64)->Arg(512)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
