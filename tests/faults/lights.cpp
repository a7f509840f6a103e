#include "tests/faults/lights.h"

namespace orvex_faults {

namespace {

Light lightOf(const char* name, const char* product, OrvexType model) {
    Light light{name, product, {}, {}};
    light.setup.model = model;
    return light;
}

}  // namespace

Light alder() {
    return lightOf("Alder", "", ORVEX_TYPE_ALDER);
}

Light cedar() {
    return lightOf("Cedar", "ea02", ORVEX_TYPE_CEDAR);
}

Light fourLedTamar() {
    Light light = lightOf("FourLedTamar", "ea08", ORVEX_TYPE_TAMAR);
    light.setup.wavelengths = {365, 405, 470, 525};
    return light;
}

Light unwillingTamar() {
    Light light = fourLedTamar();
    light.name = "UnwillingTamar";
    light.refused = "Disconnect";
    return light;
}

Light groupedTamar() {
    return lightOf("GroupedTamar", "ea08", ORVEX_TYPE_TAMAR);
}

Light willow() {
    return lightOf("Willow", "", ORVEX_TYPE_WILLOW);
}

}  // namespace orvex_faults
