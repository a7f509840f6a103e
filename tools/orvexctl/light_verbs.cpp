#include <CLI/App.hpp>

#include "tools/orvexctl/verb.h"

namespace orvex::tools {

const std::vector<VerbDescription>& lightVerbs() {
    static const std::vector<VerbDescription> verbs = {
        {"info", "Show a light's whole state",
         "info                      the only light there is\n"
         "info -d Cedar --json      the Cedar, as JSON",
         makeInfo},
        {"set", "Set intensities and states of channels together",
         "set 1=45%                 channel 1 to 45 %\n"
         "set 1=45% 3=on 4=off,20%  three channels in one go",
         makeSet},
        {"on", "Switch channels on, or open a lamp's shutter",
         "on                        all channels; of a group the first\n"
         "on 1,3                    channels 1 and 3",
         makeOn},
        {"off", "Switch channels off, or close a lamp's shutter",
         "off                       all channels\n"
         "off 2-4                   channels 2, 3 and 4",
         makeOff},
        {"lamp", "Switch a lamp on or off",
         "lamp on                   the lamp burns; see shutter for the light\n"
         "lamp off                  the lamp goes out",
         makeLamp},
        {"shutter", "Open or close a lamp's shutter",
         "shutter open --keep-open  open, and left so when the program ends\n"
         "shutter close             closed",
         makeShutter},
        {"exec", "Send a command of the model and print the reply",
         "exec GetTemperature       a question\n"
         "exec SetSpeakerVolume 20  a command with a value",
         makeExec},
        {"commands", "List a model's commands and the request that each sends",
         "commands                  of the only light there is\n"
         "commands --model Willow   of a model; no light is needed",
         makeCommands},
    };
    return verbs;
}

AddedVerb addVerb(CLI::App& parser, const VerbDescription& description) {
    CLI::App* command = parser.add_subcommand(description.name, description.summary);
    AddedVerb added{command, description.make()};
    added.verb->configure(*command);
    return added;
}

}  // namespace orvex::tools
