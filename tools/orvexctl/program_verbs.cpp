#include "tools/orvexctl/program_verb.h"

namespace orvex::tools {

const std::vector<ProgramVerbDescription>& programVerbs() {
    static const std::vector<ProgramVerbDescription> verbs = {
        {"list", "List the lights that are attached",
         "list                      model, port, serial number, free or busy\n"
         "list --watch              tell of arrivals and departures until Ctrl-C",
         makeList},
        {"commands", "List a model's commands and the request that each sends",
         "commands                  of the only light there is\n"
         "commands --model Willow   of a model; no light is needed",
         makeCommandsOfModel},
        {"watch", "Show a light's state live; q or Ctrl-C quits",
         "watch                     once a second\n"
         "watch --interval 0.2      five times a second",
         makeWatch},
        {"shell", "Work on one opened light interactively",
         "shell                     help lists the verbs, Tab completes, quit ends\n"
         "shell < FILE              the verbs of a file, up to the first that fails",
         makeShell},
        {"doctor", "Find out why a light is not found or does not answer",
         "doctor                    all lights\n"
         "doctor --model Alder --port /dev/ttyUSB0",
         makeDoctor},
        {"run", "Carry out a script of verbs with wait and repeat",
         "run protocol.txt          lines such as: set 1=on / wait 250ms / repeat 3 / end\n"
         "run - --timeout 60        from standard input, for a minute at most",
         makeRun},
    };
    return verbs;
}

}  // namespace orvex::tools
