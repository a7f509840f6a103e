#include "tools/orvex-sim/supervise.h"

namespace orvex::tools {

int supervise(Stage& stage, Child& child) {
    for (;;) {
        const Signal signal = stage.next();
        if (signal.number == SIGCHLD) {
            if (const auto status = child.status()) {
                return *status;
            }
        } else if (!signal.fromKernel) {
            child.send(signal.number);
        }
    }
}

}  // namespace orvex::tools
