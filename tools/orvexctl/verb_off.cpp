#include "tools/orvexctl/switch_verb.h"

namespace orvex::tools {

std::unique_ptr<LightVerb> makeOff() {
    return std::make_unique<SwitchVerb>(false);
}

}  // namespace orvex::tools
