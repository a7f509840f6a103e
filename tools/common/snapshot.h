/// @file
/// A device's whole state as the tools read, print, record and simulate it.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"

namespace orvex::tools {

/// One channel position of a multi-LED source.
struct ChannelSnapshot {
    int position = 0;     ///< From 1.
    bool fitted = false;  ///< False: no LED; then only the position says something.
    std::string name;
    int wavelength = 0;  ///< nm
    int intensity = 0;   ///< Tenths of a per cent, as are the limits and the step.
    int minimum = 0;
    int maximum = 1000;
    int step = 0;  ///< 0: any value.
    int temperature = 0;
    int group = 0;  ///< 0: independent.
    bool on = false;
};

/// What a lamp tells.
struct LampSnapshot {
    int hours = 0;
    int intensity = 0;               ///< Per cent.
    std::optional<int> minimum;      ///< Per cent; basic lamps do not tell.
    std::optional<int> temperature;  ///< Basic lamps do not tell.
};

/// A device's state at one moment.
struct Snapshot {
    OrvexType type = ORVEX_TYPE_UNDEFINED;
    std::string port;
    std::string firmware;
    std::string serial;      ///< Empty when the model does not tell.
    std::string unitStatus;  ///< As the device answers it.
    std::uint32_t capabilities = 0;
    std::vector<ChannelSnapshot> channels;  ///< LED models: every position.
    std::optional<LampSnapshot> lamp;       ///< Lamps.
};

/// The JSON object that docs/json.md describes.
[[nodiscard]] nlohmann::ordered_json toJson(const Snapshot& snapshot);

/// Reads such an object back. Members that describe a moment only (port, temperature) may be
/// missing; unknown members are errors.
/// @throws std::invalid_argument with a text that names the member and what is wrong with it
[[nodiscard]] Snapshot snapshotFromJson(const nlohmann::json& object);

}  // namespace orvex::tools
