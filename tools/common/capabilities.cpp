#include "tools/common/capabilities.h"

namespace orvex::tools {

const std::array<Capability, 4> kCapabilities = {{
    {ORVEX_CAP_LAMP, "lamp", "lamp behind a shutter"},
    {ORVEX_CAP_EXTENDED, "extended", "extended commands"},
    {ORVEX_CAP_LED, "led", "LEDs switched one by one"},
    {ORVEX_CAP_EXTENDED_CHANNELS, "extended-channels", "8 or more positions"},
}};

}  // namespace orvex::tools
