/// @file
/// The device models: their names, USB product identifiers and command tables.
///
/// All tables are built when the library is loaded and never change; they may be read from any
/// thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

#include "include/qtr_orvex.h"
#include "log/export.h"

/// Command name to request prefix, in byte-wise order of the names.
using CommandTable = std::map<std::string, std::string>;

/// Every model's name, and a text for an unknown one.
extern ORVEX_API const std::unordered_map<OrvexType, std::string>& gl_type_names;
/// USB product identifier (under vendor 0x04D8) to model.
extern ORVEX_API const std::unordered_map<std::uint16_t, OrvexType>& gl_usb_pid_types;

/// Lamps, basic set: models 0 to 6.
extern ORVEX_API const CommandTable& gl_cmd_lamp;
/// Lamps, extended set: models 1 to 6, beside the basic one.
extern ORVEX_API const CommandTable& gl_cmd_lamp_ext;
/// Spruce, model 7.
extern ORVEX_API const CommandTable& gl_cmd_spruce;
/// Tamar, model 8.
extern ORVEX_API const CommandTable& gl_cmd_tamar;
/// Willow, model 9.
extern ORVEX_API const CommandTable& gl_cmd_willow;

namespace orvex {

/// The vendor of all devices on the USB.
constexpr std::uint16_t kUsbVendor = 0x04D8;

/// The commands of a model.
/// @throws DriverException "Not implemented/unknown device type" (ORVEX_ERR_INVALID_ARG)
[[nodiscard]] CommandTable commandsOf(OrvexType type);

/// What a model is: ORVEX_CAP_LAMP, with ORVEX_CAP_EXTENDED for the extended set; or ORVEX_CAP_LED.
/// @throws DriverException as commandsOf
[[nodiscard]] std::uint32_t capabilitiesOf(OrvexType type);

}  // namespace orvex
