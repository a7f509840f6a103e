/* Loads a library and calls it once; prints how many nanoseconds that took, and what its mappings
 * hold in memory, all together and to itself, in KiB.
 *
 *     start_probe LIBRARY
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

typedef uint32_t GetVersion(uint32_t*, uint32_t*, uint32_t*, uint32_t*);

static long long now(void) {
    struct timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return time.tv_sec * 1000000000LL + time.tv_nsec;
}

static void print_memory_of(const char* path) {
    char line[PATH_MAX + 200];
    int inside = 0;
    long kib = 0;
    long resident = 0;
    long own = 0;
    FILE* maps = fopen("/proc/self/smaps", "r");
    while (maps != NULL && fgets(line, sizeof line, maps) != NULL) {
        if (strstr(line, "-") != NULL && strstr(line, " r") != NULL) {
            inside = strstr(line, path) != NULL;
        } else if (inside && sscanf(line, "Rss: %ld", &kib) == 1) {
            resident += kib;
        } else if (inside && sscanf(line, "Private_Dirty: %ld", &kib) == 1) {
            own += kib;
        }
    }
    if (maps != NULL) {
        fclose(maps);
    }
    printf(" %ld %ld\n", resident, own);
}

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    const long long start = now();
    void* library = dlopen(argv[1], RTLD_NOW);
    GetVersion* get_version = NULL;
    if (library != NULL) {
        *(void**)&get_version = dlsym(library, "ORVEX_GetVersion");
    }
    if (get_version == NULL || get_version(NULL, NULL, NULL, NULL) != 0) {
        fprintf(stderr, "start_probe: %s\n", dlerror());
        return 1;
    }
    printf("%lld", now() - start);
    char path[PATH_MAX];
    print_memory_of(realpath(argv[1], path) != NULL ? path : argv[1]);
    return 0;
}
