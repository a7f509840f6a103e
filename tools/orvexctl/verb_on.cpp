#include "tools/orvexctl/switch_verb.h"

namespace orvex::tools {

std::unique_ptr<LightVerb> makeOn() {
    return std::make_unique<SwitchVerb>(true);
}

}  // namespace orvex::tools
