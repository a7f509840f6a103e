/*
 * Ending in an orderly way on Ctrl-C, SIGTERM, a closed terminal or a closed pipe.
 *
 * The signals are blocked, so that none interrupts an exchange with a light, and taken where the
 * program waits: there is no handler, and no moment at which a signal goes unnoticed. Programs
 * check stopped_by() between exchanges. Define _POSIX_C_SOURCE as 200809L in programs in strict C.
 */
#ifndef STOP_SIGNALS_H
#define STOP_SIGNALS_H

#include <signal.h>
#include <stdbool.h>
#include <time.h>

static sigset_t stop_signals;
static int stop_signal;

/* Call it first in main: threads that are started later inherit what is blocked. */
static inline void hold_stop_signals(void) {
    sigemptyset(&stop_signals);
    sigaddset(&stop_signals, SIGINT);
    sigaddset(&stop_signals, SIGTERM);
    sigaddset(&stop_signals, SIGHUP);
    sigaddset(&stop_signals, SIGPIPE);
    sigprocmask(SIG_BLOCK, &stop_signals, NULL);
}

static inline double seconds_now(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + (double)now.tv_nsec / 1e9;
}

/* Waits until seconds_now() is time_s. False: a signal has asked to stop, at once. */
static inline bool wait_until(double time_s) {
    double left_s;
    do {
        left_s = time_s - seconds_now();
        struct timespec span = {0, 0};
        if (left_s > 0) {
            span.tv_sec = (time_t)left_s;
            span.tv_nsec = (long)((left_s - (double)span.tv_sec) * 1e9);
        }
        if (stop_signal == 0) {
            const int taken = sigtimedwait(&stop_signals, NULL, &span);
            stop_signal = taken > 0 ? taken : 0;
        }
    } while (stop_signal == 0 && left_s > 0);
    return stop_signal == 0;
}

/* The signal that has asked to stop; 0: none. */
static inline int stopped_by(void) {
    wait_until(0);
    return stop_signal;
}

/* What a program that has not failed ends with: as if the signal had ended it. */
static inline int exit_status(void) {
    return stopped_by() != 0 ? 128 + stopped_by() : 0;
}

#endif
