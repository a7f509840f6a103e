/// @file
/// What the program's output goes to.
#pragma once

#include <cstddef>
#include <string>

namespace orvex::tools {

/// Whether standard output is a terminal; likewise standard error and standard input.
[[nodiscard]] bool outputIsTerminal();
[[nodiscard]] bool errorIsTerminal();
[[nodiscard]] bool inputIsTerminal();

/// Whether the output can show any colour: a terminal that says so, and NO_COLOR is not set.
[[nodiscard]] bool hasTrueColour();

/// A patch in the colour of a wavelength, two columns wide; empty without true colour.
[[nodiscard]] std::string swatch(int wavelength);

/// How many columns a text takes on a terminal: escape sequences take none.
[[nodiscard]] std::size_t displayWidth(const std::string& text);

}  // namespace orvex::tools
