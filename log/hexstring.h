/// @file
/// Hexadecimal text of handles and numbers for log lines.
#pragma once

#include <ios>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>

#include "include/qtr_orvex.h"

namespace orvex {

/// Writes an integer as the number its bits make, so that one-byte types do not come out as
/// characters; a pointer in the stream's own notation ("0x…", null as "0").
template <typename T>
void writeNumber(std::ostream& out, T value) {
    static_assert(std::is_integral_v<T> || std::is_pointer_v<T>, "an integer or a pointer");
    if constexpr (std::is_pointer_v<T>) {
        out << reinterpret_cast<const void*>(value);
    } else if constexpr (std::is_same_v<T, bool>) {
        out << static_cast<unsigned>(value);
    } else {
        out << static_cast<unsigned long long>(static_cast<std::make_unsigned_t<T>>(value));
    }
}

}  // namespace orvex

/// Renders a number or pointer in hexadecimal.
///
/// @param value     any integer or pointer
/// @param prefix    begin with "0x"
/// @param lowercase lower-case digits (a pointer's digits are always lower-case)
/// @param zero_fill fill with zeros on the left to twice the value's size in bytes
/// @return the text; (pointer, true, false, false) gives "0x" and the digits, null gives "0x0"
template <typename T>
[[nodiscard]] std::string to_hexstring(T value, bool prefix, bool lowercase, bool zero_fill) {
    std::ostringstream out;
    if (prefix) {
        out << "0x";
    }
    if (zero_fill) {
        out.fill('0');
        out.width(static_cast<std::streamsize>(2 * sizeof(T)));
    }
    out << std::hex << (lowercase ? std::nouppercase : std::uppercase);
    orvex::writeNumber(out, value);
    std::string text = out.str();
    const bool doubled = text.compare(0, 4, "0x0x") == 0;
    const bool unwanted = !prefix && text.compare(0, 2, "0x") == 0;
    return doubled || unwanted ? text.substr(2) : text;
}

/// The one that the library contains: for handles.
extern template ORVEX_API std::string to_hexstring<void*>(void*, bool, bool, bool);
