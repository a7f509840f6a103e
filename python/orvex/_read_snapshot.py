"""Asking a light for its whole state."""

from __future__ import annotations

from typing import List, Optional, Tuple

from . import _records as c
from ._commands import COMMANDS
from ._device import Device
from ._snapshot import ChannelSnapshot, LampSnapshot, Snapshot
from ._state import by_position, cached_record, wavelengths

_CAPABILITIES = (
    (c.CAP_LAMP, "lamp"),
    (c.CAP_EXTENDED, "extended"),
    (c.CAP_LED, "led"),
    (c.CAP_EXTENDED_CHANNELS, "extended-channels"),
)
_PERCENT_PER_LEVEL = 25


def read_snapshot(device: Device) -> Snapshot:
    """Everything that a light tells is asked anew; limits and groups are the library's."""
    record = cached_record(device)
    bits = record.iCapabilities
    has_leds = bool(bits & c.CAP_LED)
    return Snapshot(
        model=device.model,
        type=device.number,
        port=device.port,
        firmware=device.execute("GetSoftwareVersion"),
        serial=_serial(device),
        unit_status=device.execute("GetUnitStatus"),
        capabilities=tuple(name for bit, name in _CAPABILITIES if bits & bit),
        channels=_channels(device, record) if has_leds else (),
        lamp=None if has_leds else _lamp(device),
    )


def _knows(device: Device, command: str) -> bool:
    return command in COMMANDS[device.model]


def _serial(device: Device) -> Optional[str]:
    # The LED models' GetSerialNumber tells of the single LEDs.
    unit = _knows(device, "GetUnitSerialNumber")
    command = "GetUnitSerialNumber" if unit else "GetSerialNumber"
    return device.execute(command) or None if _knows(device, command) else None


def _channels(device: Device, record: c.StateRecord) -> Tuple[ChannelSnapshot, ...]:
    names = device.execute("GetNameLED").split(",")
    states = device.numbers("GetUnitStatus")
    intensities = device.numbers("GetIntensity")
    temperatures = device.numbers("GetTemperature")
    fitted = by_position(device, record)
    channels: List[ChannelSnapshot] = []
    for k, wavelength in enumerate(wavelengths(device, record)):
        if k + 1 not in fitted:
            channels.append(ChannelSnapshot(k + 1, fitted=False))
            continue
        known = fitted[k + 1]
        channels.append(
            ChannelSnapshot(
                position=k + 1,
                fitted=True,
                name=names[k] if k < len(names) else "",
                wavelength=wavelength,
                raw=intensities[k],
                minimum=known.iMinIntensity,
                maximum=known.iMaxIntensity,
                step=known.iIntensityStep,
                temperature=temperatures[k],
                group=known.iGroup,
                on=bool(states[k] & 1),
            )
        )
    return tuple(channels)


def _lamp(device: Device) -> LampSnapshot:
    hours = device.numbers("GetLampHours")[0]
    if not _knows(device, "GetIntensity"):
        return LampSnapshot(hours, device.numbers("GetIntensityH4")[0] * _PERCENT_PER_LEVEL)
    return LampSnapshot(
        hours,
        percent=device.numbers("GetIntensity")[0],
        minimum=device.numbers("MinimumIntensityPercentage")[0],
        temperature=device.numbers("GetTemperature")[0],
    )
