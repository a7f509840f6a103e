#include "tests/transcripts/scenes.h"

#include <algorithm>
#include <iterator>

#include "tests/transcripts/values.h"

namespace orvex_test {

namespace {

void attach(Session& session) {
    session.attach();
}

/// Rowan's and Spruce's opening fails, and leaves them ready for commands.
void attachAndOpen(Session& session) {
    session.attach();
    session.open();
}

void turn(OrvexStruct& record, int slot, bool on) {
    record.aChannels[slot].iState = on ? 1 : 0;
}

Scene commandScene(OrvexType model, const std::string& name) {
    return {kCommandTitle + name, attachAndOpen, [model, name](Session& session) {
                session.command(name);
                const std::string value = valueFor(model, name);
                if (!value.empty()) {
                    session.command(name, value);
                }
            }};
}

std::vector<Scene> lifeScenes() {
    return {
        {"attaching, and opening with the read-out", [](Session&) {}, attachAndOpen},
        {"opening and closing twice", attachAndOpen,
         [](Session& session) {
             session.open();
             session.close();
             session.close();
         }},
        {"opening again after closing", attachAndOpen,
         [](Session& session) {
             session.close();
             session.open();
         }},
        {"closing a device that was never opened", attach,
         [](Session& session) { session.close(); }},
        {"presence byte", attachAndOpen, [](Session& session) { session.ping(); }},
    };
}

std::vector<Scene> recordScenes() {
    return {
        {"record: unchanged", attachAndOpen,
         [](Session& session) { session.writeRecord("as it was read", [](OrvexStruct&) {}); }},
        {"record: an intensity", attachAndOpen,
         [](Session& session) {
             session.writeRecord("slot 0 at 347, slot 1 beyond its maximum",
                                 [](OrvexStruct& record) {
                                     record.aChannels[0].iIntensity = 347;
                                     record.aChannels[1].iIntensity = 5000;
                                 });
         }},
        {"record: states", attachAndOpen,
         [](Session& session) {
             session.writeRecord("slots 0 and 2 on", [](OrvexStruct& record) {
                 turn(record, 0, true);
                 turn(record, 2, true);
             });
             session.writeRecord("slot 0 off", [](OrvexStruct& record) { turn(record, 0, false); });
         }},
        {"record: an intensity and all states", attachAndOpen,
         [](Session& session) {
             session.writeRecord("slot 0 at 600, all slots on", [](OrvexStruct& record) {
                 record.aChannels[0].iIntensity = 600;
                 for (int slot = 0; slot < record.iNumChannels; ++slot) {
                     turn(record, slot, true);
                 }
             });
         }},
        {"record: another channel of the group", attachAndOpen,
         [](Session& session) {
             session.writeRecord("slot 3 on", [](OrvexStruct& record) { turn(record, 3, true); });
             session.writeRecord("slot 4 on instead", [](OrvexStruct& record) {
                 turn(record, 3, false);
                 turn(record, 4, true);
             });
         }},
        {"record: a channel too many", attachAndOpen,
         [](Session& session) {
             session.writeRecord("one channel more than it has",
                                 [](OrvexStruct& record) { ++record.iNumChannels; });
         }},
    };
}

std::vector<Scene> switchingScenes() {
    return {
        {"switching off and on", attachAndOpen,
         [](Session& session) {
             session.writeRecord("slot 0 on", [](OrvexStruct& record) { turn(record, 0, true); });
             session.switchOrvex(true, false);
             session.writeRecord("slot 1 on", [](OrvexStruct& record) { turn(record, 1, true); });
             session.switchOrvex(true, true);
             session.switchOrvex(false, false);
         }},
        {"switching on with nothing to switch on", attachAndOpen,
         [](Session& session) { session.switchOrvex(true, true); }},
        {"lamp", attachAndOpen,
         [](Session& session) {
             session.setLamp(true);
             session.setLamp(false);
         }},
        {"shutter", attachAndOpen,
         [](Session& session) {
             session.setShutter(true);
             session.setShutter(false);
         }},
    };
}

std::vector<Scene> commandFailureScenes() {
    return {
        {"failure: error reply", attachAndOpen,
         [](Session& session) {
             session.refuse("GetSoftwareVersion");
             session.command("GetSoftwareVersion");
         }},
        {"failure: no reply", attachAndOpen,
         [](Session& session) {
             session.whileSilent([&] { session.command("GetSoftwareVersion"); });
             session.command("GetSoftwareVersion");
         }},
        {"failure: unknown commands", attachAndOpen,
         [](Session& session) {
             session.command("GetNothing");
             session.command("getsoftwareversion");
         }},
        {"failure: reply without an end", attachAndOpen,
         [](Session& session) {
             session.answer("GetSoftwareVersion", std::string(1024, '5'));
             session.command("GetSoftwareVersion");
             session.command("GetUnitStatus");
         }},
        {"failure: request too long", attachAndOpen,
         [](Session& session) { session.command("GetSoftwareVersion", std::string(1024, '1')); }},
        {"failure: command to a device that is not open", attach,
         [](Session& session) { session.command("GetSoftwareVersion"); }},
        {"failure: presence byte not answered", attachAndOpen,
         [](Session& session) { session.whileSilent([&] { session.ping(); }); }},
    };
}

std::vector<Scene> openingFailureScenes() {
    return {
        {"failure: port is gone", attach,
         [](Session& session) {
             session.unplug();
             session.open();
         }},
        {"failure: error reply to Connect", attach,
         [](Session& session) {
             session.refuse("Connect");
             session.open();
         }},
        {"failure: no reply to Connect", attach,
         [](Session& session) {
             session.whileSilent([&] { session.open(); });
             session.open();
         }},
        {"failure: error reply during the read-out", attach,
         [](Session& session) {
             session.refuse("GetUnitStatus");
             session.open();
             session.command("GetSoftwareVersion");
             session.open();
         }},
    };
}

std::vector<Scene> otherFailureScenes() {
    return {
        {"failure: error reply to the record's intensities", attachAndOpen,
         [](Session& session) {
             session.refuse("SetIntensity");
             session.writeRecord("slot 0 at 300, slot 0 on", [](OrvexStruct& record) {
                 record.aChannels[0].iIntensity = 300;
                 turn(record, 0, true);
             });
         }},
        {"failure: error replies while switching", attachAndOpen,
         [](Session& session) {
             session.refuse("TurnLedOff");
             session.refuse("CloseShutter");
             session.switchOrvex(true, false);
         }},
        {"failure: error replies while closing", attachAndOpen,
         [](Session& session) {
             session.refuse("CloseShutter");
             session.refuse("Disconnect");
             session.close();
         }},
    };
}

void append(std::vector<Scene>& scenes, std::vector<Scene> more) {
    std::move(more.begin(), more.end(), std::back_inserter(scenes));
}

}  // namespace

CommandTable commandTable(OrvexType model) {
    switch (model) {
        case ORVEX_TYPE_SPRUCE:
            return gl_cmd_spruce;
        case ORVEX_TYPE_TAMAR:
            return gl_cmd_tamar;
        case ORVEX_TYPE_WILLOW:
            return gl_cmd_willow;
        default:
            break;
    }
    CommandTable table = gl_cmd_lamp;
    if (model != ORVEX_TYPE_ALDER) {
        table.insert(gl_cmd_lamp_ext.begin(), gl_cmd_lamp_ext.end());
    }
    return table;
}

std::vector<Scene> scenesOf(OrvexType model) {
    std::vector<Scene> scenes = lifeScenes();
    for (const auto& [name, prefix] : commandTable(model)) {
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
