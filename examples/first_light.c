/* Opens the first light source, sets its first channel to 25 % and switches it on for a second. */
#include <stdio.h>
#include <unistd.h>

#include "qtr_orvex.h"

int main(void) {
    uint64_t handles[8] = {0};
    uint32_t found = 0;
    ORVEX_SetLogBits(LOG_BIT_ERROR);
    uint32_t status = ORVEX_ScanDevices(handles, 8, &found);
    if (status != ORVEX_OK || found == 0) {
        fprintf(stderr, "no light source found (status 0x%08X)\n", status);
        return 1;
    }
    status = ORVEX_OpenDeviceEx(handles[0]);
    if (status != ORVEX_OK) {
        fprintf(stderr, "cannot open it (status 0x%08X)\n", status);
        return 1;
    }
    OrvexStruct state = {.iSize = sizeof state};
    status = ORVEX_GetOVStruct(handles[0], &state);
    if (status == ORVEX_OK && state.iNumChannels > 0) {
        printf("%s: %d channels, first: %s\n", state.szModelName, state.iNumChannels,
               state.aChannels[0].szLedName);
        state.aChannels[0].iIntensity = 250; /* tenths of a per cent */
        state.aChannels[0].iState = 1;
        status = ORVEX_SetOVStruct(handles[0], &state);
        sleep(1);
        state.aChannels[0].iState = 0;
        const uint32_t off = ORVEX_SetOVStruct(handles[0], &state);
        status = status != ORVEX_OK ? status : off;
    }
    ORVEX_CloseDevice(handles[0]);
    return status == ORVEX_OK ? 0 : 1;
}
