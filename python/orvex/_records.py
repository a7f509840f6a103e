"""The C header's constants and records, as ctypes sees them."""

from __future__ import annotations

import ctypes

MAX_CHANNEL = 16
EMPTY_POSITION = 999
TYPE_UNDEFINED = 65535

CAP_LAMP = 0x01
CAP_EXTENDED = 0x02
CAP_LED = 0x10
CAP_EXTENDED_CHANNELS = 0x20

LOG_BIT_ERROR = 0x1
LOG_BIT_INFO = 0x2
LOG_BIT_RESERVED = 0x4
LOG_BIT_SERIAL = 0x8
LOG_BIT_WARNING = 0x10
LOG_BIT_DETAIL = 0x20
LOG_BIT_TRAFFIC = 0x40
LOG_BIT_TIMESTAMP = 0x1000

LOG_METHOD_STDOUT = 0
LOG_METHOD_FILE = 1
LOG_METHOD_CALLBACK = 2


class ChannelRecord(ctypes.Structure):
    """OrvexChannel: one channel of a device's state."""

    _fields_ = [
        ("szLedName", ctypes.c_char * 10),
        ("abNameInfo", ctypes.c_uint8 * 6),
        ("iWavelength", ctypes.c_int32),
        ("iGroup", ctypes.c_int32),
        ("iIntensity", ctypes.c_int32),
        ("iMinIntensity", ctypes.c_int32),
        ("iMaxIntensity", ctypes.c_int32),
        ("iIntensityStep", ctypes.c_int32),
        ("iInfo", ctypes.c_int32),
        ("iTemperature", ctypes.c_int32),
        ("iState", ctypes.c_int32),
        ("aiInfo", ctypes.c_int32 * 16),
    ]


class StateRecord(ctypes.Structure):
    """OrvexStruct: a device's whole state."""

    _fields_ = [
        ("iSize", ctypes.c_uint16),
        ("szModelName", ctypes.c_char * 30),
        ("hDevice", ctypes.c_uint64),
        ("iDeviceInfo", ctypes.c_uint64),
        ("iNumChannels", ctypes.c_int32),
        ("iExtendedChannels", ctypes.c_int32),
        ("iUnitStatus", ctypes.c_int32),
        ("iSerialNumber", ctypes.c_int32),
        ("iCapabilities", ctypes.c_uint32),
        ("aiGroupSlot", ctypes.c_int32 * 21),
        ("aChannels", ChannelRecord * MAX_CHANNEL),
    ]
