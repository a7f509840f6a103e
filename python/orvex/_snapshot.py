"""A light's whole state at one moment, with the members that docs/json.md describes."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Dict, Optional, Tuple


@dataclass(frozen=True)
class ChannelSnapshot:
    """One position of a multi-LED light. Without an LED only the position says something."""

    position: int
    fitted: bool
    name: str = ""
    wavelength: int = 0
    raw: int = 0
    minimum: int = 0
    maximum: int = 0
    step: int = 0
    temperature: int = 0
    group: int = 0
    on: bool = False

    @property
    def percent(self) -> float:
        """The intensity in per cent; ``raw`` and the limits are in tenths of a per cent."""
        return self.raw / 10

    def to_dict(self) -> Dict[str, Any]:
        """The JSON object."""
        if not self.fitted:
            return {"position": self.position, "fitted": False}
        return {
            "position": self.position,
            "name": self.name,
            "wavelength": self.wavelength,
            "percent": self.percent,
            "raw": self.raw,
            "minimum": self.minimum,
            "maximum": self.maximum,
            "step": self.step,
            "temperature": self.temperature,
            "group": self.group,
            "on": self.on,
        }


@dataclass(frozen=True)
class LampSnapshot:
    """What a lamp tells; a basic one has no minimum and no temperature."""

    hours: int
    percent: int
    minimum: Optional[int] = None
    temperature: Optional[int] = None

    def to_dict(self) -> Dict[str, Any]:
        """The JSON object."""
        told: Dict[str, Any] = {"hours": self.hours, "percent": self.percent}
        if self.minimum is not None:
            told["minimum"] = self.minimum
        if self.temperature is not None:
            told["temperature"] = self.temperature
        return told


@dataclass(frozen=True)
class Snapshot:
    """A light's state. It has channels or a lamp."""

    model: str
    type: int
    port: str
    firmware: str
    serial: Optional[str]
    unit_status: str
    capabilities: Tuple[str, ...]
    channels: Tuple[ChannelSnapshot, ...] = ()
    lamp: Optional[LampSnapshot] = None

    def to_dict(self) -> Dict[str, Any]:
        """The JSON object, the same as ``orvexctl info --json`` prints."""
        told: Dict[str, Any] = {
            "model": self.model,
            "type": self.type,
            "port": self.port,
            "firmware": self.firmware,
            "serial": self.serial,
            "unitStatus": self.unit_status,
            "capabilities": list(self.capabilities),
        }
        if self.lamp is not None:
            told["lamp"] = self.lamp.to_dict()
        else:
            told["channels"] = [channel.to_dict() for channel in self.channels]
        return told
