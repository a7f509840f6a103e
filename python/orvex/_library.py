"""Finding and loading libqtr_orvex.so.1."""

from __future__ import annotations

import atexit
import ctypes
import os
import threading
from typing import Any, Optional

from ._log import CALLBACK_TYPE, LogSettings
from ._records import StateRecord
from ._worker import settle

NAME = "libqtr_orvex.so.1"
VARIABLE = "ORVEX_LIBRARY"

_U32 = ctypes.c_uint32
_U64 = ctypes.c_uint64
_TEXT = ctypes.c_char_p
_U32_OUT = ctypes.POINTER(_U32)
_U64_OUT = ctypes.POINTER(_U64)
_RECORD = ctypes.POINTER(StateRecord)

# Name, result, arguments.
PROTOTYPES = (
    ("ORVEX_GetVersion", _U32, (_U32_OUT, _U32_OUT, _U32_OUT, _U32_OUT)),
    ("ORVEX_ScanDevices", _U32, (_U64_OUT, _U32, _U32_OUT)),
    ("ORVEX_OpenDevice", _U32, (_U64_OUT, _U32, _TEXT, _U32)),
    ("ORVEX_OpenDeviceEx", _U32, (_U64,)),
    ("ORVEX_GetDeviceInfo", _U32, (_U64, _U32_OUT, _TEXT, _U32, _U32_OUT)),
    ("ORVEX_CloseDevice", None, (_U64,)),
    ("ORVEX_ExecuteCommand", _U32, (_U64, _TEXT, _TEXT, _U32)),
    ("ORVEX_ExecuteCommandWithValue", _U32, (_U64, _TEXT, _TEXT, _U32, _TEXT)),
    ("ORVEX_SetOVStruct", _U32, (_U64, _RECORD)),
    ("ORVEX_GetOVStruct", _U32, (_U64, _RECORD)),
    ("ORVEX_SwitchOrvex", _U32, (_U64, ctypes.c_bool, ctypes.c_bool)),
    ("ORVEX_SetLogBits", None, (_U32,)),
    ("ORVEX_GetLogBits", _U32, ()),
    ("ORVEX_SetLogMode", None, (ctypes.c_int,)),
    ("ORVEX_GetLogMode", ctypes.c_int, ()),
    ("ORVEX_SetLogFile", None, (_TEXT,)),
    ("ORVEX_RegisterLogCallback", None, (CALLBACK_TYPE,)),
)


class Library:
    """The loaded library and the settings of its log."""

    def __init__(self, path: str) -> None:
        self.calls: Any = _load(path)
        self.log = LogSettings(self.calls)


_loading = threading.Lock()
_loaded: Optional[Library] = None


def library() -> Library:
    """The library, loaded at the first use."""
    global _loaded
    if _loaded is None:
        with _loading:
            if _loaded is None:
                _loaded = Library(os.environ.get(VARIABLE) or NAME)
                atexit.register(_end, _loaded)
    return _loaded


def version() -> str:
    """The library's version: "1.1.0.1"."""
    numbers = [_U32() for _ in range(4)]
    library().calls.ORVEX_GetVersion(*(ctypes.byref(number) for number in numbers))
    return ".".join(str(number.value) for number in numbers)


def _load(path: str) -> ctypes.CDLL:
    try:
        calls = ctypes.CDLL(path)
        for name, result, arguments in PROTOTYPES:
            function = getattr(calls, name)
            function.restype = result
            function.argtypes = arguments
    except (OSError, AttributeError) as error:
        raise ImportError(
            f"the Orvex library cannot be used: {error}. Install it (on Debian: apt install "
            f"libqtr-orvex1), or name the file in the environment variable {VARIABLE}"
        ) from error
    return calls


def _end(loaded: Library) -> None:
    settle()
    loaded.log.end()
