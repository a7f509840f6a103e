"""Commands, their failures as exceptions, and snapshots."""

import copy
import dataclasses
import json
import pickle
import subprocess
import time

import pytest

import orvex
from orvex import _errors


def test_replies_are_without_their_end(tamar, cedar):
    assert tamar.command("GetTemperature") == "31,31,32,34,33,30,0,29"
    assert cedar.command("GetLampHours") == "1250"
    assert cedar.command("SetIntensity", 25) == ""
    assert cedar.command("GetIntensity") == "25"
    cedar.command("SetIntensity", "50")


@pytest.mark.parametrize("value, sent", [
    ("1,2", "lb=1,2"), (77, "lb=77"), ([1, 2, 3], "lb=1,2,3"), ((), "lb="), (None, "lb=")])
def test_values(tamar, trace, value, sent):
    seen = trace(tamar)
    try:
        tamar.command("SetScreenBrightness", value)
    except orvex.DeviceIOError:
        pass  # Not all of them make sense to the light.
    assert seen.requests() == [sent]


def test_long_reply(tamar):
    assert len(tamar.command("GetTypeLED")) == 1024


def test_names_of_commands(tamar, cedar):
    assert tamar.commands == orvex.commands_of("Tamar")
    assert cedar.commands[:3] == ("ClearAlarm", "CloseShutter", "Connect")


def caught(error, light, name, value=None):
    with pytest.raises(error) as info:
        light.command(name, value)
    return info.value


def test_unknown_command(tamar):
    error = caught(orvex.NotSupportedError, tamar, "GetTemperatur")
    assert (error.code, error.name) == (0xA0515013, "ORVEX_ERR_NOT_SUPPORTED")
    assert str(error) == (
        "GetTemperatur on /dev/ttyACM0: a Tamar has no such command; did you mean GetTemperature? "
        "(ORVEX_ERR_NOT_SUPPORTED, 0xA0515013)")


def test_error_reply(tamar):
    error = caught(OSError, tamar, "GetSpeakerVolume")
    assert type(error) is orvex.DeviceIOError
    assert str(error) == (
        "GetSpeakerVolume on /dev/ttyACM0: the light answered with its error reply, or its port "
        "failed (ORVEX_ERR_IO, 0x80515003)")


def test_silence(tamar):
    begin = time.monotonic()
    error = caught(TimeoutError, tamar, "GetScreenSaverTimeout")
    assert 2.0 <= time.monotonic() - begin
    assert (type(error), error.name) == (orvex.NoAnswerError, "ORVEX_ERR_RECV")
    assert tamar.command("GetSoftwareVersion") == "1.4.2"


@pytest.mark.parametrize("value", ["1\0002", "9" * 1024])
def test_values_that_cannot_be_sent(tamar, trace, value):
    sent = trace(tamar)
    assert isinstance(caught(ValueError, tamar, "SetScreenBrightness", value), orvex.ArgumentError)
    assert sent.requests() == []


FAMILIES = {
    "ORVEX_ERR_UNSPECIFIED": (orvex.OrvexError,),
    "ORVEX_ERR_INVALID_ARG": (orvex.ArgumentError, ValueError),
    "ORVEX_ERR_INVALID_HANDLE": (orvex.NotConnectedError, ConnectionError),
    "ORVEX_ERR_BUFFER_TOO_SMALL": (orvex.ArgumentError, ValueError),
    "ORVEX_ERR_NO_HANDLE": (orvex.NotConnectedError, ConnectionError),
    "ORVEX_ERR_NOT_SUPPORTED": (orvex.NotSupportedError,),
    "ORVEX_ERR_RECV": (orvex.NoAnswerError, TimeoutError),
    "ORVEX_ERR_SEND": (orvex.DeviceIOError, OSError),
    "ORVEX_ERR_STRUCT_SIZE": (orvex.ArgumentError, ValueError),
    "ORVEX_ERR_NO_DEVICE": (orvex.NotFoundError, ConnectionError),
    "ORVEX_ERR_NO_RESPONSE": (orvex.NoAnswerError, TimeoutError),
    "ORVEX_ERR_IO": (orvex.DeviceIOError, OSError),
    "ORVEX_ERR_MAX_CHANNEL": (orvex.NotSupportedError,),
    "ORVEX_ERR_NOT_CONNECTED": (orvex.NotConnectedError, ConnectionError),
}


@pytest.mark.parametrize("name", FAMILIES)
def test_families(name):
    code = getattr(_errors, name.removeprefix("ORVEX_"))
    error = _errors.failure("asking", code)
    assert type(error) is FAMILIES[name][0]
    assert all(isinstance(error, family) for family in (*FAMILIES[name], orvex.OrvexError))
    for same in (error, copy.copy(error), pickle.loads(pickle.dumps(error))):
        assert (same.code, same.name, str(same)) == (code, name, str(error))
        assert str(same).startswith("asking: ") and str(same).endswith(f"({name}, 0x{code:08X})")


def test_every_status_has_a_family():
    assert {status.name for status in _errors.STATUSES.values()} == {"ORVEX_OK", *FAMILIES}


def told_by_orvexctl(build_dir, port):
    program = build_dir / "tools" / "orvexctl" / "orvexctl"
    return json.loads(subprocess.check_output([program, "info", "-d", port, "--json"]))


def test_snapshots_are_what_orvexctl_tells(build_dir):
    for model in ("Tamar", "Cedar"):
        with orvex.open(model) as light:
            told = light.snapshot()
        assert told.to_dict() == told_by_orvexctl(build_dir, light.port)
        assert list(told.to_dict()) == list(told_by_orvexctl(build_dir, light.port))


def test_snapshot_asks_the_light(tamar):
    tamar.command("TurnLedOn", "2")
    now = tamar.snapshot()
    assert [channel.on for channel in now.channels] == [False, True] + [False] * 6
    assert (now.channels[1].percent, now.serial, now.lamp) == (50.0, "TA-0815", None)
    with pytest.raises(dataclasses.FrozenInstanceError):
        now.port = "/dev/null"
    assert json.loads(json.dumps(now.to_dict()))["channels"][6] == {
        "position": 7, "fitted": False}


def test_lamp(cedar, trace):
    sent = trace(cedar, device=2)
    cedar.switch(True)
    cedar.switch(False)
    assert sent.requests() == ["mm", "zz"]
    lamp = cedar.snapshot().lamp
    assert (lamp.hours, lamp.percent, lamp.minimum, lamp.temperature) == (1250, 50, 5, 38)
