/*
 * A tour of every attached light source: found, opened, read, dimmed, switched on and off, closed.
 *
 * light_tour [--wire]   --wire also shows what goes over the serial line
 *
 * Light comes out of real devices, at a quarter of their intensity. What was set before is
 * restored. The exit status is 0 when at least one device was found and all went well.
 */
#include <stdio.h>
#include <string.h>

#include "qtr_orvex.h"

#define MAX_DEVICES 8
#define LAMP_STEPS (sizeof lampSteps / sizeof lampSteps[0])

static bool showWire = false;
static bool allWell = true;

static void printLogLine(const char* text) {
    const bool isTraffic = strncmp(text, "Send [", 6) == 0 || strncmp(text, " <-Received", 11) == 0;
    if (!isTraffic || showWire) {
        printf("      %s\n", text);
    }
}

static bool succeeded(const char* what, uint32_t status) {
    if (status == ORVEX_OK) {
        return true;
    }
    printf("  ! %s failed with status 0x%08X\n", what, status);
    allWell = false;
    return false;
}

static void printChannels(const OrvexStruct* state) {
    printf("  slot  name       wavelength  intensity      limits  temperature  group  light\n");
    for (int32_t k = 0; k < state->iNumChannels; ++k) {
        const OrvexChannel* channel = &state->aChannels[k];
        printf("  %4d  %-9s  %7d nm  %7.1f %%  %3.0f-%3.0f %%  %11d  %5d  %s\n", k,
               channel->szLedName, channel->iWavelength, channel->iIntensity / 10.0,
               channel->iMinIntensity / 10.0, channel->iMaxIntensity / 10.0, channel->iTemperature,
               channel->iGroup, (channel->iState & 1) != 0 ? "on" : "off");
    }
}

static bool readState(uint64_t device, OrvexStruct* state) {
    memset(state, 0, sizeof *state);
    state->iSize = sizeof *state;
    return succeeded("reading the state", ORVEX_GetOVStruct(device, state));
}

static void apply(uint64_t device, const OrvexStruct* state, const char* what) {
    printf("\n  %s\n", what);
    succeeded(what, ORVEX_SetOVStruct(device, state));
}

static void tourLeds(uint64_t device) {
    OrvexStruct before;
    OrvexStruct state;
    if (!readState(device, &before) || !readState(device, &state)) {
        return;
    }
    printChannels(&state);

    for (int32_t k = 0; k < state.iNumChannels; ++k) {
        state.aChannels[k].iIntensity = 250;
    }
    apply(device, &state, "All channels to a quarter of their intensity");
    state.aChannels[0].iState = 1;
    state.aChannels[state.iNumChannels - 1].iState = 1;
    apply(device, &state, "First and last channel on (a channel of a group needs two seconds)");
    if (readState(device, &state)) {
        printChannels(&state);
    }

    printf("\n  Everything off, and on again as it was\n");
    succeeded("switching off", ORVEX_SwitchOrvex(device, true, false));
    succeeded("switching on", ORVEX_SwitchOrvex(device, true, true));
    apply(device, &before, "Back to what it was");
}

static const struct {
    const char* command;
    const char* value;
    const char* what;
} lampSteps[] = {
    {"GetSoftwareVersion", NULL, "firmware"}, {"GetLampHours", NULL, "lamp hours"},
    {"GetIntensity", NULL, "iris, per cent"}, {"TurnLampOn", NULL, "lamp on"},
    {"SetIntensity", "25", "iris to 25 %"},   {"OpenShutter", NULL, "shutter open"},
    {"GetIntensity", NULL, "iris, per cent"}, {"CloseShutter", NULL, "shutter closed"},
    {"GetTemperature", NULL, "temperature"},  {"TurnLampOff", NULL, "lamp off"},
};

static void tourLamp(uint64_t device) {
    char iris[32] = "";
    ORVEX_ExecuteCommand(device, "GetIntensity", iris, sizeof iris);
    iris[strcspn(iris, "\r")] = '\0';
    for (size_t k = 0; k < LAMP_STEPS; ++k) {
        char reply[64] = "";
        const uint32_t status = ORVEX_ExecuteCommandWithValue(device, lampSteps[k].command, reply,
                                                              sizeof reply, lampSteps[k].value);
        if (succeeded(lampSteps[k].command, status)) {
            reply[strcspn(reply, "\r")] = '\0';
            printf("  %-15s %-20s %s\n", lampSteps[k].what, lampSteps[k].command, reply);
        }
    }
    char reply[64];
    succeeded("restoring the iris",
              ORVEX_ExecuteCommandWithValue(device, "SetIntensity", reply, sizeof reply, iris));
}

static void tour(uint64_t device) {
    OrvexStruct state;
    uint32_t type = 0;
    char port[64] = "";
    if (!succeeded("asking for the port",
                   ORVEX_GetDeviceInfo(device, &type, port, sizeof port, NULL)) ||
        !succeeded("opening", ORVEX_OpenDeviceEx(device))) {
        return;
    }
    if (readState(device, &state)) {
        printf("\n== %s on %s, serial number %d\n\n", state.szModelName, port, state.iSerialNumber);
        if (state.iNumChannels > 0) {
            tourLeds(device);
        } else {
            tourLamp(device);
        }
    }
    ORVEX_CloseDevice(device);
    printf("\n  Closed.\n");
}

int main(int argc, char** argv) {
    showWire = argc > 1 && strcmp(argv[1], "--wire") == 0;
    ORVEX_RegisterLogCallback(printLogLine);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    ORVEX_SetLogBits(LOG_BIT_ERROR | LOG_BIT_WARNING | LOG_BIT_TRAFFIC);

    uint32_t version[4] = {0};
    ORVEX_GetVersion(&version[0], &version[1], &version[2], &version[3]);
    printf("Orvex library %u.%u.%u.%u\n", version[0], version[1], version[2], version[3]);

    uint64_t devices[MAX_DEVICES] = {0};
    uint32_t found = 0;
    if (!succeeded("scanning", ORVEX_ScanDevices(devices, MAX_DEVICES, &found))) {
        return 1;
    }
    printf("%u light source%s found.\n", found, found == 1 ? "" : "s");
    for (uint32_t k = 0; k < found; ++k) {
        tour(devices[k]);
    }
    return found > 0 && allWell ? 0 : 1;
}
