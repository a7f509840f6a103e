/// @file
/// A light opened with LightDevice, the library's own class: also models that a scan does not find.
#pragma once

#include <algorithm>
#include <string>
#include <utility>

#include "light.h"
#include "qtr_orvex/api/driver_exception.h"
#include "qtr_orvex/device/light_device.h"
#include "qtr_orvex/discovery/port_discovery.h"

class OpenDevice {
  public:
    /// Opens the light of a model on a port. Null for either takes what a scan finds: the first
    /// port in alphabetical order.
    OpenDevice(const char* model, const char* port) : OpenDevice(find(model, port)) {}
    OpenDevice(const OpenDevice&) = delete;
    OpenDevice& operator=(const OpenDevice&) = delete;
    ~OpenDevice() {
        if (isOpen_) {  // A light whose opening failed is not closed.
            device_.closeConnection(false);
        }
    }

    [[nodiscard]] std::string port() const { return device_.getComPort(); }

    /// Sends a command. @return the reply without its carriage return
    std::string ask(const std::string& name, const std::string& value = "") {
        std::string reply;
        attempt(name, [&] { device_.executeCommand(name, reply, value); });
        return reply.substr(0, reply.find('\r'));
    }
    /// Sends a command, and again when it fails. @return whether it was carried out
    bool insist(const std::string& name) {
        for (int attempts = 3; attempts > 0; --attempts) {
            try {
                ask(name);
                return true;
            } catch (const LightError& e) {
                std::fprintf(stderr, "%s\n", e.what());
            }
        }
        return false;
    }

  private:
    using Place = std::pair<std::string, OrvexType>;

    explicit OpenDevice(const Place& place) : device_(place.second, place.first) {
        attempt("opening", [this] { isOpen_ = device_.openConnection(9600) != nullptr; });
        if (!isOpen_) {
            throw LightError(port(), "opening", ORVEX_ERR_NO_DEVICE);
        }
    }

    static OrvexType modelNamed(const std::string& name) {
        for (const auto& [model, modelName] : gl_type_names) {
            if (modelName == name) {
                return model;
            }
        }
        throw std::runtime_error("there is no model " + name + "\n  try: orvex-sim models");
    }
    static Place find(const char* model, const char* port) {
        if (model != nullptr && port != nullptr) {
            return {port, modelNamed(model)};
        }
        Place first;
        for (const auto& [foundPort, type] : getComMapping()) {
            const bool fits = (port == nullptr || foundPort == port) &&
                              (model == nullptr || type == modelNamed(model));
            if (fits && (first.first.empty() || foundPort < first.first)) {
                first = {foundPort, type};
            }
        }
        if (first.first.empty()) {
            throw LightError(port != nullptr ? port : "any port", "finding a light",
                             ORVEX_ERR_NO_DEVICE);
        }
        return first;
    }

    /// Failures of the library tell no port: it is added.
    template <typename Action>
    void attempt(const std::string& what, Action action) const {
        try {
            action();
        } catch (const DriverException& e) {
            throw LightError(port(), what, e.error_code());
        }
    }

    LightDevice device_;
    bool isOpen_ = false;
};
