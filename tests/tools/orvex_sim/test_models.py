import json

MODELS = """\
Model   Kind  Commands  Found by a scan  Positions (nm)
Alder   lamp  13        no               -
Birch   lamp  26        no               -
Cedar   lamp  26        04d8:ea02        -
Hazel   lamp  26        no               -
Larch   lamp  26        no               -
Maple   lamp  26        no               -
Rowan   lamp  26        no               -
Spruce  LEDs  56        no               365 470 525 625
Tamar   LEDs  70        04d8:ea08        365 405 - 470 525 590 625 -
Willow  LEDs  76        no               365 385 405 430 450 470 490 - 525 550 575 - 625 - 730 -
"""

ALDER = """\
ClearAlarm          aa
CloseShutter        zz
Connect             tt
GetIntensityH4      ii
GetLampHours        hh
GetSoftwareVersion  vv
GetUnitStatus       uu
LockFrontPanel      ll
OpenShutter         mm
SetIntensityH4      i
TurnLampOff         ss
TurnLampOn          bb
UnlockFrontPanel    nn
"""


def test_all_models_are_listed(sim):
    result = sim.run("models")
    assert (result.stdout, result.stderr, result.returncode) == (MODELS, "", 0)


def test_commands_of_a_model_are_listed_with_their_requests(sim):
    result = sim.run("models", "Alder")
    assert (result.stdout, result.returncode) == (ALDER, 0)


def test_a_carriage_return_in_a_request_is_shown(sim):
    lines = sim.run("models", "tamar").stdout.splitlines()
    assert len(lines) == 70
    assert lines[1] == "Connect                          co\\r"
    assert lines[5] == "GetDateLED                       md?"


def test_models_as_json(sim):
    models = json.loads(sim.run("models", "--json").stdout)
    assert [model["model"] for model in models] == [
        "Alder", "Birch", "Cedar", "Hazel", "Larch", "Maple", "Rowan", "Spruce", "Tamar", "Willow"]
    assert models[8] == {
        "model": "Tamar", "type": 8, "kind": "led", "usb": "04d8:ea08",
        "positions": [365, 405, None, 470, 525, 590, 625, None], "commandCount": 70}
    assert models[0] == {
        "model": "Alder", "type": 0, "kind": "lamp", "usb": None, "positions": [],
        "commandCount": 13}


def test_commands_as_json(sim):
    model = json.loads(sim.run("models", "Tamar", "--json").stdout)
    assert {"name": "Connect", "request": "co\r"} in model["commands"]
    assert len(model["commands"]) == 70


def test_an_unknown_model_has_its_nearest_suggested(sim):
    result = sim.run("models", "Tamer")
    assert result.returncode == 2
    assert result.stderr == 'orvex-sim: there is no model "Tamer"; did you mean Tamar?\n'


def test_output_that_cannot_be_written_is_told(sim):
    with open("/dev/full", "w", encoding="ascii") as full:
        result = sim.run("models", capture_output=False, stdout=full, stderr=-1)
    assert (result.stderr, result.returncode) == (
        "orvex-sim: cannot write standard output\n", 4)
