#include "tools/orvexctl/status.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "include/qtr_orvex.h"

namespace orvex::tools {

namespace {

struct Status {
    std::uint32_t code;
    const char* name;
    ExitCode exit;
    const char* words;
    const char* advice;
};

constexpr const char* kAskDoctor = "orvexctl doctor tells what is wrong";
constexpr const char* kPlugAgain =
    "see that the light is switched on and plugged in; orvexctl doctor tells more";
constexpr const char* kCheckValue = "see the device's manual for the values that it takes";

constexpr Status kUnknown = {0, "", ExitCode::failure, "unknown status", kAskDoctor};

// clang-format off
constexpr Status kStatuses[] = {
    {ORVEX_OK, "ORVEX_OK", ExitCode::ok, "success", ""},
    {ORVEX_ERR_UNSPECIFIED, "ORVEX_ERR_UNSPECIFIED", ExitCode::failure, "an unspecified failure",
     kAskDoctor},
    {ORVEX_ERR_INVALID_ARG, "ORVEX_ERR_INVALID_ARG", ExitCode::usage,
     "an argument or a setting is invalid", ""},
    {ORVEX_ERR_INVALID_HANDLE, "ORVEX_ERR_INVALID_HANDLE", ExitCode::noDevice,
     "the device is gone", kPlugAgain},
    {ORVEX_ERR_BUFFER_TOO_SMALL, "ORVEX_ERR_BUFFER_TOO_SMALL", ExitCode::deviceError,
     "the device's reply is too long", kAskDoctor},
    {ORVEX_ERR_NO_HANDLE, "ORVEX_ERR_NO_HANDLE", ExitCode::noDevice,
     "the device is gone or its port is not open", kPlugAgain},
    {ORVEX_ERR_NOT_SUPPORTED, "ORVEX_ERR_NOT_SUPPORTED", ExitCode::usage,
     "the model does not have this command", "orvexctl commands lists those it has"},
    {ORVEX_ERR_RECV, "ORVEX_ERR_RECV", ExitCode::noAnswer,
     "the device did not answer in time, or not in full", kPlugAgain},
    {ORVEX_ERR_SEND, "ORVEX_ERR_SEND", ExitCode::deviceError,
     "the request could not be written to the port", kPlugAgain},
    {ORVEX_ERR_STRUCT_SIZE, "ORVEX_ERR_STRUCT_SIZE", ExitCode::failure,
     "the state record has the wrong size", "orvexctl and the library do not belong together"},
    {ORVEX_ERR_NO_DEVICE, "ORVEX_ERR_NO_DEVICE", ExitCode::noAnswer,
     "the port cannot be used or the device does not answer", kPlugAgain},
    {ORVEX_ERR_NO_RESPONSE, "ORVEX_ERR_NO_RESPONSE", ExitCode::noAnswer,
     "the device is there but does not answer requests", kPlugAgain},
    {ORVEX_ERR_IO, "ORVEX_ERR_IO", ExitCode::deviceError,
     "the device answered with its error reply, or the port failed", kCheckValue},
    {ORVEX_ERR_MAX_CHANNEL, "ORVEX_ERR_MAX_CHANNEL", ExitCode::deviceError,
     "the device reports more than 16 positions", kAskDoctor},
    {ORVEX_ERR_NOT_CONNECTED, "ORVEX_ERR_NOT_CONNECTED", ExitCode::deviceError,
     "the device is not connected", kPlugAgain},
};
// clang-format on

const Status& statusOf(std::uint32_t code) {
    const auto* const found = std::find_if(std::begin(kStatuses), std::end(kStatuses),
                                           [code](const Status& one) { return one.code == code; });
    return found != std::end(kStatuses) ? *found : kUnknown;
}

std::string hexadecimal(std::uint32_t code) {
    char text[sizeof "0x00000000"];
    std::snprintf(text, sizeof text, "0x%08X", code);
    return text;
}

}  // namespace

std::string statusName(std::uint32_t status) {
    return statusOf(status).name;
}

Failure statusFailure(std::uint32_t status, const std::string& what, const std::string& detail) {
    const Status& known = statusOf(status);
    std::string text =
        what + " failed: " + known.words + " (" + known.name + ", " + hexadecimal(status) + ")";
    if (!detail.empty()) {
        text += "\n  the library says: " + detail;
    }
    return {known.exit, text, known.advice};
}

}  // namespace orvex::tools
