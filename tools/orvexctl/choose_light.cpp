#include "tools/orvexctl/choose_light.h"

#include <algorithm>

#include "tools/common/nearest.h"
#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/port_access.h"
#include "tools/orvexctl/port_link.h"

namespace orvex::tools {

namespace {

constexpr const char* kChoose = "choose one with -d; orvexctl list shows them";

std::string titles(const std::vector<AttachedLight>& lights) {
    std::string text;
    for (const AttachedLight& light : lights) {
        text += (text.empty() ? "" : ", ") + std::to_string(light.number) + ": " +
                modelName(light.model) + " on " + light.port;
    }
    return text;
}

bool means(const std::string& device, const AttachedLight& light) {
    return device.empty() || leadsTo(device, light.port) ||
           device == std::to_string(light.number) ||
           lowerCase(device) == lowerCase(modelName(light.model));
}

[[noreturn]] void failNoLight() {
    throw Failure(ExitCode::noDevice, "no light found; looked for " + lookedFor(),
                  "orvexctl doctor tells why; other models need --model NAME --port PATH");
}

[[noreturn]] void failNoMatch(const std::string& device,
                              const std::vector<AttachedLight>& attached) {
    throw Failure(
        ExitCode::noDevice,
        "no light \"" + device + "\"; attached: " + (attached.empty() ? "none" : titles(attached)),
        "-d takes a port, a model's name or a number of orvexctl list");
}

std::unique_ptr<Light> lightOfModel(const CommonOptions& options) {
    if (!options.device.empty()) {
        throw Failure(ExitCode::usage, "--device and --model/--port cannot be given together");
    }
    if (options.port.empty() || options.model.empty()) {
        throw Failure(ExitCode::usage, options.port.empty() ? "--model needs --port as well"
                                                            : "--port needs --model as well");
    }
    const OrvexType model = requireModel(options.model);
    const std::string port = portBehind(options.port);
    if (!isPortName(port)) {
        throw Failure(ExitCode::usage,
                      "the library opens no port without \"tty\" in its path: " + port +
                          " (ORVEX_ERR_INVALID_ARG)",
                      "ports of lights look like /dev/ttyACM0");
    }
    requireUsable(port, options.force);
    return lightByPath(model, port);
}

}  // namespace

AttachedLight chooseAttached(const std::string& device) {
    const std::vector<AttachedLight> attached = attachedLights();
    std::vector<AttachedLight> meant;
    std::copy_if(attached.begin(), attached.end(), std::back_inserter(meant),
                 [&](const AttachedLight& light) { return means(device, light); });
    if (attached.empty() && device.empty()) {
        failNoLight();
    }
    if (meant.empty()) {
        failNoMatch(device, attached);
    }
    if (meant.size() > 1) {
        throw Failure(ExitCode::usage, "which light? " + titles(meant), kChoose);
    }
    return meant.front();
}

OrvexType requireModel(const std::string& name) {
    const std::optional<OrvexType> model = modelNamed(name);
    if (!model) {
        throw Failure(ExitCode::usage, unknownModelText(name));
    }
    return *model;
}

OrvexType chosenModel(const CommonOptions& options) {
    return options.model.empty() ? chooseAttached(options.device).model
                                 : requireModel(options.model);
}

std::unique_ptr<Light> openChosenLight(const CommonOptions& options) {
    std::unique_ptr<Light> light;
    if (!options.model.empty() || !options.port.empty()) {
        light = lightOfModel(options);
    } else {
        const AttachedLight attached = chooseAttached(options.device);
        requireUsable(attached.port, options.force);
        light = lightByHandle(attached.handle, attached.model, attached.port);
    }
    light->open();
    return light;
}

void withLight(const CommonOptions& options, const std::function<void(Light&)>& action) {
    const std::unique_ptr<Light> light = openChosenLight(options);
    const auto finish = [&] {
        if (!options.keepOpen) {
            light->close();
        }
    };
    try {
        action(*light);
    } catch (...) {
        finish();
        throw;
    }
    finish();
}

}  // namespace orvex::tools
