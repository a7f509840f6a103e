/*
 * Logs what the library does to a logger of one's own: time, level and origin before each line.
 *
 *   cc own_logger.c -o own_logger $(pkg-config --cflags --libs qtr_orvex)
 *   orvex-sim run --device Tamar -- ./own_logger --level debug               (without a device)
 */
#define _POSIX_C_SOURCE 200809L
#include <time.h>

#include "options.h"
#include "qtr_orvex.h"
#include "status_text.h"

static const char usage[] =
    "usage: own_logger [--port PORT] [--level error|warning|info|debug] [--file FILE]\n"
    "Asks the first light found for its temperature and logs that, and what the library tells on "
    "the\n"
    "way: up to a level, info by default. The log goes to standard error, or is added to a file.\n";

/* The logger of this program. */
enum Level { LEVEL_ERROR, LEVEL_WARNING, LEVEL_INFO, LEVEL_DEBUG, LEVELS };
static const char* const level_names[LEVELS] = {"error", "warning", "info", "debug"};
static FILE* log_file;

static void write_log(enum Level level, const char* origin, const char* text) {
    struct timespec now;
    struct tm utc;
    char date[32];
    clock_gettime(CLOCK_REALTIME, &now);
    strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", gmtime_r(&now.tv_sec, &utc));
    /* One call for a line: stdio keeps the lines of several threads apart. */
    fprintf(log_file, "%s.%03ldZ %s %s: %s\n", date, now.tv_nsec / 1000000, level_names[level],
            origin, text);
    fflush(log_file);
}

/*
 * Receives the library's lines. They begin with what tells their class. It runs with the log
 * locked: no call of the library in here.
 */
static void take_line(const char* text) {
    static const struct {
        const char* begin;
        enum Level level;
    } kinds[] = {{"Error: ", LEVEL_ERROR},
                 {"Warning: ", LEVEL_WARNING},
                 {"Send [", LEVEL_DEBUG},
                 {" <-Received [", LEVEL_DEBUG}};
    for (size_t k = 0; k < sizeof kinds / sizeof kinds[0]; ++k) {
        const size_t length = strlen(kinds[k].begin);
        if (strncmp(text, kinds[k].begin, length) == 0) {
            /* The level tells what the word says; a request or reply is shown whole. */
            write_log(kinds[k].level, "orvex", kinds[k].level < LEVEL_INFO ? text + length : text);
            return;
        }
    }
    write_log(LEVEL_INFO, "orvex", text);
}

static void send_library_log_here(enum Level level) {
    static const uint32_t bits[LEVELS] = {LOG_BIT_ERROR, LOG_BIT_WARNING,
                                          LOG_BIT_INFO | LOG_BIT_SERIAL | LOG_BIT_DETAIL,
                                          LOG_BIT_TRAFFIC};
    uint32_t mask = 0;
    for (int k = 0; k <= (int)level; ++k) {
        mask |= bits[k];
    }
    ORVEX_RegisterLogCallback(take_line);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    ORVEX_SetLogBits(mask);
}

static uint32_t log_temperature(const char* port) {
    uint64_t light = 0;
    uint32_t status = ORVEX_OpenDevice(&light, ORVEX_TYPE_UNDEFINED, port, 9600);
    if (status != ORVEX_OK) {
        return status; /* A light whose opening failed is not closed. */
    }
    char reply[128] = "", line[160];
    status = ORVEX_ExecuteCommand(light, "GetTemperature", reply, sizeof reply);
    if (status == ORVEX_OK) {
        snprintf(line, sizeof line, "temperature, degrees C: %.*s", (int)strcspn(reply, "\r"),
                 reply);
        write_log(LEVEL_INFO, "own_logger", line);
    }
    ORVEX_CloseDevice(light);
    return status;
}

int main(int argc, char** argv) {
    const char *port = NULL, *level_name = "info", *file = NULL;
    const Option options[] = {{"--port", &port, NULL, 0, 0},
                              {"--level", &level_name, NULL, 0, 0},
                              {"--file", &file, NULL, 0, 0},
                              {NULL, NULL, NULL, 0, 0}};
    read_options(argc, argv, usage, options);
    int level = 0;
    while (level < LEVELS && strcmp(level_names[level], level_name) != 0) {
        ++level;
    }
    if (level == LEVELS) {
        fprintf(stderr, "--level: there is no level \"%s\"\n%s", level_name, usage);
        return 2;
    }
    log_file = file != NULL ? fopen(file, "a") : stderr;
    if (log_file == NULL) {
        perror(file);
        return 1;
    }
    send_library_log_here((enum Level)level);
    const uint32_t status = log_temperature(port);
    const bool done = succeeded(port != NULL ? port : "any port", "logging a temperature", status);
    ORVEX_RegisterLogCallback(NULL); /* The library may log until it is unloaded. */
    const bool is_written = ferror(log_file) == 0;
    if (file != NULL && (fclose(log_file) != 0 || !is_written)) {
        fprintf(stderr, "%s: the log could not be written\n", file);
        return 1;
    }
    return done ? 0 : 1;
}
