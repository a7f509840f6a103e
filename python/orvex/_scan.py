"""Finding devices, and letting go of those that have gone."""

from __future__ import annotations

import ctypes
import os
from dataclasses import dataclass
from typing import Dict, List, Optional

from . import _errors as e
from . import _port
from ._device import SCANS, Device
from ._library import library
from ._models import is_found_by_scan

_LONGEST_PORT = 4096


@dataclass(frozen=True)
class _Found:
    handle: int
    number: int
    port: str
    opens: int


class Attached:
    """The devices that the last scan has found. A device keeps its object while it is in use."""

    def __init__(self) -> None:
        self._slots = (ctypes.c_uint64 * 16)()
        self._devices: Dict[int, Device] = {}

    def scan(self) -> List[Device]:
        """Scans. The devices are in the order of their ports' numbers."""
        library().log.follow()
        with SCANS.alone():
            self._scan()
            found = self._found()
            self._let_go(found)
            for one in found:
                if one.handle not in self._devices:
                    self._devices[one.handle] = Device(one.handle, one.number, one.port)
            devices = list(self._devices.values())
        return sorted(devices, key=lambda device: (len(device.port), device.port))

    def review(self) -> None:
        """After a scan that a call of the library has made by itself; the caller is alone."""
        self._let_go(self._found())

    def forget_all(self) -> None:
        """For a child process: the ports are its parent's."""
        for device in self._devices.values():
            device.forget()
        self._devices.clear()

    def _scan(self) -> None:
        status = e.ERR_BUFFER_TOO_SMALL
        count = ctypes.c_uint32(0)
        while status == e.ERR_BUFFER_TOO_SMALL:
            if count.value > len(self._slots):
                slots = (ctypes.c_uint64 * count.value)(*self._slots)
                self._slots = slots
            status = library().calls.ORVEX_ScanDevices(
                self._slots, len(self._slots), ctypes.byref(count)
            )
        if status != e.OK:
            raise e.failure("scanning for lights", status)

    def _found(self) -> List[_Found]:
        handles = {*self._slots, *self._devices} - {0}
        return [one for one in map(_describe, handles) if one is not None]

    def _let_go(self, found: List[_Found]) -> None:
        """A handle may have been given to another device in the meantime."""
        there = {one.handle: one for one in found}
        for handle, device in list(self._devices.items()):
            one = there.get(handle)
            same = one is not None and (one.port, one.number) == (device.port, device.number)
            reopened = one is not None and one.opens == 0 and device.opens > 0
            if not same or reopened:
                device.forget()
                del self._devices[handle]
            elif device.opens == 0 and not device.is_there():  # Another one at the same path.
                device.forget()
                del self._devices[handle]


def _describe(handle: int) -> Optional[_Found]:
    number = ctypes.c_uint32()
    opens = ctypes.c_uint32()
    port = ctypes.create_string_buffer(_LONGEST_PORT)
    status = library().calls.ORVEX_GetDeviceInfo(
        handle, ctypes.byref(number), port, len(port), ctypes.byref(opens)
    )
    if status != e.OK:
        return None
    return _Found(handle, number.value, os.fsdecode(port.value), opens.value)


ATTACHED = Attached()
os.register_at_fork(after_in_child=ATTACHED.forget_all)


def choose(model: Optional[str], port: Optional[str]) -> Device:
    """The one attached device that fits."""
    attached = ATTACHED.scan()
    meant = [
        device
        for device in attached
        if (model is None or device.model == model)
        and (port is None or _port.is_same(port, device.port))
    ]
    if not meant:
        raise e.NotFoundError(_nothing(model, port, attached), e.ERR_NO_DEVICE)
    if len(meant) > 1:
        raise e.ArgumentError(
            f"which light? {_titles(meant)}; name the model, the port, or both", e.ERR_INVALID_ARG
        )
    return meant[0]


def _titles(devices: List[Device]) -> str:
    return ", ".join(device.title for device in devices)


def _nothing(model: Optional[str], port: Optional[str], attached: List[Device]) -> str:
    wanted = (f"{model} " if model else "") + (f"on {port} " if port else "")
    text = f"no light {wanted}found; attached: {_titles(attached) or 'none'}"
    if model is not None and not is_found_by_scan(model):
        text += f" (the library knows no USB identifier of {model})"
    return text
