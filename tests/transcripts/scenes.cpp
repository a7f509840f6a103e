#include "tests/transcripts/scenes.h"

#include <algorithm>
#include <iterator>

#include "sim/command_lookup.h"
#include "tests/transcripts/values.h"

namespace orvex_test {

namespace {

void attach(TapedLight& light) {
    light.attach();
}

/// Rowan's and Spruce's opening fails, and leaves them ready for commands.
void attachAndOpen(TapedLight& light) {
    light.attach();
    light.open();
}

void turn(OrvexStruct& record, int slot, bool on) {
    record.aChannels[slot].iState = on ? 1 : 0;
}

Scene commandScene(OrvexType model, const std::string& name) {
    return {kCommandTitle + name, attachAndOpen, [model, name](TapedLight& light) {
                light.command(name);
                const std::string value = valueFor(model, name);
                if (!value.empty()) {
                    light.command(name, value);
                }
            }};
}

std::vector<Scene> lifeScenes() {
    return {
        {"attaching, and opening with the read-out", [](TapedLight&) {}, attachAndOpen},
        {"opening and closing twice", attachAndOpen,
         [](TapedLight& light) {
             light.open();
             light.close();
             light.close();
         }},
        {"opening again after closing", attachAndOpen,
         [](TapedLight& light) {
             light.close();
             light.open();
         }},
        {"closing a device that was never opened", attach,
         [](TapedLight& light) { light.close(); }},
        {"presence byte", attachAndOpen, [](TapedLight& light) { light.ping(); }},
    };
}

std::vector<Scene> recordScenes() {
    return {
        {"record: unchanged", attachAndOpen,
         [](TapedLight& light) { light.writeRecord("as it was read", [](OrvexStruct&) {}); }},
        {"record: an intensity", attachAndOpen,
         [](TapedLight& light) {
             light.writeRecord("slot 0 at 347, slot 1 beyond its maximum", [](OrvexStruct& record) {
                 record.aChannels[0].iIntensity = 347;
                 record.aChannels[1].iIntensity = 5000;
             });
         }},
        {"record: states", attachAndOpen,
         [](TapedLight& light) {
             light.writeRecord("slots 0 and 2 on", [](OrvexStruct& record) {
                 turn(record, 0, true);
                 turn(record, 2, true);
             });
             light.writeRecord("slot 0 off", [](OrvexStruct& record) { turn(record, 0, false); });
         }},
        {"record: an intensity and all states", attachAndOpen,
         [](TapedLight& light) {
             light.writeRecord("slot 0 at 600, all slots on", [](OrvexStruct& record) {
                 record.aChannels[0].iIntensity = 600;
                 for (int slot = 0; slot < record.iNumChannels; ++slot) {
                     turn(record, slot, true);
                 }
             });
         }},
        {"record: another channel of the group", attachAndOpen,
         [](TapedLight& light) {
             light.writeRecord("slot 3 on", [](OrvexStruct& record) { turn(record, 3, true); });
             light.writeRecord("slot 4 on instead", [](OrvexStruct& record) {
                 turn(record, 3, false);
                 turn(record, 4, true);
             });
         }},
        {"record: a channel too many", attachAndOpen,
         [](TapedLight& light) {
             light.writeRecord("one channel more than it has",
                               [](OrvexStruct& record) { ++record.iNumChannels; });
         }},
    };
}

std::vector<Scene> switchingScenes() {
    return {
        {"switching off and on", attachAndOpen,
         [](TapedLight& light) {
             light.writeRecord("slot 0 on", [](OrvexStruct& record) { turn(record, 0, true); });
             light.switchOrvex(true, false);
             light.writeRecord("slot 1 on", [](OrvexStruct& record) { turn(record, 1, true); });
             light.switchOrvex(true, true);
             light.switchOrvex(false, false);
         }},
        {"switching on with nothing to switch on", attachAndOpen,
         [](TapedLight& light) { light.switchOrvex(true, true); }},
        {"lamp", attachAndOpen,
         [](TapedLight& light) {
             light.setLamp(true);
             light.setLamp(false);
         }},
        {"shutter", attachAndOpen,
         [](TapedLight& light) {
             light.setShutter(true);
             light.setShutter(false);
         }},
    };
}

std::vector<Scene> commandFailureScenes() {
    return {
        {"failure: error reply", attachAndOpen,
         [](TapedLight& light) {
             light.refuse("GetSoftwareVersion");
             light.command("GetSoftwareVersion");
         }},
        {"failure: no reply", attachAndOpen,
         [](TapedLight& light) {
             light.whileSilent([&] { light.command("GetSoftwareVersion"); });
             light.command("GetSoftwareVersion");
         }},
        {"failure: unknown commands", attachAndOpen,
         [](TapedLight& light) {
             light.command("GetNothing");
             light.command("getsoftwareversion");
         }},
        {"failure: reply without an end", attachAndOpen,
         [](TapedLight& light) {
             light.answer("GetSoftwareVersion", std::string(1024, '5'));
             light.command("GetSoftwareVersion");
             light.command("GetUnitStatus");
         }},
        {"failure: request too long", attachAndOpen,
         [](TapedLight& light) { light.command("GetSoftwareVersion", std::string(1024, '1')); }},
        {"failure: command to a device that is not open", attach,
         [](TapedLight& light) { light.command("GetSoftwareVersion"); }},
        {"failure: presence byte not answered", attachAndOpen,
         [](TapedLight& light) { light.whileSilent([&] { light.ping(); }); }},
    };
}

std::vector<Scene> openingFailureScenes() {
    return {
        {"failure: port is gone", attach,
         [](TapedLight& light) {
             light.unplug();
             light.open();
         }},
        {"failure: error reply to Connect", attach,
         [](TapedLight& light) {
             light.refuse("Connect");
             light.open();
         }},
        {"failure: no reply to Connect", attach,
         [](TapedLight& light) {
             light.whileSilent([&] { light.open(); });
             light.open();
         }},
        {"failure: error reply during the read-out", attach,
         [](TapedLight& light) {
             light.refuse("GetUnitStatus");
             light.open();
             light.command("GetSoftwareVersion");
             light.open();
         }},
    };
}

std::vector<Scene> otherFailureScenes() {
    return {
        {"failure: error reply to the record's intensities", attachAndOpen,
         [](TapedLight& light) {
             light.refuse("SetIntensity");
             light.writeRecord("slot 0 at 300, slot 0 on", [](OrvexStruct& record) {
                 record.aChannels[0].iIntensity = 300;
                 turn(record, 0, true);
             });
         }},
        {"failure: error replies while switching", attachAndOpen,
         [](TapedLight& light) {
             light.refuse("TurnLedOff");
             light.refuse("CloseShutter");
             light.switchOrvex(true, false);
         }},
        {"failure: error replies while closing", attachAndOpen,
         [](TapedLight& light) {
             light.refuse("CloseShutter");
             light.refuse("Disconnect");
             light.close();
         }},
    };
}

void append(std::vector<Scene>& scenes, std::vector<Scene> more) {
    std::move(more.begin(), more.end(), std::back_inserter(scenes));
}

}  // namespace

std::vector<Scene> scenesOf(OrvexType model) {
    std::vector<Scene> scenes = lifeScenes();
    for (const auto& [name, prefix] : orvex::sim::commandsOfModel(model)) {
        scenes.push_back(commandScene(model, name));
    }
    append(scenes, recordScenes());
    append(scenes, switchingScenes());
    append(scenes, commandFailureScenes());
    append(scenes, openingFailureScenes());
    append(scenes, otherFailureScenes());
    return scenes;
}

}  // namespace orvex_test
