/* The header and the calls as a plain C program sees them that is not linked with the library.
 *
 *   c_header_test LIBRARY
 */
#include "include/qtr_orvex.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;
static int lines = 0;
static void* library = NULL;

#define EXPECT(condition)                                           \
    do {                                                            \
        if (!(condition)) {                                         \
            fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            ++failures;                                             \
        }                                                           \
    } while (0)

/* A pointer to the call of this name and type. */
#define FIND(type, call) \
    type call##_ = NULL; \
    find(&call##_, sizeof call##_, #call)

static void find(void* function, size_t size, const char* name) {
    void* const symbol = dlsym(library, name);
    if (symbol == NULL) {
        fprintf(stderr, "%s is not exported\n", name);
        ++failures;
    }
    memcpy(function, &symbol, size);
}

typedef uint32_t (*GetVersion)(uint32_t*, uint32_t*, uint32_t*, uint32_t*);
typedef uint32_t (*ScanDevices)(uint64_t*, uint32_t, uint32_t*);
typedef uint32_t (*OpenDevice)(uint64_t*, uint32_t, const char*, uint32_t);
typedef uint32_t (*OpenDeviceEx)(uint64_t);
typedef uint32_t (*GetDeviceInfo)(uint64_t, uint32_t*, char*, uint32_t, uint32_t*);
typedef void (*CloseDevice)(uint64_t);
typedef uint32_t (*ExecuteCommand)(uint64_t, const char*, char*, uint32_t);
typedef uint32_t (*ExecuteCommandWithValue)(uint64_t, const char*, char*, uint32_t, const char*);
typedef uint32_t (*SetOVStruct)(uint64_t, const OrvexStruct*);
typedef uint32_t (*GetOVStruct)(uint64_t, OrvexStruct*);
typedef uint32_t (*SwitchOrvex)(uint64_t, bool, bool);
typedef void (*SetLogBits)(uint32_t);
typedef uint32_t (*GetLogBits)(void);
typedef void (*SetLogMode)(int);
typedef int (*GetLogMode)(void);
typedef void (*SetLogFile)(const char*);
typedef void (*RegisterLogCallback)(void (*)(const char*));

_Static_assert(sizeof(bool) == 1, "flags are passed as one byte");
_Static_assert(sizeof(OrvexStruct) == 2008, "the record's size is fixed");
_Static_assert(sizeof(OrvexChannel) == 116, "the channel's size is fixed");
_Static_assert(ORVEX_MAX_CHANNEL == 16, "the number of channel records is fixed");

/* The declarations have these types; nothing here is called or linked. */
#define HAS_TYPE(type, call) _Static_assert(_Generic(&(call), type : 1, default : 0), #call)

HAS_TYPE(GetVersion, ORVEX_GetVersion);
HAS_TYPE(ScanDevices, ORVEX_ScanDevices);
HAS_TYPE(OpenDevice, ORVEX_OpenDevice);
HAS_TYPE(OpenDeviceEx, ORVEX_OpenDeviceEx);
HAS_TYPE(GetDeviceInfo, ORVEX_GetDeviceInfo);
HAS_TYPE(CloseDevice, ORVEX_CloseDevice);
HAS_TYPE(ExecuteCommand, ORVEX_ExecuteCommand);
HAS_TYPE(ExecuteCommandWithValue, ORVEX_ExecuteCommandWithValue);
HAS_TYPE(SetOVStruct, ORVEX_SetOVStruct);
HAS_TYPE(GetOVStruct, ORVEX_GetOVStruct);
HAS_TYPE(SwitchOrvex, ORVEX_SwitchOrvex);
HAS_TYPE(SetLogBits, ORVEX_SetLogBits);
HAS_TYPE(GetLogBits, ORVEX_GetLogBits);
HAS_TYPE(SetLogMode, ORVEX_SetLogMode);
HAS_TYPE(GetLogMode, ORVEX_GetLogMode);
HAS_TYPE(SetLogFile, ORVEX_SetLogFile);
HAS_TYPE(RegisterLogCallback, ORVEX_RegisterLogCallback);

static void checkConstants(void) {
    EXPECT(ORVEX_OK == 0x00000000u);
    EXPECT(ORVEX_ERR_UNSPECIFIED == 0x00005000u);
    EXPECT(ORVEX_ERR_INVALID_ARG == 0xA0515001u);
    EXPECT(ORVEX_ERR_INVALID_HANDLE == 0xA0515002u);
    EXPECT(ORVEX_ERR_BUFFER_TOO_SMALL == 0xA0515006u);
    EXPECT(ORVEX_ERR_NO_HANDLE == 0xA0515007u);
    EXPECT(ORVEX_ERR_NOT_SUPPORTED == 0xA0515013u);
    EXPECT(ORVEX_ERR_RECV == 0xA0515019u);
    EXPECT(ORVEX_ERR_SEND == 0xA051501Au);
    EXPECT(ORVEX_ERR_STRUCT_SIZE == 0x80513002u);
    EXPECT(ORVEX_ERR_NO_DEVICE == 0x80515001u);
    EXPECT(ORVEX_ERR_NO_RESPONSE == 0x80515002u);
    EXPECT(ORVEX_ERR_IO == 0x80515003u);
    EXPECT(ORVEX_ERR_MAX_CHANNEL == 0x80515020u);
    EXPECT(ORVEX_ERR_NOT_CONNECTED == 0x80517006u);
    EXPECT(ORVEX_TYPE_ALDER == 0 && ORVEX_TYPE_BIRCH == 1 && ORVEX_TYPE_CEDAR == 2);
    EXPECT(ORVEX_TYPE_HAZEL == 3 && ORVEX_TYPE_LARCH == 4 && ORVEX_TYPE_MAPLE == 5);
    EXPECT(ORVEX_TYPE_ROWAN == 6 && ORVEX_TYPE_SPRUCE == 7 && ORVEX_TYPE_TAMAR == 8);
    EXPECT(ORVEX_TYPE_WILLOW == 9 && ORVEX_TYPE_UNDEFINED == 65535);
    EXPECT(ORVEX_EMPTY_POSITION == 999);
    EXPECT(LOG_BIT_ERROR == 0x1 && LOG_BIT_INFO == 0x2 && LOG_BIT_RESERVED == 0x4);
    EXPECT(LOG_BIT_SERIAL == 0x8 && LOG_BIT_WARNING == 0x10 && LOG_BIT_DETAIL == 0x20);
    EXPECT(LOG_BIT_TRAFFIC == 0x40 && LOG_BIT_TIMESTAMP == 0x1000);
    EXPECT(LOG_METHOD_STDOUT == 0 && LOG_METHOD_FILE == 1 && LOG_METHOD_CALLBACK == 2);
}

static void checkRecordLayout(void) {
    EXPECT(offsetof(OrvexStruct, szModelName) == 2);
    EXPECT(offsetof(OrvexStruct, hDevice) == 32);
    EXPECT(offsetof(OrvexStruct, iDeviceInfo) == 40);
    EXPECT(offsetof(OrvexStruct, iNumChannels) == 48);
    EXPECT(offsetof(OrvexStruct, iExtendedChannels) == 52);
    EXPECT(offsetof(OrvexStruct, iUnitStatus) == 56);
    EXPECT(offsetof(OrvexStruct, iSerialNumber) == 60);
    EXPECT(offsetof(OrvexStruct, iCapabilities) == 64);
    EXPECT(offsetof(OrvexStruct, aiGroupSlot) == 68);
    EXPECT(offsetof(OrvexStruct, aChannels) == 152);
    EXPECT(offsetof(OrvexChannel, iWavelength) == 16);
    EXPECT(offsetof(OrvexChannel, iGroup) == 20);
    EXPECT(offsetof(OrvexChannel, iIntensity) == 24);
    EXPECT(offsetof(OrvexChannel, iMinIntensity) == 28);
    EXPECT(offsetof(OrvexChannel, iMaxIntensity) == 32);
    EXPECT(offsetof(OrvexChannel, iIntensityStep) == 36);
    EXPECT(offsetof(OrvexChannel, iTemperature) == 44);
    EXPECT(offsetof(OrvexChannel, iState) == 48);
}

static void countLine(const char* text) {
    EXPECT(text != NULL && text[0] != '\0');
    ++lines;
}

static void checkLogCalls(void) {
    FIND(SetLogBits, ORVEX_SetLogBits);
    FIND(GetLogBits, ORVEX_GetLogBits);
    FIND(SetLogMode, ORVEX_SetLogMode);
    FIND(GetLogMode, ORVEX_GetLogMode);
    FIND(SetLogFile, ORVEX_SetLogFile);
    FIND(RegisterLogCallback, ORVEX_RegisterLogCallback);
    EXPECT(ORVEX_GetLogBits_() == 0x7Fu);
    EXPECT(ORVEX_GetLogMode_() == 0);
    ORVEX_SetLogBits_(0xFFFFEFFFu);
    EXPECT(ORVEX_GetLogBits_() == 0xFFFFEFFFu);
    ORVEX_SetLogFile_("");
    ORVEX_SetLogMode_(2);
    EXPECT(ORVEX_GetLogMode_() == 2);
    ORVEX_RegisterLogCallback_(NULL);
    ORVEX_RegisterLogCallback_(countLine);
    EXPECT(lines == 0);
}

static void checkDeviceCalls(void) {
    uint64_t handle = 1;
    uint64_t slots[2] = {0, 0};
    uint32_t number = 77;
    char port[8] = "";
    FIND(GetVersion, ORVEX_GetVersion);
    FIND(ScanDevices, ORVEX_ScanDevices);
    FIND(OpenDevice, ORVEX_OpenDevice);
    FIND(OpenDeviceEx, ORVEX_OpenDeviceEx);
    FIND(GetDeviceInfo, ORVEX_GetDeviceInfo);
    FIND(CloseDevice, ORVEX_CloseDevice);
    EXPECT(ORVEX_GetVersion_(NULL, NULL, NULL, NULL) == ORVEX_OK);
    EXPECT(ORVEX_GetVersion_(&number, NULL, NULL, NULL) == ORVEX_OK && number == 1);
    EXPECT(lines == 0);
    EXPECT(ORVEX_ScanDevices_(NULL, 2, &number) == ORVEX_ERR_INVALID_HANDLE);
    EXPECT(ORVEX_ScanDevices_(slots, 0, &number) == ORVEX_ERR_INVALID_ARG);
    EXPECT(ORVEX_ScanDevices_(slots, 2, NULL) == ORVEX_ERR_INVALID_ARG);
    EXPECT(ORVEX_OpenDevice_(NULL, ORVEX_TYPE_UNDEFINED, NULL, 9600) == ORVEX_ERR_INVALID_HANDLE);
    EXPECT(ORVEX_OpenDevice_(&handle, ORVEX_TYPE_UNDEFINED, NULL, 9600) ==
           ORVEX_ERR_INVALID_HANDLE);
    EXPECT(ORVEX_OpenDeviceEx_(0) == ORVEX_ERR_INVALID_HANDLE);
    EXPECT(ORVEX_OpenDeviceEx_(1) == ORVEX_ERR_INVALID_HANDLE);
    EXPECT(lines == 7);
    EXPECT(ORVEX_GetDeviceInfo_(1, NULL, NULL, 0, NULL) == ORVEX_ERR_NO_HANDLE);
    EXPECT(ORVEX_GetDeviceInfo_(1, &number, port, sizeof port, &number) == ORVEX_ERR_NO_HANDLE);
    EXPECT(lines == 7);
    ORVEX_CloseDevice_(1);
    EXPECT(lines == 10);
    EXPECT(handle == 1 && slots[0] == 0 && slots[1] == 0 && number == 1 && port[0] == '\0');
}

static void checkCommandCalls(void) {
    static OrvexStruct record;
    char reply[8] = "";
    FIND(ExecuteCommand, ORVEX_ExecuteCommand);
    FIND(ExecuteCommandWithValue, ORVEX_ExecuteCommandWithValue);
    FIND(SetOVStruct, ORVEX_SetOVStruct);
    FIND(GetOVStruct, ORVEX_GetOVStruct);
    FIND(SwitchOrvex, ORVEX_SwitchOrvex);
    record.iSize = sizeof record;
    lines = 0;
    EXPECT(ORVEX_ExecuteCommand_(1, NULL, NULL, 0) == ORVEX_ERR_NO_HANDLE);
    EXPECT(ORVEX_ExecuteCommand_(1, "Connect", reply, sizeof reply) == ORVEX_ERR_NO_HANDLE);
    EXPECT(ORVEX_ExecuteCommandWithValue_(1, NULL, NULL, 0, NULL) == ORVEX_ERR_NO_HANDLE);
    EXPECT(ORVEX_SetOVStruct_(1, &record) == ORVEX_ERR_NO_HANDLE);
    EXPECT(ORVEX_GetOVStruct_(1, &record) == ORVEX_ERR_NO_HANDLE);
    EXPECT(ORVEX_SwitchOrvex_(1, true, false) == ORVEX_ERR_NO_HANDLE);
    EXPECT(lines == 0);
    EXPECT(reply[0] == '\0' && record.iSize == 2008);
}

int main(int argc, char** argv) {
    if (argc != 2 || (library = dlopen(argv[1], RTLD_NOW)) == NULL) {
        fprintf(stderr, "%s\n", argc == 2 ? dlerror() : "usage: c_header_test LIBRARY");
        return 1;
    }
    checkConstants();
    checkRecordLayout();
    checkLogCalls();
    checkDeviceCalls();
    checkCommandCalls();
    EXPECT(dlclose(library) == 0);
    return failures != 0;
}
