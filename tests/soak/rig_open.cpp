// Opening by model and port.
#include <algorithm>

#include "tests/soak/refusal.h"
#include "tests/soak/rig.h"

namespace orvex_soak {

/// The devices that an open by model and port may take.
std::vector<DeviceModel*> Rig::candidates(OrvexType type, const Path& port) {
    std::vector<DeviceModel*> fitting;
    const bool anything = port.empty() && type == ORVEX_TYPE_UNDEFINED;
    for (auto& [path, device] : devices_) {
        const bool fits = (port.empty() || port == path) &&
                          (type == ORVEX_TYPE_UNDEFINED || type == device.type());
        if (fits && !(anything && device.openCount() != 0)) {
            fitting.push_back(&device);
        }
    }
    return fitting;
}

/// How many devices an open by model may take once it has scanned.
std::size_t Rig::fittingAfterScan(OrvexType type) const {
    return static_cast<std::size_t>(
        std::count_if(sockets_.begin(), sockets_.end(), [&](const auto& socket) {
            const auto device = devices_.find(socket.first);
            if (device == devices_.end()) {
                const OrvexType found = socket.second.isCedar ? ORVEX_TYPE_CEDAR : ORVEX_TYPE_TAMAR;
                return type == ORVEX_TYPE_UNDEFINED || type == found;
            }
            const bool isFree = device->second.openCount() == 0;
            return type == ORVEX_TYPE_UNDEFINED ? isFree : type == device->second.type();
        }));
}

/// Where several devices fit, the one taken depends on their addresses; the port is named then, so
/// that a run can be repeated.
Rig::OpenRequest Rig::randomOpenRequest() {
    OpenRequest request;
    request.type =
        random_.oneOf<OrvexType>({ORVEX_TYPE_UNDEFINED, ORVEX_TYPE_TAMAR, ORVEX_TYPE_CEDAR, 77});
    request.baud = random_.oneOf<unsigned>({9600, 115200, 9599, 0});
    const DeviceModel* const wanted = anyDevice();
    if (random_.percent(30)) {
        request.port = "/dev/ttyACM" + std::to_string(random_.between(0, 6));
    } else if (fittingAfterScan(request.type) > 1) {
        request.port = wanted != nullptr ? wanted->path() : "/dev/ttyACM0";
    }
    return request;
}

void Rig::openAny() {
    const OpenRequest request = randomOpenRequest();
    action_ = "open type " + std::to_string(request.type) + " at <" + request.port + "> with " +
              std::to_string(request.baud) + " baud";
    for (const auto& [path, socket] : sockets_) {
        if (request.port.empty() || request.port == path) {
            faultFor(path, false);
        }
    }
    const char* const port = request.port.empty() ? nullptr : request.port.c_str();
    std::uint64_t handle = 0;
    std::uint32_t status = 0;
    underUdev([&] { status = ORVEX_OpenDevice(&handle, request.type, port, request.baud); });
    followScan();
    checkOpened(request, status, handle);
}

void Rig::checkOpened(const OpenRequest& request, std::uint32_t status, std::uint64_t handle) {
    const std::vector<DeviceModel*> fit = candidates(request.type, request.port);
    if (fit.empty()) {
        expectQuiet();
        requireThat(handle == 0, "no handle may be given");
        return expectStatus(status, ORVEX_ERR_NO_DEVICE);
    }
    DeviceModel& device = *fit.front();
    Transcript transcript = transcriptOf(device.path());
    const std::uint32_t expected = device.open(request.baud, transcript);
    transcript.expectEnd();
    expectQuiet(device.path());
    expectStatus(status, expected);
    requireThat(handle == (expected == ORVEX_OK ? device.handle() : 0), "the handle is wrong");
    figures_.opened += expected == ORVEX_OK ? 1 : 0;
}

}  // namespace orvex_soak
