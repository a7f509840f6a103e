/* Tells what failed on which port, and what to try next. Plain C and C++. */
#ifndef STATUS_TEXT_H
#define STATUS_TEXT_H

#include <stdio.h>

#include "qtr_orvex.h"

static inline const char* status_text(uint32_t status) {
    switch (status) {
        case ORVEX_ERR_INVALID_ARG:
            return "an argument is invalid\n  try: check the value, and that the port is a tty";
        case ORVEX_ERR_NO_HANDLE:
            return "the light is gone\n  try: plug it in and start again";
        case ORVEX_ERR_NOT_SUPPORTED:
            return "this model does not have that command\n"
                   "  try: orvexctl commands lists what it has";
        case ORVEX_ERR_NO_DEVICE:
            return "no light was found there, or its port cannot be opened\n"
                   "  try: orvexctl doctor finds out why";
        case ORVEX_ERR_RECV:
        case ORVEX_ERR_NO_RESPONSE:
            return "the light does not answer\n"
                   "  try: is it switched on? Does another program use its port?";
        case ORVEX_ERR_IO:
            return "the light refused, or was unplugged\n"
                   "  try: check cable and values; orvexctl doctor looks at the rest";
        case ORVEX_ERR_SEND:
        case ORVEX_ERR_NOT_CONNECTED:
            return "the light was unplugged\n  try: check its cable and start again";
        default:
            return "that went wrong\n  try: orvexctl doctor";
    }
}

static inline bool succeeded(const char* port, const char* what, uint32_t status) {
    if (status != ORVEX_OK) {
        fprintf(stderr, "%s: %s failed with 0x%08X: %s\n", port, what, status, status_text(status));
    }
    return status == ORVEX_OK;
}

#endif
