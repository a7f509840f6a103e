"""The library's log in the standard logging module.

The library calls its log callback with its log locked and in the middle of an exchange. Nothing of
Python's may run there, neither a handler, which might call the library again, nor the handler of
a signal, whose KeyboardInterrupt would be lost. So the callback is the append() of a deque, which
is C, and the lines are passed on when the call is over, or has been going on for a while.
"""

from __future__ import annotations

import ctypes
import logging
import threading
from collections import deque
from typing import Any, Deque

from . import _records as c

LOGGER = logging.getLogger("orvex")
TRAFFIC = logging.getLogger("orvex.traffic")
LOGGER.addHandler(logging.NullHandler())

CALLBACK_TYPE = ctypes.CFUNCTYPE(None, ctypes.c_char_p)

_MOST_LINES = 100_000
_ALWAYS = c.LOG_BIT_ERROR | c.LOG_BIT_WARNING
_PROGRESS = c.LOG_BIT_INFO | c.LOG_BIT_SERIAL | c.LOG_BIT_DETAIL

_lines: Deque[bytes] = deque(maxlen=_MOST_LINES)
# Lives as long as the module does: the library may log at any time.
_callback = CALLBACK_TYPE(_lines.append)
_delivering = threading.Lock()


class LogSettings:
    """Keeps the library's mask in step with the levels of the loggers."""

    def __init__(self, library: Any) -> None:
        self._library = library
        self._bits = -1
        library.ORVEX_RegisterLogCallback(_callback)
        library.ORVEX_SetLogMode(c.LOG_METHOD_CALLBACK)
        self.follow()

    def follow(self) -> None:
        """Asks the library for what somebody wants to see, and for no more."""
        bits = _ALWAYS
        if LOGGER.isEnabledFor(logging.INFO):
            bits |= _PROGRESS
        if TRAFFIC.isEnabledFor(logging.DEBUG):
            bits |= c.LOG_BIT_TRAFFIC
        if bits != self._bits:
            self._bits = bits
            self._library.ORVEX_SetLogBits(bits)

    def end(self) -> None:
        """The library may log until it is unloaded, which is after the interpreter's end."""
        self._library.ORVEX_SetLogBits(0)
        self._library.ORVEX_RegisterLogCallback(CALLBACK_TYPE(0))


def deliver() -> None:
    """Passes the lines on. One thread does so at a time, and does it for all."""
    while _lines and _delivering.acquire(blocking=False):
        try:
            _deliver_one(_lines.popleft())
        except IndexError:  # Another thread had it.
            pass
        finally:
            _delivering.release()


def _deliver_one(line: bytes) -> None:
    text = line.decode(errors="backslashreplace")
    if text.startswith("Error: "):
        LOGGER.error("%s", text[len("Error: ") :])
    elif text.startswith("Warning: "):
        LOGGER.warning("%s", text[len("Warning: ") :])
    elif text.startswith(("Send [", " <-Received [")):
        TRAFFIC.debug("%s", text.strip())
    else:
        LOGGER.info("%s", text)
