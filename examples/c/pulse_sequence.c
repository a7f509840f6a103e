/*
 * Lets several LEDs flash one after the other, timed by the device itself.
 *
 *   cc pulse_sequence.c -o pulse_sequence $(pkg-config --cflags --libs qtr_orvex)
 *   orvex-sim run --device Tamar -- ./pulse_sequence --wavelengths-nm 365,470,525
 *
 * Each LED has a delay, an on and an off time: the n-th one waits for n - 1 others, and is then off
 * while they flash. Times are ticks; the device's manual tells the codes of --unit (how long a tick
 * is) and --mode (how the sequence is triggered).
 */
#define _POSIX_C_SOURCE 200809L
#include "options.h"
#include "qtr_orvex.h"
#include "status_text.h"
#include "stop_signals.h"

static const char usage[] =
    "usage: pulse_sequence [--port PORT] [--wavelengths-nm NM,NM...] [--on-ticks N] [--gap-ticks "
    "N]\n"
    "                      [--advance-ticks N] [--unit CODE] [--mode CODE] [--run-ms MS]\n"
    "By default all LEDs of the first Tamar found, 100 ticks each with gaps of 50, for 2 s.\n";

#define LONGEST_TICKS 99999 /* What the five digits of a time hold. */

typedef struct Plan {
    long positions, leds;         /* Of the device; of the sequence. */
    long turn[ORVEX_MAX_CHANNEL]; /* For each position: when it flashes, from 1; 0: never. */
} Plan;

static const char* port = "any port";
static uint64_t light;

static bool command(const char* name, const char* value, char reply[128]) {
    const uint32_t status = ORVEX_ExecuteCommandWithValue(light, name, reply, 128, value);
    if (!succeeded(port, name, status)) {
        return false;
    }
    reply[strcspn(reply, "\r")] = '\0';
    return true;
}

/* Gives each wavelength of a list, "365,470", its turn; without a list each LED has one. */
static bool make_plan(const char* list, Plan* plan) {
    char reply[128];
    if (!command("GetWaveLengthLED", NULL, reply)) {
        return false;
    }
    long fitted[ORVEX_MAX_CHANNEL] = {0};
    for (char* text = strtok(reply, ","); text != NULL && plan->positions < ORVEX_MAX_CHANNEL;
         text = strtok(NULL, ",")) {
        fitted[plan->positions] = strtol(text, NULL, 10);
        if (list == NULL && fitted[plan->positions] != ORVEX_EMPTY_POSITION) {
            plan->turn[plan->positions] = ++plan->leds;
        }
        ++plan->positions;
    }
    for (const char* at = list; at != NULL && *at != '\0';) {
        char* end = NULL;
        const long nm = strtol(at, &end, 10);
        long k = 0;
        while (k < plan->positions && (fitted[k] != nm || plan->turn[k] != 0)) {
            ++k;
        }
        if (end == at || nm == ORVEX_EMPTY_POSITION || k == plan->positions) {
            fprintf(stderr, "%s: no LED for \"%s\"\n  try: find_and_list\n", port, at);
            return false;
        }
        plan->turn[k] = ++plan->leds;
        at = *end == ',' ? end + 1 : end;
    }
    return true;
}

/* Sends one time for each position, first + step * (turn - 1), and reads back what the device has.
 */
static bool set_times(const Plan* plan, const char* what, long first, long step) {
    char value[128] = "", name[64], reply[128];
    size_t used = 0;
    for (long k = 0; k < plan->positions; ++k) {
        const long ticks = plan->turn[k] == 0 ? 0 : first + step * (plan->turn[k] - 1);
        used +=
            (size_t)snprintf(value + used, sizeof value - used, "%s%ld", k == 0 ? "" : ",", ticks);
    }
    snprintf(name, sizeof name, "Set%s", what);
    if (!command(name, value, reply)) {
        return false;
    }
    snprintf(name, sizeof name, "Get%s", what);
    if (!command(name, NULL, reply)) {
        return false;
    }
    if (strcmp(reply, value) != 0) {
        fprintf(stderr, "%s: %s: the device made %s of %s\n  try: other times\n", port, what, reply,
                value);
        return false;
    }
    printf("%-18s %s\n", what, reply);
    return true;
}

/* Stopped and dark, whatever went before: failed requests are repeated. */
static bool stop(void) {
    char reply[128];
    bool stopped = false, dark = false;
    for (int attempt = 0; attempt < 3 && !(stopped && dark); ++attempt) {
        stopped = stopped || command("StopPWM", NULL, reply);
        dark = dark || command("TurnAllLedOff", NULL, reply);
    }
    if (!stopped || !dark) {
        fprintf(stderr, "%s: the light may still be on!\n", port);
    }
    return stopped && dark;
}

static bool run(double duration_s) {
    char reply[128];
    bool done = command("StartPWM", NULL, reply) && command("StatusPWM", NULL, reply);
    if (done) {
        printf("running, status %s\n", reply);
        wait_until(seconds_now() + duration_s);
    }
    /* Stopped also when starting has failed: the request may have arrived. */
    return stop() && done;
}

int main(int argc, char** argv) {
    const char *wanted_port = NULL, *list = NULL;
    long on = 100, gap = 50, advance = 0, unit = -1, mode = -1, run_ms = 2000;
    const Option options[] = {{"--port", &wanted_port, NULL, 0, 0},
                              {"--wavelengths-nm", &list, NULL, 0, 0},
                              {"--on-ticks", NULL, &on, 1, LONGEST_TICKS},
                              {"--gap-ticks", NULL, &gap, 0, LONGEST_TICKS},
                              {"--advance-ticks", NULL, &advance, 0, LONGEST_TICKS},
                              {"--unit", NULL, &unit, 0, 9},
                              {"--mode", NULL, &mode, 0, 9},
                              {"--run-ms", NULL, &run_ms, 1, 86400000},
                              {NULL, NULL, NULL, 0, 0}};
    read_options(argc, argv, usage, options);
    if (list != NULL && strspn(list, "0123456789,") != strlen(list)) {
        fprintf(stderr, "--wavelengths-nm: \"%s\" is no list\n%s", list, usage);
        return 2;
    }
    hold_stop_signals();
    setvbuf(stdout, NULL, _IOLBF, 0);
    ORVEX_SetLogBits(0); /* What fails is told by succeeded(). */

    port = wanted_port != NULL ? wanted_port : port;
    const uint32_t status = ORVEX_OpenDevice(&light, ORVEX_TYPE_TAMAR, wanted_port, 9600);
    if (!succeeded(port, "opening a Tamar", status)) {
        return 1; /* A light whose opening failed is not closed. */
    }
    char path[64] = "?", text[16], reply[128];
    ORVEX_GetDeviceInfo(light, NULL, path, sizeof path, NULL);
    port = path;
    Plan plan = {.positions = 0};
    bool done = make_plan(list, &plan);
    const long cycle = plan.leds * (on + gap);
    if (done && cycle - on > LONGEST_TICKS) {
        fprintf(stderr, "a cycle of %ld ticks is too long\n%s", cycle, usage);
        done = false;
    }
    snprintf(text, sizeof text, "%ld", mode);
    done = done && (unit < 0 || set_times(&plan, "UnitsPWM", unit, 0)) &&
           set_times(&plan, "SignalDelayTime", 0, on + gap) &&
           set_times(&plan, "SignalOnTime", on, 0) &&
           set_times(&plan, "SignalOffTime", cycle - on, 0) &&
           set_times(&plan, "TriggerAdvanceTime", advance, 0) &&
           (mode < 0 || command("SetGeneratorPulseMode", text, reply)) && run((double)run_ms / 1e3);
    ORVEX_CloseDevice(light);
    return done ? exit_status() : 1;
}
