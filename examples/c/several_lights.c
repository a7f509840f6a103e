/*
 * Flashes all attached light sources at the same time, each in a thread of its own.
 *
 *   cc several_lights.c -o several_lights $(pkg-config --cflags --libs qtr_orvex) -pthread
 *   orvex-sim run --device Tamar --device Cedar -- ./several_lights          (without a device)
 *
 * A failing light does not hold up the others. No thread may scan: scanning changes the list of
 * devices that the other calls use.
 */
#define _POSIX_C_SOURCE 200809L
#include <pthread.h>
#include <stdatomic.h>

#include "options.h"
#include "qtr_orvex.h"
#include "status_text.h"
#include "stop_signals.h"

static const char usage[] =
    "usage: several_lights [--flashes N] [--on-ms MS] [--off-ms MS]\n"
    "By default 5 flashes of 200 ms with 200 ms between them: of a light's first LED, or "
    "shutter.\n";

#define MAX_LIGHTS 16

static long flashes = 5, on_ms = 200, off_ms = 200;
static atomic_bool stopping;
static atomic_int running; /* Threads that have not ended. */

typedef struct Light {
    uint64_t handle;
    char port[64];
    pthread_t thread;
    bool is_led, done;
    long flashed;
} Light;

/* Sleeps in slices, so that a request to stop is not kept waiting. */
static void pause_ms(long ms) {
    const double end_s = seconds_now() + (double)ms / 1e3;
    const struct timespec slice = {0, 5000000};
    while (!stopping && seconds_now() < end_s) {
        nanosleep(&slice, NULL);
    }
}

/* An LED's first channel is selected while the light is off: then a switch is one request. */
static bool prepare(Light* light) {
    OrvexStruct state = {.iSize = sizeof state};
    if (!succeeded(light->port, "reading the state", ORVEX_GetOVStruct(light->handle, &state))) {
        return false;
    }
    light->is_led = (state.iCapabilities & ORVEX_CAP_LED) != 0;
    if (!light->is_led) {
        return true;
    }
    for (int k = 0; k < state.iNumChannels; ++k) {
        state.aChannels[k].iState = k == 0;
    }
    return succeeded(light->port, "switching off", ORVEX_SwitchOrvex(light->handle, true, false)) &&
           succeeded(light->port, "selecting an LED", ORVEX_SetOVStruct(light->handle, &state));
}

static bool switch_light(const Light* light, bool on) {
    if (light->is_led) {
        return succeeded(light->port, on ? "switching on" : "switching off",
                         ORVEX_SwitchOrvex(light->handle, true, on));
    }
    char reply[64];
    const char* name = on ? "OpenShutter" : "CloseShutter";
    return succeeded(light->port, name,
                     ORVEX_ExecuteCommand(light->handle, name, reply, sizeof reply));
}

/* Dark, whatever went before: a failed request is repeated. */
static bool switch_off(const Light* light) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (switch_light(light, false)) {
            return true;
        }
    }
    fprintf(stderr, "%s: the light may still be on!\n", light->port);
    return false;
}

static bool flash(Light* light) {
    while (light->flashed < flashes && !stopping) {
        const bool is_on = switch_light(light, true);
        if (is_on) {
            pause_ms(on_ms);
        }
        if (!switch_off(light) || !is_on) {
            return false;
        }
        ++light->flashed;
        pause_ms(off_ms);
    }
    return true;
}

/* What a light's thread does. */
static void* run(void* argument) {
    Light* light = argument;
    if (succeeded(light->port, "opening", ORVEX_OpenDeviceEx(light->handle))) {
        light->done = prepare(light) && flash(light);
        ORVEX_CloseDevice(light->handle); /* Only what has been opened is closed. */
    }
    --running;
    return NULL;
}

static uint32_t find(Light* lights) {
    uint64_t handles[MAX_LIGHTS] = {0};
    uint32_t found = 0;
    const uint32_t status = ORVEX_ScanDevices(handles, MAX_LIGHTS, &found);
    if (status != ORVEX_OK || found == 0) {
        succeeded("any port", "finding lights", status != ORVEX_OK ? status : ORVEX_ERR_NO_DEVICE);
        return 0;
    }
    for (uint32_t k = 0; k < found; ++k) {
        lights[k].handle = handles[k];
        ORVEX_GetDeviceInfo(handles[k], NULL, lights[k].port, sizeof lights[k].port, NULL);
    }
    return found;
}

int main(int argc, char** argv) {
    const Option options[] = {{"--flashes", NULL, &flashes, 1, 1000000},
                              {"--on-ms", NULL, &on_ms, 1, 3600000},
                              {"--off-ms", NULL, &off_ms, 0, 3600000},
                              {NULL, NULL, NULL, 0, 0}};
    read_options(argc, argv, usage, options);
    hold_stop_signals(); /* Before there are threads: they have the signals blocked, too. */
    ORVEX_SetLogBits(0); /* What fails is told by succeeded(). */
    static Light lights[MAX_LIGHTS];
    const uint32_t found = find(lights);
    uint32_t started = 0;
    for (; started < found; ++started) {
        ++running;
        if (pthread_create(&lights[started].thread, NULL, run, &lights[started]) != 0) {
            --running;
            fprintf(stderr, "no thread for %s\n", lights[started].port);
            break;
        }
    }
    while (running > 0 && wait_until(seconds_now() + 0.02)) {
    }
    stopping = stopped_by() != 0;
    bool all_done = found > 0 && started == found;
    for (uint32_t k = 0; k < started; ++k) {
        pthread_join(lights[k].thread, NULL);
        printf("%s: %ld of %ld flashes%s\n", lights[k].port, lights[k].flashed, flashes,
               lights[k].done ? "" : ", failed");
        all_done = all_done && lights[k].done;
    }
    return all_done ? exit_status() : 1;
}
