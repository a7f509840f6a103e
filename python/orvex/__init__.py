"""Orvex lamp and multi-LED light sources on their USB serial ports.

    import orvex

    with orvex.open("Tamar") as light:
        light.channels[2].intensity = 45.0
        light.channels[2].on = True
        print(light.command("GetTemperature"))
"""

from __future__ import annotations

from typing import Any

from ._channels import Channel, Channels
from ._errors import (
    ArgumentError,
    DeviceIOError,
    NoAnswerError,
    NotConnectedError,
    NotFoundError,
    NotSupportedError,
    OrvexError,
    PermissionDeniedError,
)
from ._light import Light
from ._models import commands_of, models
from ._opening import LightInfo, scan
from ._opening import open_light as open
from ._snapshot import ChannelSnapshot, LampSnapshot, Snapshot

__all__ = [
    "ArgumentError",
    "Channel",
    "ChannelSnapshot",
    "Channels",
    "DeviceIOError",
    "LampSnapshot",
    "Light",
    "LightInfo",
    "NoAnswerError",
    "NotConnectedError",
    "NotFoundError",
    "NotSupportedError",
    "OrvexError",
    "PermissionDeniedError",
    "Snapshot",
    "commands_of",
    "models",
    "open",
    "scan",
]

__version__: str

for _public in (globals()[_name] for _name in __all__):
    _public.__module__ = __name__  # Texts of errors and help name them as users do.


def __getattr__(name: str) -> Any:
    # The version is the library's, which is not loaded before it is needed.
    if name == "__version__":
        from ._library import version

        return version()
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
