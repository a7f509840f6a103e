#include "tools/orvexctl/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace orvex::tools {

namespace {

struct Colour {
    double wavelength;
    std::array<double, 3> rgb;
};

/// The spectrum's corners; between them colours mix. Beyond the visible range the last ones stay.
constexpr Colour kSpectrum[] = {
    {380, {0.45, 0.0, 0.55}}, {440, {0.0, 0.0, 1.0}}, {490, {0.0, 1.0, 1.0}},
    {510, {0.0, 1.0, 0.0}},   {580, {1.0, 1.0, 0.0}}, {645, {1.0, 0.0, 0.0}},
    {780, {0.45, 0.0, 0.0}},
};

std::array<double, 3> colourOf(double wavelength) {
    const auto* const above =
        std::find_if(std::begin(kSpectrum), std::end(kSpectrum),
                     [wavelength](const Colour& c) { return c.wavelength >= wavelength; });
    if (above == std::begin(kSpectrum)) {
        return above->rgb;
    }
    const Colour* const below = above - 1;
    if (above == std::end(kSpectrum)) {
        return below->rgb;
    }
    const double part = (wavelength - below->wavelength) / (above->wavelength - below->wavelength);
    std::array<double, 3> mixed{};
    for (std::size_t k = 0; k < mixed.size(); ++k) {
        mixed[k] = below->rgb[k] + part * (above->rgb[k] - below->rgb[k]);
    }
    return mixed;
}

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

bool outputIsTerminal() {
    return ::isatty(STDOUT_FILENO) == 1;
}

bool errorIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

bool inputIsTerminal() {
    return ::isatty(STDIN_FILENO) == 1;
}

bool hasTrueColour() {
    const std::string depth = variable("COLORTERM");
    return outputIsTerminal() && variable("NO_COLOR").empty() &&
           (depth == "truecolor" || depth == "24bit");
}

std::string swatch(int wavelength) {
    if (!hasTrueColour()) {
        return "";
    }
    std::string text = "\033[48;2";
    for (const double part : colourOf(wavelength)) {
        text += ";" + std::to_string(std::lround(part * 255));
    }
    return text + "m  \033[0m";
}

std::size_t displayWidth(const std::string& text) {
    std::size_t width = 0;
    bool escape = false;
    for (const char c : text) {
        if (c == '\033') {
            escape = true;
        } else if (escape) {
            escape = c == '[' || c == ';' || (c >= '0' && c <= '9');
        } else if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) {
            ++width;
        }
    }
    return width;
}

}  // namespace orvex::tools
