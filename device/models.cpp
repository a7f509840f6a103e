#include "device/models.h"

#include "api/driver_exception.h"

namespace {

/// One model: adding one takes a row here, and a table of commands if it speaks a dialect of its
/// own.
struct Model {
    OrvexType type;
    const char* name;
    std::uint16_t usbProduct;      ///< Under vendor 0x04D8; 0: not found by discovery.
    const CommandTable* commands;  ///< None: no device can be made of it.
    const CommandTable* moreCommands;
    std::uint32_t capabilities;
};

constexpr const CommandTable* none = nullptr;
constexpr std::uint32_t kBasic = ORVEX_CAP_LAMP;
constexpr std::uint32_t kExtended = ORVEX_CAP_LAMP | ORVEX_CAP_EXTENDED;
constexpr std::uint32_t kLeds = ORVEX_CAP_LED;

// Rowan speaks the lamps' commands and is nevertheless read out like a multi-LED source.
// clang-format off
const Model kModels[] = {
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

std::unordered_map<OrvexType, std::string> typeNames() {
    std::unordered_map<OrvexType, std::string> names;
    for (const Model& model : kModels) {
        names.emplace(model.type, model.name);
    }
    return names;
}

std::unordered_map<std::uint16_t, OrvexType> usbProducts() {
    std::unordered_map<std::uint16_t, OrvexType> products;
    for (const Model& model : kModels) {
        if (model.usbProduct != 0) {
            products.emplace(model.usbProduct, model.type);
        }
    }
    return products;
}

const Model& usableModel(OrvexType type) {
    for (const Model& model : kModels) {
        if (model.type == type && model.commands != none) {
            return model;
        }
    }
    orvex::raise("Not implemented/unknown device type", ORVEX_ERR_INVALID_ARG);
}

const std::unordered_map<OrvexType, std::string> nameTable = typeNames();
const std::unordered_map<std::uint16_t, OrvexType> productTable = usbProducts();

}  // namespace

const std::unordered_map<OrvexType, std::string>& gl_type_names = nameTable;
const std::unordered_map<std::uint16_t, OrvexType>& gl_usb_pid_types = productTable;

namespace orvex {

CommandTable commandsOf(OrvexType type) {
    const Model& model = usableModel(type);
    CommandTable commands = *model.commands;
    if (model.moreCommands != none) {
        commands.insert(model.moreCommands->begin(), model.moreCommands->end());
    }
    return commands;
}

std::uint32_t capabilitiesOf(OrvexType type) {
    return usableModel(type).capabilities;
}

}  // namespace orvex
