// orvex-sim models: what can be simulated.
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "sim/device_state.h"
#include "sim/testbed.h"
#include "tools/common/models.h"
#include "tools/orvex-sim/commands.h"
#include "tools/orvex-sim/failure.h"
#include "tools/orvex-sim/trace_text.h"

namespace orvex::tools {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kExamples = R"(Examples:
  orvex-sim models
  orvex-sim models Tamar
  orvex-sim models --json)";

struct Options {
    std::string name;
    bool json = false;
};

std::string kindOf(OrvexType model) {
    return speaksLampCommands(model) ? "lamp" : "LEDs";
}

/// "04d8:ea08"; empty when a scan does not find the model.
std::string usbOf(OrvexType model) {
    const sim::UsbIdentity identity = sim::usbIdentityOf(model);
    return isDiscovered(model) ? identity.vendor + ":" + identity.product : "";
}

/// The LED positions of a device that nobody has said anything about; 999 without an LED.
std::vector<int> wavelengthsOf(OrvexType model) {
    std::vector<int> wavelengths;
    if (!speaksLampCommands(model)) {
        sim::DeviceSetup setup;
        setup.model = model;
        for (const sim::Channel& channel : sim::initialState(setup).channels) {
            wavelengths.push_back(channel.wavelength);
        }
    }
    return wavelengths;
}

std::string positionsText(OrvexType model) {
    std::string text;
    for (const int wavelength : wavelengthsOf(model)) {
        text += text.empty() ? "" : " ";
        text += wavelength == ORVEX_EMPTY_POSITION ? "-" : std::to_string(wavelength);
    }
    return text.empty() ? "-" : text;
}

Json positionsJson(OrvexType model) {
    Json positions = Json::array();
    for (const int wavelength : wavelengthsOf(model)) {
        positions.push_back(wavelength == ORVEX_EMPTY_POSITION ? Json() : Json(wavelength));
    }
    return positions;
}

Json summary(OrvexType model) {
    const std::string usb = usbOf(model);
    return {{"model", modelName(model)},
            {"type", model},
            {"kind", speaksLampCommands(model) ? "lamp" : "led"},
            {"usb", usb.empty() ? Json() : Json(usb)},
            {"positions", positionsJson(model)},
            {"commandCount", commandsOfModel(model).size()}};
}

void printRow(const std::string& model, const std::string& kind, const std::string& commands,
              const std::string& usb, const std::string& positions) {
    std::cout << std::left << std::setw(8) << model << std::setw(6) << kind << std::setw(10)
              << commands << std::setw(17) << usb << positions << "\n";
}

void printModels() {
    printRow("Model", "Kind", "Commands", "Found by a scan", "Positions (nm)");
    for (const OrvexType model : allModels()) {
        const std::string usb = usbOf(model);
        printRow(modelName(model), kindOf(model), std::to_string(commandsOfModel(model).size()),
                 usb.empty() ? "no" : usb, positionsText(model));
    }
}

void printCommands(OrvexType model) {
    const CommandTable commands = commandsOfModel(model);
    const auto longest = std::max_element(
        commands.begin(), commands.end(),
        [](const auto& a, const auto& b) { return a.first.size() < b.first.size(); });
    const int width = static_cast<int>(longest->first.size()) + 2;
    for (const auto& [name, request] : commands) {
        std::cout << std::left << std::setw(width) << name << printable(request) << "\n";
    }
}

void printModelsJson() {
    Json models = Json::array();
    for (const OrvexType model : allModels()) {
        models.push_back(summary(model));
    }
    std::cout << models.dump(2) << "\n";
}

void printCommandsJson(OrvexType model) {
    Json object = summary(model);
    for (const auto& [name, request] : commandsOfModel(model)) {
        object["commands"].push_back({{"name", name}, {"request", request}});
    }
    std::cout << object.dump(2) << "\n";
}

int listModels(const Options& options) {
    if (options.name.empty()) {
        options.json ? printModelsJson() : printModels();
        return kDone;
    }
    const auto model = modelNamed(options.name);
    if (!model) {
        throw Failure(kBadInput, unknownModelText(options.name));
    }
    options.json ? printCommandsJson(*model) : printCommands(*model);
    return kDone;
}

}  // namespace

void addModels(CLI::App& app, Action& chosen) {
    CLI::App* command = app.add_subcommand("models", "List the models, or the commands of one");
    const auto options = std::make_shared<Options>();
    command->add_option("MODEL", options->name, "List this model's commands with their requests");
    command->add_flag("--json", options->json, "Print JSON");
    command->footer(kExamples);
    command->callback([options, &chosen] { chosen = [options] { return listModels(*options); }; });
}

}  // namespace orvex::tools
