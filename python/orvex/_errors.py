"""The library's status codes as exceptions: a class for each family of codes."""

from __future__ import annotations

import errno
from typing import ClassVar, Dict, NamedTuple, Tuple, Type


class OrvexError(Exception):
    """Whatever the library refuses or fails to do.

    ``code`` is the library's status code, or the one that fits when a mistake is found before the
    library is called; ``name`` is its name in the C header. Both are in the text.
    """

    def __init__(self, message: str, code: int) -> None:
        super().__init__(message)
        self.message = message
        self.code = code
        self.name = status_name(code)

    def __str__(self) -> str:
        return f"{self.message} ({self.name}, 0x{self.code:08X})"

    def __reduce__(self) -> Tuple[Type[OrvexError], Tuple[str, int]]:
        return type(self), (self.message, self.code)


class _SystemFailure(OrvexError, OSError):
    """A failure with a number of the system, for those who look at ``errno``."""

    _number: ClassVar[int]

    def __init__(self, message: str, code: int) -> None:
        super().__init__(message, code)
        self.errno = self._number


class ArgumentError(OrvexError, ValueError):
    """An argument or a setting is invalid."""


class NotSupportedError(OrvexError):
    """The model does not have this command, or the library cannot handle the device."""


class NotConnectedError(_SystemFailure, ConnectionError):
    """The light is closed, unplugged, or was never there."""

    _number = errno.ENOTCONN


class NotFoundError(NotConnectedError):
    """No light matches, or its port cannot be used."""

    _number = errno.ENODEV


class PermissionDeniedError(_SystemFailure, PermissionError):
    """The user may not read and write the light's port."""

    _number = errno.EACCES


class NoAnswerError(_SystemFailure, TimeoutError):
    """The light did not answer in time, or not in full."""

    _number = errno.ETIMEDOUT


class DeviceIOError(_SystemFailure):
    """The light answered with its error reply, or its port failed."""

    _number = errno.EIO


class Status(NamedTuple):
    """What is known of a status code."""

    name: str
    error: Type[OrvexError]
    words: str


OK = 0x00000000
ERR_UNSPECIFIED = 0x00005000
ERR_INVALID_ARG = 0xA0515001
ERR_INVALID_HANDLE = 0xA0515002
ERR_BUFFER_TOO_SMALL = 0xA0515006
ERR_NO_HANDLE = 0xA0515007
ERR_NOT_SUPPORTED = 0xA0515013
ERR_RECV = 0xA0515019
ERR_SEND = 0xA051501A
ERR_STRUCT_SIZE = 0x80513002
ERR_NO_DEVICE = 0x80515001
ERR_NO_RESPONSE = 0x80515002
ERR_IO = 0x80515003
ERR_MAX_CHANNEL = 0x80515020
ERR_NOT_CONNECTED = 0x80517006

STATUSES: Dict[int, Status] = {
    OK: Status("ORVEX_OK", OrvexError, "success"),
    ERR_UNSPECIFIED: Status("ORVEX_ERR_UNSPECIFIED", OrvexError, "an unspecified failure"),
    ERR_INVALID_ARG: Status(
        "ORVEX_ERR_INVALID_ARG", ArgumentError, "an argument or a setting is invalid"
    ),
    ERR_INVALID_HANDLE: Status(
        "ORVEX_ERR_INVALID_HANDLE", NotConnectedError, "the light is gone"
    ),
    ERR_BUFFER_TOO_SMALL: Status(
        "ORVEX_ERR_BUFFER_TOO_SMALL", ArgumentError, "the reply is too long"
    ),
    ERR_NO_HANDLE: Status(
        "ORVEX_ERR_NO_HANDLE", NotConnectedError, "the light is gone or its port is not open"
    ),
    ERR_NOT_SUPPORTED: Status(
        "ORVEX_ERR_NOT_SUPPORTED", NotSupportedError, "the model does not have this command"
    ),
    ERR_RECV: Status(
        "ORVEX_ERR_RECV", NoAnswerError, "the light did not answer in time, or not in full"
    ),
    ERR_SEND: Status(
        "ORVEX_ERR_SEND", DeviceIOError, "the request could not be written to the port"
    ),
    ERR_STRUCT_SIZE: Status(
        "ORVEX_ERR_STRUCT_SIZE", ArgumentError, "the state record has the wrong size"
    ),
    ERR_NO_DEVICE: Status(
        "ORVEX_ERR_NO_DEVICE", NotFoundError, "the port cannot be used or the light does not answer"
    ),
    ERR_NO_RESPONSE: Status(
        "ORVEX_ERR_NO_RESPONSE", NoAnswerError, "the light is there but does not answer requests"
    ),
    ERR_IO: Status(
        "ORVEX_ERR_IO", DeviceIOError, "the light answered with its error reply, or its port failed"
    ),
    ERR_MAX_CHANNEL: Status(
        "ORVEX_ERR_MAX_CHANNEL", NotSupportedError, "the light reports more than 16 positions"
    ),
    ERR_NOT_CONNECTED: Status(
        "ORVEX_ERR_NOT_CONNECTED", NotConnectedError, "the light is not connected"
    ),
}


def status_name(code: int) -> str:
    """The code's name in the C header."""
    known = STATUSES.get(code)
    return known.name if known else "an unknown status"


def failure(what: str, code: int) -> OrvexError:
    """The exception for a status, with what was attempted in its text."""
    known = STATUSES.get(code, STATUSES[ERR_UNSPECIFIED])
    return known.error(f"{what}: {known.words}", code)
