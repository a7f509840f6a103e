/// @file
/// Every model in one table: adding one takes a row here, and a table of commands in
/// command_tables.cpp if it speaks a dialect of its own.
///
/// The simulator and the tools read it, too: the library exports the tables of commands, but not
/// which model has which.
#pragma once

#include <cstdint>

#include "device/models.h"
#include "include/qtr_orvex.h"

namespace orvex {

struct Model {
    OrvexType type;
    const char* name;
    std::uint16_t usbProduct;      ///< Under vendor 0x04D8; 0: not found by discovery.
    const CommandTable* commands;  ///< None: no device can be made of it.
    const CommandTable* moreCommands;
    std::uint32_t capabilities;
};

namespace model_table {
constexpr const CommandTable* none = nullptr;
constexpr std::uint32_t kBasic = ORVEX_CAP_LAMP;
constexpr std::uint32_t kExtended = ORVEX_CAP_LAMP | ORVEX_CAP_EXTENDED;
constexpr std::uint32_t kLeds = ORVEX_CAP_LED;

// Rowan speaks the lamps' commands and is nevertheless read out like a multi-LED source.
// clang-format off
inline const Model kModels[] = {
    {ORVEX_TYPE_ALDER,     "Alder",            0,      &gl_cmd_lamp,   none,             kBasic},
    {ORVEX_TYPE_BIRCH,     "Birch",            0,      &gl_cmd_lamp,   &gl_cmd_lamp_ext, kExtended},
    {ORVEX_TYPE_CEDAR,     "Cedar",            0xEA02, &gl_cmd_lamp,   &gl_cmd_lamp_ext, kExtended},
    {ORVEX_TYPE_HAZEL,     "Hazel",            0,      &gl_cmd_lamp,   &gl_cmd_lamp_ext, kExtended},
    {ORVEX_TYPE_LARCH,     "Larch",            0,      &gl_cmd_lamp,   &gl_cmd_lamp_ext, kExtended},
    {ORVEX_TYPE_MAPLE,     "Maple",            0,      &gl_cmd_lamp,   &gl_cmd_lamp_ext, kExtended},
    {ORVEX_TYPE_ROWAN,     "Rowan",            0,      &gl_cmd_lamp,   &gl_cmd_lamp_ext, kLeds},
    {ORVEX_TYPE_SPRUCE,    "Spruce",           0,      &gl_cmd_spruce, none,             kLeds},
    {ORVEX_TYPE_TAMAR,     "Tamar",            0xEA08, &gl_cmd_tamar,  none,             kLeds},
    {ORVEX_TYPE_WILLOW,    "Willow",           0,      &gl_cmd_willow, none,             kLeds},
    {ORVEX_TYPE_UNDEFINED, "<Undefined Type>", 0,      none,           none,             0},
};
// clang-format on
}  // namespace model_table

using model_table::kModels;

/// A model that devices can be made of; null: there is no such model.
[[nodiscard]] inline const Model* findModel(OrvexType type) noexcept {
    for (const Model& model : kModels) {
        if (model.type == type && model.commands != nullptr) {
            return &model;
        }
    }
    return nullptr;
}

/// All commands of a model.
[[nodiscard]] inline CommandTable allCommandsOf(const Model& model) {
    CommandTable commands = *model.commands;
    if (model.moreCommands != nullptr) {
        commands.insert(model.moreCommands->begin(), model.moreCommands->end());
    }
    return commands;
}

}  // namespace orvex
