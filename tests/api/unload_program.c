/* Opens a device and ends with the device still open.
 *
 *   unload_program LIBRARY SINK END
 *
 * SINK is "callback", "stdout" or a log file's path. END is "dlclose", "return", "exit" or
 * "readout": as "dlclose", after an opening that fails. Between the opening and the end the program
 * writes "open" and waits for a line.
 */
#include "include/qtr_orvex.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void* library = NULL;

static void find(void* function, const char* name) {
    void* const symbol = dlsym(library, name);
    if (symbol == NULL) {
        printf("%s is not exported\n", name);
        exit(2);
    }
    memcpy(function, &symbol, sizeof symbol);
}

static void receive(const char* text) {
    printf("%s\n", text);
    fflush(stdout);
}

static void chooseSink(const char* sink) {
    void (*setLogBits)(uint32_t) = NULL;
    void (*setLogMode)(int) = NULL;
    void (*setLogFile)(const char*) = NULL;
    void (*registerCallback)(OrvexLogCallback) = NULL;
    find(&setLogBits, "ORVEX_SetLogBits");
    find(&setLogMode, "ORVEX_SetLogMode");
    find(&setLogFile, "ORVEX_SetLogFile");
    find(&registerCallback, "ORVEX_RegisterLogCallback");
    setLogBits(LOG_BIT_ERROR);
    if (strcmp(sink, "callback") == 0) {
        registerCallback(receive);
        setLogMode(LOG_METHOD_CALLBACK);
    } else if (strcmp(sink, "stdout") == 0) {
        setLogMode(LOG_METHOD_STDOUT);
    } else {
        setLogFile(sink);
        setLogMode(LOG_METHOD_FILE);
    }
}

static uint32_t openFirst(void) {
    uint64_t handles[4] = {0};
    uint32_t found = 0;
    uint32_t (*scan)(uint64_t*, uint32_t, uint32_t*) = NULL;
    uint32_t (*open)(uint64_t) = NULL;
    find(&scan, "ORVEX_ScanDevices");
    find(&open, "ORVEX_OpenDeviceEx");
    if (scan(handles, 4, &found) != ORVEX_OK || found == 0) {
        printf("no device\n");
        exit(2);
    }
    return open(handles[0]);
}

int main(int argc, char** argv) {
    char line[16];
    uint32_t opened;
    if (argc != 4 || (library = dlopen(argv[1], RTLD_NOW)) == NULL) {
        printf("%s\n", argc == 4 ? dlerror() : "usage: unload_program LIBRARY SINK END");
        return 2;
    }
    chooseSink(argv[2]);
    opened = openFirst();
    if ((opened == ORVEX_OK) == (strcmp(argv[3], "readout") == 0)) {
        printf("opening: 0x%X\n", (unsigned)opened);
        return 2;
    }
    printf("open\n");
    fflush(stdout);
    if (fgets(line, sizeof line, stdin) == NULL) {
        return 2;
    }
    if (strcmp(argv[3], "exit") == 0) {
        exit(0);
    }
    if (strcmp(argv[3], "return") == 0) {
        return 0;
    }
    if (dlclose(library) != 0) {
        return 2;
    }
    printf("closed\n");
    fflush(stdout);
    return dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) == NULL ? 0 : 3;
}
