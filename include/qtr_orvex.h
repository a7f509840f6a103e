/**
 * @file qtr_orvex.h
 * @brief Control of Orvex lamp and multi-LED light sources on their USB serial ports.
 *
 * Plain C11 and C++17. A program scans for devices (or opens one by model and port), sends named
 * commands or whole state records, and closes the device again:
 *
 * @code
 * uint64_t handles[8] = {0};
 * uint32_t found = 0;
 * if (ORVEX_ScanDevices(handles, 8, &found) == ORVEX_OK && found > 0 &&
 *     ORVEX_OpenDeviceEx(handles[0]) == ORVEX_OK) {
 *     char reply[64];
 *     ORVEX_ExecuteCommand(handles[0], "GetTemperature", reply, sizeof reply);
 *     ORVEX_CloseDevice(handles[0]);
 * }
 * @endcode
 *
 * Handles. A handle is an opaque value; 0 means none. It is valid from the scan that finds the
 * device until a later scan (or ::ORVEX_OpenDevice, which scans too) no longer finds its port, or
 * until the library is unloaded. The library owns what stands behind it; callers free nothing.
 *
 * Threads. The library starts no threads. ::ORVEX_ScanDevices and ::ORVEX_OpenDevice change the
 * list of devices: a program must not run them at the same time as any other device call. All
 * other calls may run in parallel on different devices; exchanges on one device follow each other.
 * The logging calls may be used at any time from any thread, though not from inside a log
 * callback.
 *
 * Blocking. Calls that talk to a device block for the exchange. A device that does not answer ends
 * an exchange after about 2.1 s with ::ORVEX_ERR_RECV.
 *
 * Memory. A call that cannot allocate what it needs ends with the C++ exception std::bad_alloc; the
 * process goes on and no lock is kept. The call has failed as it does when the device falls silent,
 * and may be repeated once there is memory: an opening that ends so has not counted, and
 * ::ORVEX_CloseDevice closes all the same. A log line without memory is lost and fails no call. A C
 * program that wants to survive this makes its calls through a C++ function that catches the
 * exception.
 *
 * Access. The port must be readable and writable for the calling user (on Debian: group dialout).
 */
#ifndef QTR_ORVEX_H
#define QTR_ORVEX_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define ORVEX_API __attribute__((visibility("default")))
#else
#define ORVEX_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name Status codes
 * Every device call returns one of these; the set is closed. 0xA051… tells of a caller's mistake or
 * a missing resource, 0x8051… of a device or transport failure.
 * @{
 */
/** Success. */
#define ORVEX_OK 0x00000000u
/** A failure without a code of its own. */
#define ORVEX_ERR_UNSPECIFIED 0x00005000u
/** An argument or a setting is invalid. */
#define ORVEX_ERR_INVALID_ARG 0xA0515001u
/** The handle, or the pointer to it, cannot be used. */
#define ORVEX_ERR_INVALID_HANDLE 0xA0515002u
/** The caller's buffer is too small. */
#define ORVEX_ERR_BUFFER_TOO_SMALL 0xA0515006u
/** The handle belongs to no known device, or the serial port is not open. */
#define ORVEX_ERR_NO_HANDLE 0xA0515007u
/** The device's model does not have this command. */
#define ORVEX_ERR_NOT_SUPPORTED 0xA0515013u
/** The device sent fewer bytes than expected in time, or reading failed. */
#define ORVEX_ERR_RECV 0xA0515019u
/** Writing to the device failed or was incomplete. */
#define ORVEX_ERR_SEND 0xA051501Au
/** The caller's state record declares fewer than 2008 bytes. */
#define ORVEX_ERR_STRUCT_SIZE 0x80513002u
/** No device matched, or the device did not answer. */
#define ORVEX_ERR_NO_DEVICE 0x80515001u
/** The device answers its presence test but not its first request. */
#define ORVEX_ERR_NO_RESPONSE 0x80515002u
/** The device answered with its error reply, or a system call on the port failed. */
#define ORVEX_ERR_IO 0x80515003u
/** The device reports more channels than a state record holds. */
#define ORVEX_ERR_MAX_CHANNEL 0x80515020u
/** The device is not connected. */
#define ORVEX_ERR_NOT_CONNECTED 0x80517006u
/** @} */

/**
 * @name Device models
 * Models 0 to 6 are lamps with a shutter, 7 to 9 multi-LED sources.
 * @{
 */
/** A device model: one of the ORVEX_TYPE_… values. */
typedef uint32_t OrvexType;
#define ORVEX_TYPE_ALDER 0u  /**< Alder, a lamp with the basic commands. */
#define ORVEX_TYPE_BIRCH 1u  /**< Birch, a lamp with the extended commands. */
#define ORVEX_TYPE_CEDAR 2u  /**< Cedar, a lamp with the extended commands. */
#define ORVEX_TYPE_HAZEL 3u  /**< Hazel, a lamp with the extended commands. */
#define ORVEX_TYPE_LARCH 4u  /**< Larch, a lamp with the extended commands. */
#define ORVEX_TYPE_MAPLE 5u  /**< Maple, a lamp with the extended commands. */
#define ORVEX_TYPE_ROWAN 6u  /**< Rowan, a lamp that cannot be read out. */
#define ORVEX_TYPE_SPRUCE 7u /**< Spruce, 4 LEDs; cannot be read out. */
#define ORVEX_TYPE_TAMAR 8u  /**< Tamar, up to 16 LEDs. */
#define ORVEX_TYPE_WILLOW 9u /**< Willow, up to 16 LEDs. */
/** The model is not known; as a selection in ::ORVEX_OpenDevice: any model. */
#define ORVEX_TYPE_UNDEFINED 65535u
/** @} */

/** The number of channel records in a state record. */
#define ORVEX_MAX_CHANNEL 16
/** ::OrvexChannel::iWavelength of a channel position without an LED. */
#define ORVEX_EMPTY_POSITION 999

/**
 * @name Capability bits of ::OrvexStruct::iCapabilities
 * With neither ::ORVEX_CAP_EXTENDED nor ::ORVEX_CAP_LED set, the device is a basic lamp.
 * @{
 */
#define ORVEX_CAP_LAMP 0x01u /**< A lamp behind a shutter. */
/** A lamp with the extended command set. */
#define ORVEX_CAP_EXTENDED 0x02u
/** The channels are LEDs, switched one by one; clear: one lamp behind a shutter. */
#define ORVEX_CAP_LED 0x10u
/** The device has 8 or more channel positions. */
#define ORVEX_CAP_EXTENDED_CHANNELS 0x20u
/** @} */

/** One channel of a device's state record: 116 bytes. */
typedef struct OrvexChannel {
    char szLedName[10];     /**< The LED's name, at most 9 characters, NUL-terminated. */
    uint8_t abNameInfo[6];  /**< Passed through unchanged. */
    int32_t iWavelength;    /**< Wavelength in nm; 999: no LED here; lamps: 500. */
    int32_t iGroup;         /**< 0: independent; n > 0: at most one channel of group n is on. */
    int32_t iIntensity;     /**< Intensity in tenths of a per cent (0 to 1000). */
    int32_t iMinIntensity;  /**< Lower limit of iIntensity. */
    int32_t iMaxIntensity;  /**< Upper limit of iIntensity. */
    int32_t iIntensityStep; /**< Granularity of iIntensity; 0: any value. */
    int32_t iInfo;          /**< Passed through unchanged. */
    int32_t iTemperature;   /**< Temperature read when the device was opened. */
    int32_t iState;         /**< Bit 0: the channel is on. */
    int32_t aiInfo[16];     /**< Passed through unchanged. */
} OrvexChannel;

/** A device's whole state: 2008 bytes, little-endian. */
typedef struct OrvexStruct {
    uint16_t iSize;            /**< Size of the record in bytes; callers set it to 2008 or more. */
    char szModelName[30];      /**< The model's name, NUL-terminated. */
    uint64_t hDevice;          /**< The device's handle. */
    uint64_t iDeviceInfo;      /**< Passed through; 0 in a written record leaves it unchanged. */
    int32_t iNumChannels;      /**< The number of valid channel records. */
    int32_t iExtendedChannels; /**< 1 when the device has 8 or more channel positions, else 0. */
    int32_t iUnitStatus;       /**< The unit status read when the device was opened. */
    int32_t iSerialNumber;     /**< The number after the last "-" of the unit's serial text. */
    uint32_t iCapabilities;    /**< ORVEX_CAP_… bits. */
    int32_t aiGroupSlot[21];   /**< [n], n > 0: the record slot selected in channel group n. */
    OrvexChannel aChannels[ORVEX_MAX_CHANNEL]; /**< The channels. */
} OrvexStruct;

/**
 * @name Log message classes
 * Bits of the mask given to ::ORVEX_SetLogBits. The default, 0x7F, is all but the time stamp.
 * @{
 */
/** Errors; their lines begin with "Error: ". */
#define LOG_BIT_ERROR 0x1u
/** Progress. */
#define LOG_BIT_INFO 0x2u
/** Used by no message. */
#define LOG_BIT_RESERVED 0x4u
/** Serial port events. */
#define LOG_BIT_SERIAL 0x8u
/** Warnings; their lines begin with "Warning: ". */
#define LOG_BIT_WARNING 0x10u
/** Confirmations and details. */
#define LOG_BIT_DETAIL 0x20u
/** Every request sent and every reply received. */
#define LOG_BIT_TRAFFIC 0x40u
/** Not a class: every line begins with the local time. */
#define LOG_BIT_TIMESTAMP 0x1000u
/** @} */

/**
 * @name Log destinations
 * @{
 */
/** Standard output, errors to standard error. The default. */
#define LOG_METHOD_STDOUT 0
/** Appended to the log file. */
#define LOG_METHOD_FILE 1
/** Passed to the registered callback. */
#define LOG_METHOD_CALLBACK 2
/** @} */

/**
 * @brief A function that receives one log line, NUL-terminated, without a newline.
 *
 * It runs in the thread that logs, with the log locked: it must not call the logging calls that set
 * something, nor any device call. The text is valid only during the call.
 */
typedef void (*OrvexLogCallback)(const char* text);

/**
 * @brief Reports the library's version, 1.1.0.1.
 *
 * Never blocks, never fails; may be called from any thread.
 * @param[out] major   the first number, 1; may be null
 * @param[out] minor   the second number, 1; may be null
 * @param[out] release the third number, 0; may be null
 * @param[out] build   the fourth number, 1; may be null
 * @return ::ORVEX_OK
 */
ORVEX_API uint32_t ORVEX_GetVersion(uint32_t* major, uint32_t* minor, uint32_t* release,
                                    uint32_t* build);

/**
 * @brief Looks for attached devices and updates the caller's list of handles.
 *
 * Handles of devices that are still attached keep their slots, handles of vanished devices are set
 * to 0 and become invalid (an open one is closed without a request), and new devices go into the
 * first free slots. No device is opened and nothing is sent. Not to be run at the same time as any
 * other device call. Blocks for the time udev needs.
 *
 * @param[in,out] handles array of @p buf_len handles; all 0 before the first scan, and the same
 *                        array again on later scans
 * @param[in] buf_len     the number of slots in @p handles, at least 1
 * @param[out] size_out   the number of attached devices, set also when the array is too small
 * @return ::ORVEX_OK; ::ORVEX_ERR_INVALID_HANDLE (@p handles is null); ::ORVEX_ERR_INVALID_ARG
 *         (@p buf_len is 0, @p size_out is null, or a device's port is unusable);
 *         ::ORVEX_ERR_BUFFER_TOO_SMALL (more devices than slots; the array is unchanged, the
 *         library's own list is up to date)
 */
ORVEX_API uint32_t ORVEX_ScanDevices(uint64_t* handles, uint32_t buf_len, uint32_t* size_out);

/**
 * @brief Scans, picks a device by model and port, and opens it.
 *
 * Without a port and with any model, the first device that is not yet open is taken. A request that
 * names a port or a model may take an open device, which is then open once more. Not to be run at
 * the same time as any other device call. Blocks for the scan and the device's read-out.
 *
 * @param[in,out] handle must hold 0 on entry; receives the device's handle
 * @param[in] type       a model, or ::ORVEX_TYPE_UNDEFINED for any
 * @param[in] port       the port's path, for example "/dev/ttyACM0"; null or "" for any
 * @param[in] baudrate   bits per second, 9600 or more; rounded down to a rate the system knows
 * @return ::ORVEX_OK; ::ORVEX_ERR_INVALID_HANDLE (@p handle is null or holds a value);
 *         ::ORVEX_ERR_NO_DEVICE (nothing matches, or the port cannot be opened); or a failure of
 *         the opening as for ::ORVEX_OpenDeviceEx; ::ORVEX_ERR_INVALID_ARG also for a baud rate
 *         below 9600
 */
ORVEX_API uint32_t ORVEX_OpenDevice(uint64_t* handle, uint32_t type, const char* port,
                                    uint32_t baudrate);

/**
 * @brief Opens the device behind a handle of ::ORVEX_ScanDevices at 9600 baud.
 *
 * The first open connects and reads the device's state; every later one only counts. Each open
 * needs its ::ORVEX_CloseDevice. When the read-out fails, the device counts as closed but still
 * takes commands (Rowan and Spruce always end so, see the documentation); the next open starts
 * over. Blocks for about a dozen exchanges.
 *
 * @param[in] handle a device's handle
 * @return ::ORVEX_OK; ::ORVEX_ERR_INVALID_HANDLE (0 or unknown); ::ORVEX_ERR_NO_DEVICE (the port
 *         cannot be opened); ::ORVEX_ERR_NOT_CONNECTED (open, but the link is down);
 *         ::ORVEX_ERR_NO_RESPONSE; ::ORVEX_ERR_MAX_CHANNEL; ::ORVEX_ERR_NOT_SUPPORTED (the
 *         model lacks a request of the read-out); ::ORVEX_ERR_RECV, ::ORVEX_ERR_SEND,
 *         ::ORVEX_ERR_IO (an exchange failed)
 */
ORVEX_API uint32_t ORVEX_OpenDeviceEx(uint64_t handle);

/**
 * @brief Reports a device's model, port and open count.
 *
 * Sends nothing and does not block.
 * @param[in] handle      a device's handle, open or not
 * @param[out] type       the model; may be null
 * @param[out] port       the port's path, NUL-terminated; may be null
 * @param[in] port_len    size of @p port in bytes; at least the path's length + 2
 * @param[out] open_count how often the device is open; may be null
 * @return ::ORVEX_OK; ::ORVEX_ERR_NO_HANDLE (unknown handle); ::ORVEX_ERR_BUFFER_TOO_SMALL
 *         (@p type is already written then, @p open_count is not)
 */
ORVEX_API uint32_t ORVEX_GetDeviceInfo(uint64_t handle, uint32_t* type, char* port,
                                       uint32_t port_len, uint32_t* open_count);

/**
 * @brief Closes a device once.
 *
 * The close that answers the first open shuts the shutter, tells the device and releases the port;
 * a failing device is released all the same. The handle stays valid. An unknown handle, or a
 * device that is not connected, is left alone. Blocks for one exchange.
 * @param[in] handle a device's handle
 */
ORVEX_API void ORVEX_CloseDevice(uint64_t handle);

/**
 * @brief Sends a command without a value: ::ORVEX_ExecuteCommandWithValue with a null value.
 *
 * @param[in] handle    an open device's handle
 * @param[in] command   the command's name
 * @param[out] reply    receives the reply
 * @param[in] reply_len size of @p reply in bytes
 * @return as ::ORVEX_ExecuteCommandWithValue
 */
ORVEX_API uint32_t ORVEX_ExecuteCommand(uint64_t handle, const char* command, char* reply,
                                        uint32_t reply_len);

/**
 * @brief Sends a named command with a value and receives the reply.
 *
 * The request is the model's prefix for the name with the value behind it. The reply keeps its
 * carriage return. Threads may use one device at a time each: exchanges on a device follow each
 * other. Blocks for one exchange.
 *
 * @param[in] handle    an open device's handle
 * @param[in] command   a command name of the device's model, for example "GetSoftwareVersion"
 * @param[out] reply    receives the reply, NUL-terminated, the rest of it zeroed
 * @param[in] reply_len size of @p reply in bytes: the reply's length + 1 holds it whole; with
 *                      exactly the reply's length its last character is cut off
 * @param[in] value     the value, for example "10,20,30,40"; may be null for none
 * @return ::ORVEX_OK; ::ORVEX_ERR_NO_HANDLE (unknown handle); ::ORVEX_ERR_INVALID_ARG (@p command
 *         or @p reply is null, or the request is longer than 1023 bytes);
 *         ::ORVEX_ERR_BUFFER_TOO_SMALL (@p reply unchanged, the command has been carried out);
 *         ::ORVEX_ERR_NOT_SUPPORTED (the model has no such command); ::ORVEX_ERR_NOT_CONNECTED;
 *         ::ORVEX_ERR_SEND; ::ORVEX_ERR_RECV (no answer in time); ::ORVEX_ERR_IO (the device's
 *         error reply, or the port failed)
 */
ORVEX_API uint32_t ORVEX_ExecuteCommandWithValue(uint64_t handle, const char* command, char* reply,
                                                 uint32_t reply_len, const char* value);

/**
 * @brief Applies a state record: sends what differs from the device's cached state.
 *
 * Looks at iDeviceInfo, iNumChannels and, of each channel below it, iIntensity and iState.
 * Intensities are rounded down to the step and held within the limits. Of a group only the first
 * channel that this call switches on stays on. Best used with a record from ::ORVEX_GetOVStruct
 * that the caller has changed. Blocks for up to three exchanges; when a group's selection changes
 * also until the device reports the new states, at least 1.9 s and without an upper bound.
 *
 * @param[in] handle an open device's handle
 * @param[in] record the record, not null, iSize at least 2008; the caller's, only read
 * @return ::ORVEX_OK; ::ORVEX_ERR_NO_HANDLE (unknown handle); ::ORVEX_ERR_STRUCT_SIZE;
 *         ::ORVEX_ERR_INVALID_ARG (more channels than the device has); or a failure of an exchange
 *         as for ::ORVEX_ExecuteCommandWithValue, with the cached state already changed
 */
ORVEX_API uint32_t ORVEX_SetOVStruct(uint64_t handle, const OrvexStruct* record);

/**
 * @brief Reads the device's cached state; sends nothing and does not block.
 *
 * Slot k of the record is the k-th fitted LED. A lamp's record has no channels.
 * @param[in] handle     a device's handle
 * @param[in,out] record the record, not null, iSize at least 2008; its first 2008 bytes are written
 * @return ::ORVEX_OK; ::ORVEX_ERR_NO_HANDLE (unknown handle); ::ORVEX_ERR_STRUCT_SIZE
 */
ORVEX_API uint32_t ORVEX_GetOVStruct(uint64_t handle, OrvexStruct* record);

/**
 * @brief Switches the device's channels on or off together.
 *
 * On switches those channels on that a written record last switched on (none: nothing is sent);
 * off switches all off. While switched off so, a written record's new channels are only
 * remembered. A lamp closes its shutter with off; on sends it nothing, for no record has channels
 * of a lamp: use "OpenShutter". Blocks like ::ORVEX_SetOVStruct.
 *
 * @param[in] handle an open device's handle
 * @param[in] enable false: only remember that switching is not enabled; nothing is sent
 * @param[in] on     true: on, false: off
 * @return ::ORVEX_OK; ::ORVEX_ERR_NO_HANDLE (unknown handle); or a failure of an exchange as for
 *         ::ORVEX_ExecuteCommandWithValue
 */
ORVEX_API uint32_t ORVEX_SwitchOrvex(uint64_t handle, bool enable, bool on);

/**
 * @brief Chooses which classes of messages are logged.
 *
 * @param[in] bits LOG_BIT_… values; 0 silences everything
 */
ORVEX_API void ORVEX_SetLogBits(uint32_t bits);

/**
 * @brief Tells which classes of messages are logged. Never blocks.
 *
 * @return the mask, 0x7F unless it was changed
 */
ORVEX_API uint32_t ORVEX_GetLogBits(void);

/**
 * @brief Chooses where log lines go.
 *
 * @param[in] method a LOG_METHOD_… value; with any other number every line is discarded
 */
ORVEX_API void ORVEX_SetLogMode(int method);

/**
 * @brief Tells where log lines go. Never blocks.
 *
 * @return the method last set, 0 at first
 */
ORVEX_API int ORVEX_GetLogMode(void);

/**
 * @brief Names the log file of ::LOG_METHOD_FILE; "./lib_debug.log" at first.
 *
 * Nothing is opened or tested: lines to a file that cannot be opened are lost.
 * @param[in] path the file's path, not null; copied. Relative to the working directory at each line
 */
ORVEX_API void ORVEX_SetLogFile(const char* path);

/**
 * @brief Registers the function that receives log lines under ::LOG_METHOD_CALLBACK.
 *
 * @param[in] receiver the function, or null for none. It must stay callable until it is replaced or
 *                     the library is unloaded, when closing devices may still log
 */
ORVEX_API void ORVEX_RegisterLogCallback(OrvexLogCallback receiver);

#ifdef __cplusplus
}
#endif

#ifdef __cplusplus
#define ORVEX_STATIC_ASSERT_(condition) static_assert(condition, #condition)
#else
#define ORVEX_STATIC_ASSERT_(condition) _Static_assert(condition, #condition)
#endif

ORVEX_STATIC_ASSERT_(sizeof(OrvexChannel) == 116);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, szLedName) == 0);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, abNameInfo) == 10);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iWavelength) == 16);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iGroup) == 20);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iIntensity) == 24);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iMinIntensity) == 28);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iMaxIntensity) == 32);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iIntensityStep) == 36);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iInfo) == 40);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iTemperature) == 44);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, iState) == 48);
ORVEX_STATIC_ASSERT_(offsetof(OrvexChannel, aiInfo) == 52);
ORVEX_STATIC_ASSERT_(sizeof(OrvexStruct) == 2008);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, iSize) == 0);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, szModelName) == 2);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, hDevice) == 32);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, iDeviceInfo) == 40);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, iNumChannels) == 48);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, iExtendedChannels) == 52);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, iUnitStatus) == 56);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, iSerialNumber) == 60);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, iCapabilities) == 64);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, aiGroupSlot) == 68);
ORVEX_STATIC_ASSERT_(offsetof(OrvexStruct, aChannels) == 152);

#endif /* QTR_ORVEX_H */
