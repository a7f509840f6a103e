/*
 * Time-lapse: an exposure every so often, with the light on for the exposure only.
 *
 *   cc time_lapse.c -o time_lapse $(pkg-config --cflags --libs qtr_orvex)
 *   orvex-sim run --device Tamar -- ./time_lapse --frames 3              (without a device)
 */
#define _POSIX_C_SOURCE 200809L
#include "options.h"
#include "qtr_orvex.h"
#include "status_text.h"
#include "stop_signals.h"

static const char usage[] =
    "usage: time_lapse [--port PORT] [--wavelength-nm NM] [--exposure-ms MS] [--interval-ms MS]\n"
    "                  [--frames N]\n"
    "By default 10 exposures of 100 ms, one a second, with the first light found and the first of\n"
    "its LEDs (a lamp: its shutter), at the intensity that is set.\n";

static const char* port = "any port";
static uint64_t light;
static bool is_led;

static bool command(const char* name, const char* value) {
    char reply[64];
    const uint32_t status = ORVEX_ExecuteCommandWithValue(light, name, reply, sizeof reply, value);
    return succeeded(port, name, status);
}

/* Finds the position of an LED: commands count from 1, and empty positions too. nm 0: any LED. */
static bool find_position(long nm, char* position, size_t size) {
    char reply[128] = "";
    const uint32_t status = ORVEX_ExecuteCommand(light, "GetWaveLengthLED", reply, sizeof reply);
    if (!succeeded(port, "GetWaveLengthLED", status)) {
        return false;
    }
    int k = 1;
    for (char* text = strtok(reply, ",\r"); text != NULL; text = strtok(NULL, ",\r"), ++k) {
        const long fitted = strtol(text, NULL, 10);
        if (fitted != ORVEX_EMPTY_POSITION && (nm == 0 || fitted == nm)) {
            return snprintf(position, size, "%d", k) > 0;
        }
    }
    fprintf(stderr, "%s: there is no LED of %ld nm\n  try: find_and_list\n", port, nm);
    return false;
}

/* Dark, whatever went before: a failed request is repeated. */
static bool switch_off(void) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (command(is_led ? "TurnAllLedOff" : "CloseShutter", NULL)) {
            return true;
        }
    }
    fprintf(stderr, "%s: the light may still be on!\n", port);
    return false;
}

static bool take_frames(const char* position, long frames, double exposure_s, double interval_s) {
    const double start_s = seconds_now();
    for (long k = 0; k < frames && wait_until(start_s + (double)k * interval_s); ++k) {
        const bool is_on = command(is_led ? "TurnLedOn" : "OpenShutter", position);
        const double on_s = seconds_now();
        if (is_on) {
            wait_until(on_s + exposure_s); /* The camera exposes here. */
        }
        /* Off also when switching on has failed: the request may have arrived. */
        if (!switch_off() || !is_on) {
            return false;
        }
        printf("frame %ld of %ld at %.3f s: light on for %.1f ms\n", k + 1, frames, on_s - start_s,
               (seconds_now() - on_s) * 1e3);
    }
    return true;
}

int main(int argc, char** argv) {
    const char* wanted_port = NULL;
    long nm = 0, exposure_ms = 100, interval_ms = 1000, frames = 10;
    const Option options[] = {{"--port", &wanted_port, NULL, 0, 0},
                              {"--wavelength-nm", NULL, &nm, 1, 9999},
                              {"--exposure-ms", NULL, &exposure_ms, 1, 3600000},
                              {"--interval-ms", NULL, &interval_ms, 1, 86400000},
                              {"--frames", NULL, &frames, 1, 1000000},
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
    char path[64] = "", position[16] = "";
    OrvexStruct state = {.iSize = sizeof state};
    const bool known = succeeded(port, "asking for the port",
                                 ORVEX_GetDeviceInfo(light, NULL, path, sizeof path, NULL));
    port = path;
    bool done = known && succeeded(port, "reading the state", ORVEX_GetOVStruct(light, &state));
    is_led = (state.iCapabilities & ORVEX_CAP_LED) != 0;
    done = done && (!is_led || find_position(nm, position, sizeof position)) &&
           take_frames(position, frames, (double)exposure_ms / 1e3, (double)interval_ms / 1e3);
    ORVEX_CloseDevice(light);
    return done ? exit_status() : 1;
}
