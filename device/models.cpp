#include "device/models.h"

#include "api/driver_exception.h"
#include "device/model_table.h"

using orvex::kModels;
using orvex::Model;

namespace {

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
    const Model* const model = orvex::findModel(type);
    if (model == nullptr) {
        orvex::raise("Not implemented/unknown device type", ORVEX_ERR_INVALID_ARG);
    }
    return *model;
}

const std::unordered_map<OrvexType, std::string> nameTable = typeNames();
const std::unordered_map<std::uint16_t, OrvexType> productTable = usbProducts();

}  // namespace

const std::unordered_map<OrvexType, std::string>& gl_type_names = nameTable;
const std::unordered_map<std::uint16_t, OrvexType>& gl_usb_pid_types = productTable;

namespace orvex {

CommandTable commandsOf(OrvexType type) {
    return allCommandsOf(usableModel(type));
}

std::uint32_t capabilitiesOf(OrvexType type) {
    return usableModel(type).capabilities;
}

}  // namespace orvex
