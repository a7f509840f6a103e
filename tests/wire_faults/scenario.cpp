#include "tests/wire_faults/scenario.h"

#include <array>
#include <chrono>

#include "include/qtr_orvex.h"
#include "tests/support/thread_log.h"

namespace orvex_test {

namespace {

using namespace std::chrono_literals;

std::vector<Step> lampSteps(const std::string& setIntensity, const std::string& value) {
    return {{StepKind::open},
            {StepKind::command, "GetSoftwareVersion"},
            {StepKind::command, setIntensity, value},
            {StepKind::command, "TurnLampOn"},
            {StepKind::command, "OpenShutter"},
            {StepKind::writeRecord},
            {StepKind::switchOff},
            {StepKind::switchOn},
            {StepKind::open},
            {StepKind::close},
            {StepKind::close}};
}

std::vector<Step> ledSteps() {
    return {{StepKind::open},
            {StepKind::writeRecord, "", "", 1},
            {StepKind::switchOff},
            {StepKind::switchOn},
            {StepKind::command, "GetLedHours"},
            {StepKind::open},
            {StepKind::writeRecord, "", "", 2},
            {StepKind::close},
            {StepKind::close}};
}

orvex::sim::DeviceSetup setupOf(OrvexType model) {
    orvex::sim::DeviceSetup setup;
    setup.model = model;
    return setup;
}

Scenario plainLeds() {
    Scenario scenario{"TamarWithoutGroup", setupOf(ORVEX_TYPE_TAMAR), ledSteps(), {}};
    scenario.setup.wavelengths = {365, 405, 470, 525};
    scenario.requests = {"co",       "lw?",    "us?",
                         "ni?",      "ip?",    "gt?",
                         "ln?",      "sn?",    "ip=300,500,500,500",
                         "of=2,3",   "on=1,4", "of=1,2,3,4",
                         "on=1,4",   "lh?",    "ip=600,500,500,500",
                         "of=2,3,4", "on=1",   "dc"};
    return scenario;
}

Scenario groupedLeds() {
    Scenario scenario{"TamarWithGroup", setupOf(ORVEX_TYPE_TAMAR), ledSteps(), {}};
    scenario.setup.ledsOn = {6};
    scenario.requests = {"co",
                         "lw?",
                         "us?",
                         "ni?",
                         "ip?",
                         "gt?",
                         "ln?",
                         "sn?",
                         "ip=300,500,500,500,500,500,500,500",
                         "of=2,3,4,6,7,8",
                         "on=1,5",
                         "us?",
                         "of=1,2,3,4,5,6,7,8",
                         "on=1,5",
                         "lh?",
                         "ip=600,500,500,500,500,500,500,500",
                         "of=2,3,4,5,7,8",
                         "on=1,6",
                         "us?",
                         "dc"};
    return scenario;
}

Scenario settlingLeds() {
    Scenario scenario{"SettlingWillow", setupOf(ORVEX_TYPE_WILLOW), ledSteps(), {}};
    scenario.setup.settleDelay = 2100ms;
    scenario.requests = {"co",
                         "lw?",
                         "us?",
                         "ni?",
                         "ip?",
                         "gt?",
                         "ln?",
                         "sn?",
                         "ip=300,500,500,500,500,500,500,500,500,500,500,500,500,500,500,500",
                         "of=2,3,5,6,7,8,9,10,11,12,13,14,15,16",
                         "on=1,4",
                         "us?",
                         "of=1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16",
                         "on=1,4",
                         "lh?",
                         "ip=600,500,500,500,500,500,500,500,500,500,500,500,500,500,500,500",
                         "of=2,3,4,6,7,8,9,10,11,12,13,14,15,16",
                         "on=1,5",
                         "us?",
                         "dc"};
    return scenario;
}

/// Changes the record that the device has now, as far as it has the channels.
std::uint32_t writeRecord(std::uint64_t handle, int selected) {
    constexpr int kFirstGrouped = 3;
    OrvexStruct record{};
    record.iSize = sizeof record;
    if (const std::uint32_t status = ORVEX_GetOVStruct(handle, &record); status != ORVEX_OK) {
        return status;
    }
    if (record.iNumChannels > 0) {
        record.aChannels[0].iIntensity = 300 * selected;
        record.aChannels[0].iState = 1;
    }
    for (int slot = kFirstGrouped; slot < record.iNumChannels; ++slot) {
        record.aChannels[slot].iState = slot == kFirstGrouped + selected - 1 ? 1 : 0;
    }
    return ORVEX_SetOVStruct(handle, &record);
}

std::uint32_t sendCommand(std::uint64_t handle, const Step& step, std::string& reply) {
    std::array<char, 2048> text{};
    const std::uint32_t status =
        ORVEX_ExecuteCommandWithValue(handle, step.command.c_str(), text.data(), text.size(),
                                      step.value.empty() ? nullptr : step.value.c_str());
    reply = text.data();
    return status;
}

std::uint32_t call(const Step& step, std::uint64_t handle, std::string& reply) {
    switch (step.kind) {
        case StepKind::open:
            return ORVEX_OpenDeviceEx(handle);
        case StepKind::writeRecord:
            return writeRecord(handle, step.selected);
        case StepKind::switchOff:
            return ORVEX_SwitchOrvex(handle, true, false);
        case StepKind::switchOn:
            return ORVEX_SwitchOrvex(handle, true, true);
        case StepKind::command:
            return sendCommand(handle, step, reply);
        case StepKind::close:
            break;
    }
    ORVEX_CloseDevice(handle);
    return ORVEX_OK;
}

}  // namespace

std::vector<Scenario> lampScenarios() {
    return {{"Alder",
             setupOf(ORVEX_TYPE_ALDER),
             lampSteps("SetIntensityH4", "3"),
             {"tt", "uu", "ii", "vv", "i3", "bb", "mm", "zz", "zz"}},
            {"Cedar",
             setupOf(ORVEX_TYPE_CEDAR),
             lampSteps("SetIntensity", "60"),
             {"tt", "jj", "uu", "ni", "dd", "gt", "vv", "d60", "bb", "mm", "zz", "zz"}}};
}

std::vector<Scenario> ledScenarios() {
    return {plainLeds(), groupedLeds(), settlingLeds()};
}

Outcome perform(const Step& step, std::uint64_t handle) {
    Outcome outcome;
    static_cast<void>(ThreadLog::take());
    outcome.status = call(step, handle, outcome.reply);
    outcome.lines = ThreadLog::take();
    return outcome;
}

}  // namespace orvex_test
