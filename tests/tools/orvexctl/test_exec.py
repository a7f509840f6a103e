import json

from fake_light import LAMP, SPRUCE, TAMAR


def test_prints_the_reply_without_its_carriage_return(orvexctl):
    result = orvexctl("exec", "-d", "Cedar", "GetTemperature")
    assert (result.code, result.out, result.err) == (0, "38\n", "")


def test_value(shell_script):
    result = shell_script("orvexctl exec -d 1 SetSpeakerVolume 20; "
                          "orvexctl exec -d 1 GetSpeakerVolume")
    assert (result.code, result.out) == (0, "\n20\n")


def test_json(orvexctl):
    result = orvexctl("exec", "-d", "2", "SetIntensity", "30", "--json")
    assert result.code == 0
    assert json.loads(result.out) == {"command": "SetIntensity", "request": "d30", "reply": ""}


def test_unknown_command_suggests_the_nearest(orvexctl):
    result = orvexctl("exec", "-d", "2", "GetTemperatur")
    assert result.code == 2
    assert result.out == ""
    assert result.err == (
        'orvexctl: a Cedar has no command "GetTemperatur"; did you mean GetTemperature? '
        "(ORVEX_ERR_NOT_SUPPORTED)\n"
        "  try: orvexctl commands --model Cedar lists them all\n")


def test_error_reply(orvexctl):
    result = orvexctl("exec", "-d", "2", "SetIntensity", "500")
    assert result.code == 6
    assert result.err.splitlines()[0] == (
        "orvexctl: SetIntensity 500 on /dev/ttyACM1 failed: the device answered with its error "
        "reply, or the port failed (ORVEX_ERR_IO, 0x80515003)")


def test_models_that_open_only_in_part_take_commands(orvexctl_alone, fake_light):
    spruce = fake_light(SPRUCE)
    result = orvexctl_alone("exec", "--model", "Spruce", "--port", spruce.port, "GetTemperature")
    assert (result.code, result.out) == (0, "30,31,32,33\n")
    assert spruce.requests[-1] == "dc"
    rowan = fake_light(LAMP)
    result = orvexctl_alone("exec", "--model", "Rowan", "--port", rowan.port, "GetTemperature")
    assert (result.code, result.out) == (0, "41\n")
    assert rowan.requests[-1] == "zz"


def test_request_that_is_too_long(orvexctl_alone, fake_light):
    light = fake_light(LAMP)
    result = orvexctl_alone("exec", "--model", "Cedar", "--port", light.port, "SetIntensity",
                            "1" * 1024)
    assert result.code == 2
    assert "(ORVEX_ERR_INVALID_ARG, 0xA0515001)" in result.err


def test_unprintable_replies_are_shown_safely(orvexctl_alone, fake_light):
    light = fake_light(TAMAR, **{"vo?": b"a\x1b[2Jb\xff"})
    result = orvexctl_alone("exec", "--model", "Tamar", "--port", light.port, "GetSpeakerVolume")
    assert (result.code, result.out) == (0, "a\\x1b[2Jb\\xff\n")


def test_commands_of_a_model(orvexctl_alone):
    result = orvexctl_alone("commands", "--model", "alder")
    assert result.code == 0
    assert result.out == """\
COMMAND             REQUEST
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


def test_commands_of_an_attached_light_as_json(orvexctl):
    result = orvexctl("commands", "-d", "1", "--json")
    assert result.code == 0
    listed = json.loads(result.out)
    assert listed["model"] == "Tamar"
    assert {"command": "GetWaveLengthLED", "request": "lw?"} in listed["commands"]
    assert {"command": "Connect", "request": "co"} in listed["commands"]


def test_unknown_model(orvexctl_alone):
    result = orvexctl_alone("commands", "--model", "Tamer")
    assert result.code == 2
    assert result.err == 'orvexctl: there is no model "Tamer"; did you mean Tamar?\n'
    result = orvexctl_alone("commands", "--model", "Sequoia")
    assert result.code == 2
    assert result.err == (
        'orvexctl: there is no model "Sequoia"; known: Alder, Birch, Cedar, Hazel, Larch, Maple, '
        "Rowan, Spruce, Tamar or Willow\n")
