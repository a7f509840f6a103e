/*
 * Finds all attached light sources and lists them with their LEDs.
 *
 *   cc find_and_list.c -o find_and_list $(pkg-config --cflags --libs qtr_orvex)
 *   orvex-sim run --device Tamar --device Cedar -- ./find_and_list      (without a device)
 */
#include "options.h"
#include "qtr_orvex.h"
#include "status_text.h"

#define MAX_LIGHTS 16

typedef struct Light {
    uint64_t handle;
    char port[64];
} Light;

/* Asks with a command; the reply loses its "\r". */
static bool ask(const Light* light, const char* command, char reply[64]) {
    const uint32_t status = ORVEX_ExecuteCommand(light->handle, command, reply, 64);
    if (status == ORVEX_OK) {
        reply[strcspn(reply, "\r")] = '\0';
    }
    return succeeded(light->port, command, status);
}

static bool list_leds(const Light* light, const OrvexStruct* state) {
    char serial[64];
    if (!ask(light, "GetUnitSerialNumber", serial)) {
        return false;
    }
    printf("%s on %s, serial number %s\n", state->szModelName, light->port, serial);
    for (int k = 0; k < state->iNumChannels; ++k) {
        const OrvexChannel* led = &state->aChannels[k];
        printf("  %4d nm  %-9s  %5.1f %% (%.1f to %.1f %%)  %d degrees C  %s\n", led->iWavelength,
               led->szLedName, led->iIntensity / 10.0, led->iMinIntensity / 10.0,
               led->iMaxIntensity / 10.0, led->iTemperature, (led->iState & 1) != 0 ? "on" : "off");
    }
    return true;
}

/* A lamp's record has no channels; commands tell about it. */
static bool list_lamp(const Light* light, const OrvexStruct* state) {
    char serial[64], hours[64], percent[64];
    if (!ask(light, "GetSerialNumber", serial) || !ask(light, "GetLampHours", hours) ||
        !ask(light, "GetIntensity", percent)) {
        return false;
    }
    printf("%s on %s, serial number %s\n", state->szModelName, light->port, serial);
    printf("  lamp     %s h  %s %%\n", hours, percent);
    return true;
}

static bool list(const Light* light) {
    if (!succeeded(light->port, "opening", ORVEX_OpenDeviceEx(light->handle))) {
        return false; /* A light whose opening failed is not closed. */
    }
    OrvexStruct state = {.iSize = sizeof state};
    const bool listed =
        succeeded(light->port, "reading the state", ORVEX_GetOVStruct(light->handle, &state)) &&
        (state.iNumChannels > 0 ? list_leds(light, &state) : list_lamp(light, &state));
    ORVEX_CloseDevice(light->handle);
    return listed;
}

int main(int argc, char** argv) {
    const Option options[] = {{NULL, NULL, NULL, 0, 0}};
    read_options(argc, argv, "usage: find_and_list\nLists all attached lights.\n", options);
    ORVEX_SetLogBits(0); /* What fails is told below. */
    uint64_t handles[MAX_LIGHTS] = {0};
    uint32_t found = 0;
    const uint32_t status = ORVEX_ScanDevices(handles, MAX_LIGHTS, &found);
    if (status != ORVEX_OK || found == 0) {
        succeeded("any port", "finding lights", status != ORVEX_OK ? status : ORVEX_ERR_NO_DEVICE);
        return 1;
    }
    bool all_listed = true;
    for (uint32_t k = 0; k < found; ++k) {
        Light light = {.handle = handles[k]};
        all_listed = succeeded(light.port, "asking for the port",
                               ORVEX_GetDeviceInfo(light.handle, NULL, light.port,
                                                   sizeof light.port, NULL)) &&
                     list(&light) && all_listed;
    }
    return all_listed ? 0 : 1;
}
