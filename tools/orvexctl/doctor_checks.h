/// @file
/// What the doctor looks at.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/usb_lights.h"

namespace orvex::tools {

/// Where the system is looked at.
struct Roots {
    std::filesystem::path sys = "/sys";
    std::filesystem::path proc = "/proc";
    std::filesystem::path dev = "/dev";
};

/// What one check has found.
struct Finding {
    enum class Result { ok, warning, failed, skipped };

    std::string check;  ///< "usb", "port", "permission", "holder", "modemmanager", "answer"
    Result result = Result::ok;
    std::string text;
    std::string advice{};          ///< What to do; only when all is not well.
    ExitCode code = ExitCode::ok;  ///< What the program ends with because of it.
};

/// One light, or the place where one should be.
struct Examination {
    std::string model;  ///< Empty: no light.
    std::string port;   ///< Empty: it has none.
    std::vector<Finding> findings;
};

/// A finding for each light on the USB, or one that there is none.
[[nodiscard]] std::vector<Examination> examineUsb(const Roots& roots);

/// The checks of a port, up to the light's answer.
void examinePort(Examination& examination, OrvexType model, const Roots& roots, bool force);

/// The exit code for all findings together: the first failed one's, or else the first warning's.
[[nodiscard]] ExitCode codeOf(const std::vector<Examination>& examinations);

}  // namespace orvex::tools
