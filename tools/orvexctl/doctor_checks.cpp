#include "tools/orvexctl/doctor_checks.h"

#include <chrono>
#include <cstdio>

#include "tools/common/models.h"
#include "tools/orvexctl/attached.h"
#include "tools/orvexctl/light.h"
#include "tools/orvexctl/port_access.h"
#include "tools/orvexctl/port_holders.h"
#include "tools/orvexctl/replies.h"
#include "tools/orvexctl/udev.h"

namespace orvex::tools {

namespace {

using Result = Finding::Result;

std::string title(const UsbLight& light) {
    return light.identity + (light.product.empty() ? "" : " \"" + light.product + "\"");
}

Finding checkUsb(const UsbLight& light) {
    if (light.model) {
        return {"usb", Result::ok, "USB device " + title(light) + " is attached"};
    }
    return {"usb", Result::warning, "USB device " + title(light) + " is no light that a scan finds",
            "if it is a light, name it: --model NAME --port /dev/" +
                (light.tty.empty() ? "..." : light.tty),
            ExitCode::noDevice};
}

Finding noUsbDevice() {
    return {"usb", Result::failed, "no light on the USB; looked for " + lookedFor(),
            "plug it in and switch it on; try another cable or socket; lsusb and dmesg show what "
            "the system sees",
            ExitCode::noDevice};
}

Finding noTty() {
    return {"port", Result::failed, "the USB device has no serial port",
            "sudo modprobe cdc_acm, then plug in again; dmesg tells what the driver says",
            ExitCode::noDevice};
}

Finding checkPort(const std::string& port, const PortAccess& access) {
    if (!access.exists) {
        return {"port", Result::failed, "there is no " + port,
                "plug in again; see that udev runs (systemctl status systemd-udevd)",
                ExitCode::noDevice};
    }
    if (!access.isDevice) {
        return {"port", Result::failed, port + " is no serial port",
                "ports of lights look like /dev/ttyACM0", ExitCode::noDevice};
    }
    return {"port", Result::ok, port + " is there"};
}

Finding checkPermission(const std::string& port, const PortAccess& access) {
    if (access.allowed) {
        return {"permission", Result::ok, "user " + access.user + " may read and write it"};
    }
    return {"permission", Result::failed, refusalText(port, access), accessAdvice(access),
            ExitCode::permission};
}

Finding checkHolder(const std::string& port, const Roots& roots) {
    const std::vector<Process> holders = holdersOf(port, roots.proc);
    if (holders.empty()) {
        return {"holder", Result::ok, "no other program holds it"};
    }
    return {"holder", Result::failed, "held by " + describe(holders), "end that program",
            ExitCode::busy};
}

Finding checkModemManager(const std::string& port, const Roots& roots) {
    const std::vector<Process> running = processesNamed("ModemManager", roots.proc);
    if (running.empty() || isIgnoredByModemManager(port)) {
        return {"modemmanager", Result::ok,
                running.empty() ? "ModemManager does not run"
                                : "ModemManager runs and is told to leave it alone"};
    }
    return {"modemmanager", Result::warning,
            describe(running) + " runs and may probe the port after each plugging in",
            "sudo systemctl disable --now ModemManager, or this line in "
            "/etc/udev/rules.d/70-orvex.rules:\n"
            "  ATTRS{idVendor}==\"04d8\", ENV{ID_MM_DEVICE_IGNORE}=\"1\"",
            ExitCode::busy};
}

std::string milliseconds(std::chrono::duration<double, std::milli> time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f ms", time.count());
    return text;
}

/// Advice without sending the user to where it is given.
std::string withoutReferral(std::string advice) {
    const std::size_t referral = advice.find("orvexctl doctor");
    if (referral != std::string::npos) {
        advice.erase(referral);
        advice.erase(advice.find_last_not_of("; ") + 1);
    }
    return advice;
}

/// Opens the light and asks it for its version. A lamp's shutter is left as it is.
Finding checkAnswer(const std::string& port, OrvexType model) {
    constexpr const char* kQuestion = "GetSoftwareVersion";
    try {
        const std::unique_ptr<Light> light = lightByPath(model, port);
        light->open();
        const auto asked = std::chrono::steady_clock::now();
        const std::string reply = printable(light->command(kQuestion));
        const auto time = std::chrono::steady_clock::now() - asked;
        if (light->knows("Disconnect")) {
            light->close();
        }
        return {
            "answer", Result::ok,
            "the light answers in " + milliseconds(time) + " (" + kQuestion + ": " + reply + ")"};
    } catch (const Failure& failure) {
        return {"answer", Result::failed, failure.what(), withoutReferral(failure.advice()),
                failure.code()};
    }
}

Finding skipped(const char* check, const char* text) {
    return {check, Result::skipped, text};
}

bool anyFailed(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        if (finding.result == Result::failed) {
            return true;
        }
    }
    return false;
}

ExitCode firstCode(const std::vector<Examination>& examinations, Result result) {
    for (const Examination& examination : examinations) {
        for (const Finding& finding : examination.findings) {
            if (finding.result == result) {
                return finding.code;
            }
        }
    }
    return ExitCode::ok;
}

}  // namespace

std::vector<Examination> examineUsb(const Roots& roots) {
    std::vector<Examination> examinations;
    for (const UsbLight& light : usbLights(roots.sys)) {
        const std::string port = light.tty.empty() ? "" : (roots.dev / light.tty).string();
        Examination examination{
            light.model ? modelName(*light.model) : "", port, {checkUsb(light)}};
        if (light.model && port.empty()) {
            examination.findings.push_back(noTty());
        }
        examinations.push_back(examination);
    }
    if (examinations.empty()) {
        examinations.push_back({"", "", {noUsbDevice()}});
    }
    return examinations;
}

void examinePort(Examination& examination, OrvexType model, const Roots& roots, bool force) {
    const std::string& port = examination.port;
    std::vector<Finding>& findings = examination.findings;
    const PortAccess access = accessTo(port);
    findings.push_back(checkPort(port, access));
    if (access.exists && access.isDevice) {
        findings.push_back(checkPermission(port, access));
        findings.push_back(checkHolder(port, roots));
    }
    findings.push_back(checkModemManager(port, roots));
    const bool usable = !anyFailed(findings) || (force && access.allowed);
    findings.push_back(usable ? checkAnswer(port, model)
                              : skipped("answer", "not asked: see above"));
}

ExitCode codeOf(const std::vector<Examination>& examinations) {
    const ExitCode failed = firstCode(examinations, Result::failed);
    return failed != ExitCode::ok ? failed : firstCode(examinations, Result::warning);
}

}  // namespace orvex::tools
