"""An open light."""

from __future__ import annotations

import threading
import warnings
from contextlib import contextmanager
from types import TracebackType
from typing import Dict, Iterator, List, Optional, Sequence, Tuple, Type, Union

from . import _errors as e
from . import _state
from ._channels import Channel, Channels
from ._commands import COMMANDS
from ._device import Device
from ._read_snapshot import read_snapshot
from ._records import ChannelRecord
from ._snapshot import Snapshot
from ._state import Change
from ._worker import interruptible

Value = Union[None, str, int, Sequence[int]]


class _Batch(threading.local):
    """Changes that a thread collects; those of other threads are theirs."""

    depth = 0

    def __init__(self) -> None:
        self.changes: List[Change] = []


class Light:
    """A light that ``orvex.open()`` has opened. It is closed by ``close()``, or at the end of a
    ``with`` statement. Any thread may use it."""

    def __init__(self, device: Device) -> None:
        self._device = device
        self._closed = False
        self._closing = threading.Lock()
        self._batch = _Batch()
        self._fitted: Dict[int, ChannelRecord] = {}

    def __repr__(self) -> str:
        return f"<Light {self._device.title}{' closed' if self._closed else ''}>"

    def __enter__(self) -> Light:
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        self.close()

    def __del__(self) -> None:
        # Closing talks to the light, which must not happen wherever objects are collected.
        if not getattr(self, "_closed", True):
            warnings.warn(f"{self!r} was not closed", ResourceWarning, source=self)

    @property
    def model(self) -> str:
        """The model's name."""
        return self._device.model

    @property
    def type(self) -> int:
        """The model's number, 0 to 9."""
        return self._device.number

    @property
    def port(self) -> str:
        """The serial port's path."""
        return self._device.port

    @property
    def closed(self) -> bool:
        """Whether it has been closed."""
        return self._closed

    @property
    def channels(self) -> Channels:
        """The LEDs, by the numbers of their positions from 1."""
        device = self._open_device()
        if not self._fitted:
            self._fitted = interruptible(lambda: _state.read(device))
        channels = {
            number: Channel(self, number, record) for number, record in self._fitted.items()
        }
        return Channels(device.title, channels)

    @property
    def commands(self) -> Tuple[str, ...]:
        """The names of the model's commands, in alphabetical order."""
        return COMMANDS[self.model]

    def command(self, name: str, value: Value = None) -> str:
        """Sends a command of the model. The reply is without its carriage return.

        A value may be a text, a whole number, or several, which are sent with commas between.
        """
        device = self._open_device()
        text = _text_of(value)

        def send() -> str:
            changing = not name.startswith("Get")
            try:
                return device.execute(name, text)
            finally:
                device.stale = device.stale or changing

        return interruptible(send)

    @contextmanager
    def batch(self) -> Iterator[Light]:
        """Collects what the thread sets inside, and sends it at the end as one record.

        When the ``with`` statement is left by an exception nothing is sent.
        """
        self._open_device()
        self._batch.depth += 1
        try:
            yield self
            if self._batch.depth == 1 and self._batch.changes:
                self._apply(self._batch.changes)
        finally:
            self._batch.depth -= 1
            if self._batch.depth == 0:
                self._batch.changes = []

    def switch(self, on: bool) -> None:
        """Switches the light as a whole: a lamp's shutter, or the channels.

        Off switches all channels off, and on those that were set on before; until then channels
        that are set on are only remembered.
        """
        device = self._open_device()
        interruptible(lambda: _state.switch(device, bool(on)))

    def snapshot(self) -> Snapshot:
        """Asks the light for its whole state."""
        device = self._open_device()
        return interruptible(lambda: read_snapshot(device))

    def refresh(self) -> None:
        """Makes the light be asked for its channels the next time they are needed, for they may
        have been changed at its front panel."""
        self._open_device().stale = True

    def close(self) -> None:
        """Closes the light: a lamp's shutter is shut, LEDs stay as they are. May be called again,
        and of a light that has been unplugged."""
        with self._closing:
            if self._closed:
                return
            self._closed = True
        interruptible(self._device.close)

    def _open_device(self) -> Device:
        if self._closed:
            raise e.NotConnectedError(
                f"the {self._device.title} has been closed", e.ERR_NOT_CONNECTED
            )
        return self._device

    def _channel(self, position: int) -> ChannelRecord:
        device = self._open_device()
        channels = interruptible(lambda: _state.read(device))
        _state.preview(self._batch.changes, channels)
        return channels[position]

    def _change(self, change: Change) -> None:
        if self._batch.depth:
            self._batch.changes.append(change)
        else:
            self._apply([change])

    def _apply(self, changes: Sequence[Change]) -> None:
        device = self._open_device()
        interruptible(lambda: _state.apply(device, changes))

    def _temperature(self, position: int) -> int:
        device = self._open_device()
        return interruptible(lambda: device.numbers("GetTemperature"))[position - 1]


def _text_of(value: Value) -> str:
    if value is None:
        return ""
    if isinstance(value, (str, int)):
        return str(value)
    return ",".join(str(number) for number in value)
