"""One device of the library, whoever uses it in this process."""

from __future__ import annotations

import ctypes
import threading
from typing import Any, Callable, List

from . import _errors as e
from . import _port
from ._gate import Gate
from ._library import library
from ._models import did_you_mean
from ._commands import COMMANDS, MODELS
from ._worker import stop_if_abandoned

# No device call may run beside a scan.
SCANS = Gate()

_LONGEST_REPLY = 1024
_UNPLUGGED = "has been unplugged"
_LINK_FAILURES = (e.ERR_RECV, e.ERR_SEND, e.ERR_IO, e.ERR_NO_DEVICE, e.ERR_NO_RESPONSE)


class Device:
    """A handle, and what must be known to use it with care.

    Its methods are for the library's thread rules: they may be called from any thread, but not by
    the main thread without the detour of _worker.
    """

    def __init__(self, handle: int, number: int, port: str) -> None:
        self.handle = handle
        self.number = number
        self.model = MODELS[number]
        self.port = port
        self.opens = 0
        # Records are for one thread at a time; exchanges are not concerned.
        self.records = threading.Lock()
        # The library's record may differ from what the device has.
        self.stale = False
        # Switched off as a whole: the record's channels are only remembered.
        self.dark = False
        self.wavelengths: List[int] = []
        self._identity = _port.identity(port)
        self._lost = ""
        self._gone = False
        self._uses = Gate()

    @property
    def title(self) -> str:
        """ "Tamar on /dev/ttyACM0" """
        return f"{self.model} on {self.port}"

    def forget(self) -> None:
        """The handle does not exist any more."""
        self._gone = True
        self._lost = self._lost or _UNPLUGGED

    def is_there(self) -> bool:
        """Whether its handle is valid and its port still the one that was opened."""
        if not self._lost and _port.identity(self.port) != self._identity:
            self._lost = _UNPLUGGED
        return not self._lost

    def open(self) -> None:
        """Opens the device once more, at 9600 baud."""
        with self._uses.alone(), SCANS.together():
            self._opened(library().calls.ORVEX_OpenDeviceEx, self.handle)

    def open_at(self, baud_rate: int, after_scan: Callable[[], None]) -> None:
        """The same at another rate. This call of the library scans."""
        handle = ctypes.c_uint64(0)
        with self._uses.alone(), SCANS.alone():
            try:
                self._opened(
                    library().calls.ORVEX_OpenDevice,
                    ctypes.byref(handle),
                    self.number,
                    self.port.encode(),
                    baud_rate,
                )
            finally:
                after_scan()

    def close(self) -> None:
        """Closes it once; what has been unplugged is released all the same."""
        if self._gone:
            return
        with self._uses.alone(), SCANS.together():
            if not self._gone:
                library().log.follow()
                library().calls.ORVEX_CloseDevice(self.handle)
            self.opens -= 1
            if self.opens == 0:
                self.stale = self.dark = False
                self.wavelengths = []

    def call(self, what: str, name: str, *arguments: Any) -> None:
        """Makes a call of the library that takes a handle first and returns a status."""
        stop_if_abandoned()
        self.require_there()
        with self._uses.together(), SCANS.together():
            self.require_there()
            library().log.follow()
            status = getattr(library().calls, name)(self.handle, *arguments)
        if status != e.OK:
            raise self.failure(f"{what} on {self.port}", status)

    def execute(self, name: str, value: str = "") -> str:
        """Sends a command. The reply is without its carriage return."""
        reply = ctypes.create_string_buffer(_LONGEST_REPLY + 1)
        if "\0" in name + value:
            raise e.ArgumentError("a command cannot hold a NUL", e.ERR_INVALID_ARG)
        what = f"{name} {value}" if value else name
        self.call(
            what,
            "ORVEX_ExecuteCommandWithValue",
            name.encode(),
            reply,
            len(reply),
            value.encode(),
        )
        text = reply.value.decode(errors="backslashreplace")
        return text[:-1] if text.endswith("\r") else text

    def numbers(self, name: str) -> List[int]:
        """A question whose answer is numbers."""
        reply = self.execute(name)
        try:
            return [int(number) for number in reply.split(",")]
        except ValueError:
            raise e.DeviceIOError(
                f"{name} on {self.port}: not a list of numbers: {reply!r}", e.ERR_UNSPECIFIED
            ) from None

    def _opened(self, function: Any, *arguments: Any) -> None:
        self.is_there()
        self.require_there()
        library().log.follow()
        status = function(*arguments)
        if status != e.OK:
            raise self.failure(f"opening the {self.title}", status)
        self.opens += 1

    def require_there(self) -> None:
        """Raises when the device has gone."""
        if self._lost:
            raise e.NotConnectedError(
                f"the {self.title} {self._lost}; close it, and open it again when it is back",
                e.ERR_NOT_CONNECTED,
            )

    def failure(self, what: str, status: int) -> e.OrvexError:
        """The exception for a failed call."""
        if status in _LINK_FAILURES and not self.is_there():
            return e.NotConnectedError(f"{what}: the {self.title} {self._lost}", status)
        if status == e.ERR_NO_DEVICE:
            refused = _port.refusal(self.port)
            if refused is not None:
                return e.PermissionDeniedError(f"{what}: {refused}", status)
        if status == e.ERR_NOT_SUPPORTED:
            name = what.split()[0]
            return e.NotSupportedError(
                f"{what}: a {self.model} has no such command"
                f"{did_you_mean(name, COMMANDS[self.model])}",
                status,
            )
        return e.failure(what, status)
