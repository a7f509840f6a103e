"""The channels of a multi-LED light as its users see them."""

from __future__ import annotations

import math
from typing import Dict, Iterator, Protocol

from ._errors import ERR_INVALID_ARG, ArgumentError
from ._records import ChannelRecord
from ._state import Change, limited

_PER_PERCENT = 10
# What is written in decimal must not lose a tenth for being stored in binary.
_TOLERANCE = 1e-6
_LARGEST_RAW = 1000


class Owner(Protocol):
    """What channels need of their light."""

    def _channel(self, position: int) -> ChannelRecord: ...

    def _change(self, change: Change) -> None: ...

    def _temperature(self, position: int) -> int: ...


class Channel:
    """One LED. Settings are sent at once, or with the light's batch.

    ``intensity``, ``raw`` and ``on`` tell what was last read or set; the light is not asked.
    Commands of the light's that may change them, and ``light.refresh()``, make it be asked again.
    """

    def __init__(self, owner: Owner, position: int, record: ChannelRecord) -> None:
        self._owner = owner
        self._position = position
        self._fixed = record

    def __repr__(self) -> str:
        name = f" {self.name}" if self.name else ""
        return f"<Channel {self._position}{name} {self.wavelength} nm>"

    @property
    def number(self) -> int:
        """Its position on the light, from 1."""
        return self._position

    @property
    def name(self) -> str:
        """The LED's name, its first 9 characters."""
        return bytes(self._fixed.szLedName).decode(errors="backslashreplace")

    @property
    def wavelength(self) -> int:
        """In nm."""
        return int(self._fixed.iWavelength)

    @property
    def group(self) -> int:
        """0: independent; channels of one group are on one at a time."""
        return int(self._fixed.iGroup)

    @property
    def min(self) -> float:
        """The least intensity in per cent."""
        return float(self._fixed.iMinIntensity / _PER_PERCENT)

    @property
    def max(self) -> float:
        """The largest intensity in per cent."""
        return float(self._fixed.iMaxIntensity / _PER_PERCENT)

    @property
    def step(self) -> float:
        """The granularity of the intensity in per cent; 0: any."""
        return float(self._fixed.iIntensityStep / _PER_PERCENT)

    @property
    def intensity(self) -> float:
        """In per cent. Rounded down to a step and held between ``min`` and ``max`` when set."""
        return self.raw / _PER_PERCENT

    @intensity.setter
    def intensity(self, percent: float) -> None:
        if not 0 <= percent <= 100:  # Also of what is no number.
            raise ArgumentError(f"intensity {percent}: from 0 to 100 per cent", ERR_INVALID_ARG)
        self.raw = math.floor(percent * _PER_PERCENT + _TOLERANCE)

    @property
    def raw(self) -> int:
        """The intensity in tenths of a per cent, as the light has it."""
        return int(self._owner._channel(self._position).iIntensity)

    @raw.setter
    def raw(self, raw: int) -> None:
        if isinstance(raw, bool) or not isinstance(raw, int) or not 0 <= raw <= _LARGEST_RAW:
            raise ArgumentError(
                f"raw intensity {raw!r}: a whole number from 0 to {_LARGEST_RAW}", ERR_INVALID_ARG
            )
        self._owner._change(Change(self._position, raw=limited(raw, self._fixed)))

    @property
    def on(self) -> bool:
        """Whether the LED is on. Switching it on switches the others of its group off."""
        return bool(self._owner._channel(self._position).iState & 1)

    @on.setter
    def on(self, on: bool) -> None:
        self._owner._change(Change(self._position, on=bool(on)))

    @property
    def temperature(self) -> int:
        """The LED's temperature now: the light is asked."""
        return self._owner._temperature(self._position)


class Channels:
    """A light's channels, by the numbers of their positions, from 1. Those without an LED are
    left out; a lamp has none."""

    def __init__(self, title: str, channels: Dict[int, Channel]) -> None:
        self._title = title
        self._channels = channels

    def __repr__(self) -> str:
        return f"<Channels of the {self._title}>"

    def __getitem__(self, number: int) -> Channel:
        try:
            return self._channels[number]
        except KeyError:
            numbers = ", ".join(map(str, self._channels)) or "none"
            raise IndexError(
                f"no channel {number!r}; the {self._title} has {numbers}"
            ) from None

    def __iter__(self) -> Iterator[Channel]:
        return iter(self._channels.values())

    def __len__(self) -> int:
        return len(self._channels)

    def __contains__(self, number: object) -> bool:
        return number in self._channels
