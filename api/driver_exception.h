/// @file
/// The one exception type of the library.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "include/qtr_orvex.h"

/// A failure inside the library: a status code and a ready-made text. The exported calls catch it
/// and return the code; it never crosses them.
class ORVEX_API DriverException : public std::exception {
  public:
    /// A failure without a code: ORVEX_ERR_UNSPECIFIED.
    DriverException();
    /// A failure whose circumstance is already logged; the text holds the code alone.
    explicit DriverException(int const& code);
    /// A failure with a text of its own behind the code.
    DriverException(std::string text, int code);

    /// Frees the text.
    ~DriverException() override;

    /// The whole text; valid as long as the exception.
    [[nodiscard]] const char* what() const noexcept override;
    /// The status code, one of ORVEX_ERR_….
    [[nodiscard]] std::uint32_t error_code() const noexcept;

  private:
    std::string message_;
    std::uint32_t error_code_;
};

namespace orvex {

/// Throws a DriverException for a failure that is already logged.
[[noreturn]] void raise(std::uint32_t code);
/// Throws a DriverException with a text that names the failing operation.
[[noreturn]] void raise(std::string text, std::uint32_t code);

}  // namespace orvex
