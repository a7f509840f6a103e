"""The channels of a multi-LED device: the library's record, read, changed, and brought up to date.

The library's record has the fitted LEDs only, one after the other. Here channels have the numbers
of their positions on the device, from 1, as everywhere but in the record.
"""

from __future__ import annotations

import ctypes
from dataclasses import dataclass
from typing import Dict, Iterable, List, Optional

from . import _errors as e
from ._device import Device
from ._records import CAP_LED, EMPTY_POSITION, ChannelRecord, StateRecord


@dataclass(frozen=True)
class Change:
    """What is wanted of a channel; None leaves it as it is."""

    position: int
    raw: Optional[int] = None
    on: Optional[bool] = None


def limited(raw: int, channel: ChannelRecord) -> int:
    """What the library makes of an intensity."""
    step = channel.iIntensityStep
    value = raw // step * step if step else raw
    return int(max(min(value, channel.iMaxIntensity), channel.iMinIntensity))


def cached_record(device: Device) -> StateRecord:
    """The library's record as it is, without asking the device."""
    record = StateRecord()
    record.iSize = ctypes.sizeof(record)
    device.call("reading the state", "ORVEX_GetOVStruct", ctypes.byref(record))
    return record


def wavelengths(device: Device, record: StateRecord) -> List[int]:
    """Every position's wavelength; none for lamps."""
    if not device.wavelengths and record.iCapabilities & CAP_LED:
        told = device.numbers("GetWaveLengthLED")
        end = next((k for k, wavelength in enumerate(told) if wavelength < 1), len(told))
        device.wavelengths = told[:end]
    return device.wavelengths


def by_position(device: Device, record: StateRecord) -> Dict[int, ChannelRecord]:
    """The channels of a record by their positions."""
    fitted = [
        k + 1 for k, value in enumerate(wavelengths(device, record)) if value != EMPTY_POSITION
    ]
    if len(fitted) != record.iNumChannels:
        raise e.DeviceIOError(
            f"GetWaveLengthLED on {device.port}: the light does not tell the same number of LEDs "
            "twice; does another program talk to it?",
            e.ERR_UNSPECIFIED,
        )
    return {position: record.aChannels[slot] for slot, position in enumerate(fitted)}


def read(device: Device) -> Dict[int, ChannelRecord]:
    """The channels as they were last read or set."""
    with device.records:
        return by_position(device, _record(device))


def preview(changes: Iterable[Change], channels: Dict[int, ChannelRecord]) -> None:
    """Shows in a copy of the channels what changes make of them."""
    for change in changes:
        _take(change, channels)


def apply(device: Device, changes: Iterable[Change]) -> None:
    """Sends changes as one record. Of a group the channel that is switched on last stays on."""
    with device.records:
        record = _record(device)
        channels = by_position(device, record)
        preview(changes, channels)
        _send(device, record)


def switch(device: Device, on: bool) -> None:
    """Switches the channels, or a lamp's shutter, together."""
    with device.records:
        if not cached_record(device).iCapabilities & CAP_LED:
            # The library opens no shutter: a lamp's record has no channel that was ever on.
            device.execute("OpenShutter" if on else "CloseShutter")
            return
        device.call("switching", "ORVEX_SwitchOrvex", True, on)
        device.dark = not on


def _take(change: Change, channels: Dict[int, ChannelRecord]) -> None:
    channel = channels[change.position]
    if change.raw is not None:
        channel.iIntensity = limited(change.raw, channel)
    if change.on is None:
        return
    if change.on and channel.iGroup != 0:
        for other in channels.values():
            if other.iGroup == channel.iGroup:
                other.iState = 0
    channel.iState = int(change.on)


def _send(device: Device, record: StateRecord) -> None:
    """The library takes a record before it sends it, and keeps it when sending fails."""
    wholly = False
    try:
        device.call("setting the state", "ORVEX_SetOVStruct", ctypes.byref(record))
        wholly = True
    finally:
        device.stale = device.stale or not wholly


def _record(device: Device) -> StateRecord:
    record = cached_record(device)
    if device.stale and record.iNumChannels > 0:
        device.stale = False
        try:
            return _synchronised(device, record)
        except BaseException:
            device.stale = True
            raise
    return record


def _synchronised(device: Device, record: StateRecord) -> StateRecord:
    """Brings the library's record to what the device tells, which may have been changed by
    commands or by hand. The device is sent what it has already."""
    states = device.numbers("GetUnitStatus")
    intensities = device.numbers("GetIntensity")
    positions = len(wavelengths(device, record))
    if len(states) < positions or len(intensities) < positions:
        raise e.DeviceIOError(
            f"GetUnitStatus on {device.port}: not a number for each of {positions} positions",
            e.ERR_UNSPECIFIED,
        )
    differs = False
    for position, channel in by_position(device, record).items():
        before = channel.iIntensity, channel.iState
        intensity = intensities[position - 1]
        if limited(intensity, channel) == intensity:
            channel.iIntensity = intensity
        if not device.dark:
            channel.iState = states[position - 1]
        differs = differs or before != (channel.iIntensity, channel.iState)
    if differs:
        _send(device, record)
        record = cached_record(device)
    return record
