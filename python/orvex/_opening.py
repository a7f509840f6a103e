"""Finding and opening lights."""

from __future__ import annotations

import os
from dataclasses import dataclass
from typing import List, Union

from . import _errors as e
from ._light import Light
from ._models import model_name
from ._scan import ATTACHED, choose
from ._worker import interruptible

_USUAL_RATE = 9600


@dataclass(frozen=True)
class LightInfo:
    """A light that a scan has found."""

    model: str
    type: int
    port: str
    is_open: bool

    def open(self, baud_rate: int = _USUAL_RATE) -> Light:
        """Opens it, if it is still there."""
        return open_light(self.model, self.port, baud_rate)


def scan() -> List[LightInfo]:
    """The lights that are attached, in the order of their ports. Nothing is sent to them.

    ``is_open`` tells of this process alone. A scan waits for the calls that other threads have
    under way.
    """
    return interruptible(
        lambda: [
            LightInfo(device.model, device.number, device.port, device.opens > 0)
            for device in ATTACHED.scan()
        ]
    )


def open_light(
    model: Union[None, str, int] = None,
    port: Union[None, str, os.PathLike[str]] = None,
    baud_rate: int = _USUAL_RATE,
) -> Light:
    """Opens the light of a model (``"Tamar"``), at a port (a link to it will do), or the only one.

    A light that is open already is opened once more; each ``Light`` is closed by itself.
    """
    wanted = None if model is None else model_name(model)
    path = None if port is None else os.fspath(port)
    if isinstance(baud_rate, bool) or not isinstance(baud_rate, int) or baud_rate < _USUAL_RATE:
        raise e.ArgumentError(
            f"baud rate {baud_rate!r}: a whole number from {_USUAL_RATE}", e.ERR_INVALID_ARG
        )

    def open_chosen() -> Light:
        device = choose(wanted, path)
        if baud_rate == _USUAL_RATE:
            device.open()
        else:
            device.open_at(baud_rate, ATTACHED.review)
        return Light(device)

    return interruptible(open_chosen, Light.close)
