#include "api/driver_exception.h"

#include <sstream>
#include <utility>

namespace {

std::string hexadecimal(int code) {
    std::ostringstream text;
    text << std::hex << static_cast<std::uint32_t>(code);
    return text.str();
}

}  // namespace

DriverException::DriverException()
    : message_("nuv::DriverException has been thrown without err_code."),
      error_code_(ORVEX_ERR_UNSPECIFIED) {}

DriverException::DriverException(int const& code)
    : message_("DriverException (0x" + hexadecimal(code) + ") "),
      error_code_(static_cast<std::uint32_t>(code)) {}

DriverException::DriverException(std::string text, int code)
    : message_("DriverException (0x" + hexadecimal(code) + "): " + std::move(text)),
      error_code_(static_cast<std::uint32_t>(code)) {}

DriverException::~DriverException() = default;

const char* DriverException::what() const noexcept {
    return message_.c_str();
}

std::uint32_t DriverException::error_code() const noexcept {
    return error_code_;
}

namespace orvex {

void raise(std::uint32_t code) {
    throw DriverException(static_cast<int>(code));
}

void raise(std::string text, std::uint32_t code) {
    throw DriverException(std::move(text), static_cast<int>(code));
}

}  // namespace orvex
