/*
 * Ramps the intensity of one LED, or of a lamp, evenly from one value to another.
 *
 *   cc intensity_ramp.c -o intensity_ramp $(pkg-config --cflags --libs qtr_orvex)
 *   orvex-sim run --device Tamar -- ./intensity_ramp --duration-ms 2000     (without a device)
 *
 * At the end the light is off, and has the intensity that it had before.
 */
#define _POSIX_C_SOURCE 200809L
#include "options.h"
#include "qtr_orvex.h"
#include "status_text.h"
#include "stop_signals.h"

static const char usage[] =
    "usage: intensity_ramp [--port PORT] [--wavelength-nm NM] [--from-percent P] [--to-percent P]\n"
    "                      [--duration-ms MS] [--steps N]\n"
    "By default from 10 to 100 % in 5 s and 20 steps, with the first light found and the first of\n"
    "its LEDs. A device holds intensities within its limits and rounds them to its steps.\n";

static const char* port = "any port";
static uint64_t light;
static OrvexStruct state = {.iSize = sizeof state};
static int slot; /* Of the LED in the record. */

static bool is_led(void) {
    return (state.iCapabilities & ORVEX_CAP_LED) != 0;
}

static bool command(const char* name, const char* value, char reply[64]) {
    return succeeded(port, name, ORVEX_ExecuteCommandWithValue(light, name, reply, 64, value));
}

/* In tenths of a per cent. A lamp's record has no channels: commands set it, in per cent. */
static bool set_intensity(long tenths) {
    if (is_led()) {
        state.aChannels[slot].iIntensity = (int32_t)tenths;
        return succeeded(port, "setting the intensity", ORVEX_SetOVStruct(light, &state)) &&
               succeeded(port, "reading the state", ORVEX_GetOVStruct(light, &state));
    }
    char percent[24], reply[64];
    snprintf(percent, sizeof percent, "%ld", tenths / 10);
    return command("SetIntensity", percent, reply);
}

/* The present intensity in tenths of a per cent, from the LED with a wavelength (0: any). */
static bool choose(long nm, long* tenths) {
    if (!is_led()) {
        char percent[64];
        const bool read = command("GetIntensity", NULL, percent);
        *tenths = read ? 10 * strtol(percent, NULL, 10) : 0;
        return read;
    }
    while (slot < state.iNumChannels && nm != 0 && state.aChannels[slot].iWavelength != nm) {
        ++slot;
    }
    if (slot >= state.iNumChannels) {
        fprintf(stderr, "%s: no LED of %ld nm\n  try: find_and_list\n", port, nm);
        return false;
    }
    *tenths = state.aChannels[slot].iIntensity;
    return true;
}

static bool switch_on(void) {
    char reply[64];
    if (!is_led()) {
        return command("OpenShutter", NULL, reply);
    }
    for (int k = 0; k < state.iNumChannels; ++k) {
        state.aChannels[k].iState = k == slot;
    }
    /* An LED of a group makes this call wait until the group has settled, 2 s. */
    return succeeded(port, "switching on", ORVEX_SetOVStruct(light, &state));
}

/* Dark, whatever went before: a failed request is repeated. */
static bool switch_off(void) {
    char reply[64];
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (command(is_led() ? "TurnAllLedOff" : "CloseShutter", NULL, reply)) {
            return true;
        }
    }
    fprintf(stderr, "%s: the light may still be on!\n", port);
    return false;
}

static bool ramp(long from, long to, double duration_s, long steps) {
    const double start_s = seconds_now();
    for (long k = 1; k <= steps; ++k) {
        if (!wait_until(start_s + duration_s * (double)k / (double)steps)) {
            return true;
        }
        const long tenths = from + (to - from) * k / steps;
        if (!set_intensity(tenths)) {
            return false;
        }
        printf("%.3f s: %.1f %%\n", seconds_now() - start_s,
               (is_led() ? state.aChannels[slot].iIntensity : (int)(tenths / 10 * 10)) / 10.0);
    }
    return true;
}

int main(int argc, char** argv) {
    const char* wanted_port = NULL;
    long nm = 0, from = 10, to = 100, duration_ms = 5000, steps = 20, before = 0;
    const Option options[] = {{"--port", &wanted_port, NULL, 0, 0},
                              {"--wavelength-nm", NULL, &nm, 1, 9999},
                              {"--from-percent", NULL, &from, 0, 100},
                              {"--to-percent", NULL, &to, 0, 100},
                              {"--duration-ms", NULL, &duration_ms, 1, 86400000},
                              {"--steps", NULL, &steps, 1, 1000000},
                              {NULL, NULL, NULL, 0, 0}};
    read_options(argc, argv, usage, options);
    hold_stop_signals();
    setvbuf(stdout, NULL, _IOLBF, 0);
    ORVEX_SetLogBits(0); /* What fails is told by succeeded(). */

    port = wanted_port != NULL ? wanted_port : port;
    if (!succeeded(port, "opening",
                   ORVEX_OpenDevice(&light, ORVEX_TYPE_UNDEFINED, wanted_port, 9600))) {
        return 1; /* A light whose opening failed is not closed. */
    }
    char path[64] = "?";
    ORVEX_GetDeviceInfo(light, NULL, path, sizeof path, NULL);
    port = path;
    bool done = succeeded(port, "reading the state", ORVEX_GetOVStruct(light, &state)) &&
                choose(nm, &before);
    if (done) {
        done = set_intensity(10 * from) && switch_on() &&
               ramp(10 * from, 10 * to, (double)duration_ms / 1e3, steps);
        done = switch_off() && set_intensity(before) && done;
    }
    ORVEX_CloseDevice(light);
    return done ? exit_status() : 1;
}
