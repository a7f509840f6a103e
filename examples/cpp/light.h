/// @file
/// An open light source in C++: closed at the end of its scope, failures are exceptions.
#pragma once

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "../c/status_text.h"
#include "qtr_orvex.h"

/// What failed, on which port, and what to try next.
class LightError : public std::runtime_error {
  public:
    LightError(const std::string& port, const std::string& what, std::uint32_t status)
        : std::runtime_error(port + ": " + what + " failed with " + hexadecimal(status) + ": " +
                             status_text(status)) {}

  private:
    static std::string hexadecimal(std::uint32_t status) {
        char text[16];
        std::snprintf(text, sizeof text, "0x%08X", status);
        return text;
    }
};

class Light {
  public:
    /// Opens the light on a port; null: the first one found.
    explicit Light(const char* port) : port_(port != nullptr ? port : "any port") {
        check("opening", ORVEX_OpenDevice(&handle_, ORVEX_TYPE_UNDEFINED, port, 9600));
        port_ = portOf(handle_);
        isLed_ = (state().iCapabilities & ORVEX_CAP_LED) != 0;
    }
    /// Opens a light that a scan has found.
    explicit Light(std::uint64_t handle) : handle_(handle), port_(portOf(handle)) {
        check("opening", ORVEX_OpenDeviceEx(handle));
        isLed_ = (state().iCapabilities & ORVEX_CAP_LED) != 0;
    }
    Light(const Light&) = delete;
    Light& operator=(const Light&) = delete;
    /// Not reached when the opening has failed: such a light is not closed.
    ~Light() { ORVEX_CloseDevice(handle_); }

    /// Of a light that need not be open.
    static std::string portOf(std::uint64_t handle) {
        char port[64] = "?";
        ORVEX_GetDeviceInfo(handle, nullptr, port, sizeof port, nullptr);
        return port;
    }
    [[nodiscard]] const std::string& port() const { return port_; }
    /// False: a lamp behind a shutter.
    [[nodiscard]] bool isLed() const { return isLed_; }

    /// Sends a command. @return the reply without its carriage return
    std::string command(const char* name, const std::string& value = "") {
        char reply[256];
        check(name,
              ORVEX_ExecuteCommandWithValue(handle_, name, reply, sizeof reply, value.c_str()));
        const std::string text(reply);
        return text.substr(0, text.find('\r'));
    }

    [[nodiscard]] OrvexStruct state() const {
        OrvexStruct record{};
        record.iSize = sizeof record;
        check("reading the state", ORVEX_GetOVStruct(handle_, &record));
        return record;
    }
    void apply(const OrvexStruct& record) {
        check("applying a state", ORVEX_SetOVStruct(handle_, &record));
    }
    /// Switches what a record has selected.
    void switchSelected(bool on) {
        check(on ? "switching on" : "switching off", ORVEX_SwitchOrvex(handle_, true, on));
    }

    /// Dark, whatever went before: a failed request is repeated.
    void switchOff() {
        constexpr int kAttempts = 3;
        for (int attempt = 1;; ++attempt) {
            try {
                command(isLed_ ? "TurnAllLedOff" : "CloseShutter");
                return;
            } catch (const LightError& e) {
                if (attempt == kAttempts) {
                    throw std::runtime_error(std::string(e.what()) + "\n" + port_ +
                                             ": the light may still be on!");
                }
            }
        }
    }

  private:
    void check(const std::string& what, std::uint32_t status) const {
        if (status != ORVEX_OK) {
            throw LightError(port_, what, status);
        }
    }

    std::uint64_t handle_ = 0;
    std::string port_;
    bool isLed_ = false;
};

/// Switches a light off at the end of its scope, also when an exception ends it.
class DarkAtEnd {
  public:
    explicit DarkAtEnd(Light& light) : light_(light) {}
    DarkAtEnd(const DarkAtEnd&) = delete;
    DarkAtEnd& operator=(const DarkAtEnd&) = delete;
    ~DarkAtEnd() {
        if (!isDark_) {
            try {
                light_.switchOff();
            } catch (const std::exception& e) {
                std::fprintf(stderr, "%s\n", e.what());
            }
        }
    }
    /// Now; a failure is thrown.
    void switchOff() {
        isDark_ = true;
        light_.switchOff();
    }

  private:
    Light& light_;
    bool isDark_ = false;
};
