/* The options of a program, "--name VALUE" each; any mistake ends it with its usage and 2. */
#ifndef OPTIONS_H
#define OPTIONS_H

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* An option takes a text, or a whole number from least to most. The list ends with name NULL. */
typedef struct Option {
    const char* name;
    const char** text;
    long* number;
    long least, most;
} Option;

static inline void read_option(const Option* option, const char* value, const char* usage) {
    if (option->text != NULL) {
        *option->text = value;
        return;
    }
    char* end = NULL;
    errno = 0;
    *option->number = strtol(value, &end, 10);
    if (end == value || *end != '\0' || errno != 0 || *option->number < option->least ||
        *option->number > option->most) {
        fprintf(stderr, "%s: \"%s\" is no whole number from %ld to %ld\n%s", option->name, value,
                option->least, option->most, usage);
        exit(2);
    }
}

static inline void read_options(int argc, char** argv, const char* usage, const Option* options) {
    for (int k = 1; k < argc; ++k) {
        if (strcmp(argv[k], "--help") == 0) {
            fputs(usage, stdout);
            exit(0);
        }
        const Option* option = options;
        while (option->name != NULL && strcmp(option->name, argv[k]) != 0) {
            ++option;
        }
        if (option->name == NULL || k + 1 == argc) {
            fprintf(stderr, "%s: %s\n%s", argv[k],
                    option->name == NULL ? "there is no such option" : "a value is missing", usage);
            exit(2);
        }
        read_option(option, argv[++k], usage);
    }
}

#endif
