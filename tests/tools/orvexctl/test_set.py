import json

import pytest

from fake_light import LAMP, SPRUCE, TAMAR


def test_several_channels_in_one_go(orvexctl):
    result = orvexctl("set", "-d", "Tamar", "1=45%", "3=on", "4=off,20%")
    assert result.code == 0
    assert result.err == ""
    assert result.out == ("Channel 1 (UV, 365 nm): 45.0 %\n"
                          "Channel 3 (VIOLET, 405 nm): on\n"
                          "Channel 4 (BLUE, 470 nm): 20.0 %, off\n")


def test_one_request_for_all_intensities(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    result = orvexctl_alone("set", "--model", "Tamar", "--port", light.port, "1=45%", "3=on,30%")
    assert result.code == 0
    # The second position has no LED.
    assert [request for request in light.requests if "=" in request] == [
        "ip=450,200,300", "of=1,2", "on=3"]
    assert light.requests[-1] == "dc"


def test_says_what_was_rounded_and_clamped(orvexctl):
    result = orvexctl("set", "-d", "1", "1=45.5%", "2=1%", "3=99.99%")
    assert result.code == 0
    assert result.out == (
        "Channel 1 (UV, 365 nm): 45.0 % (rounded from 45.5 % to 45.0 %, steps are 1.0 %)\n"
        "Channel 2 (UV-A, 385 nm): 5.0 % (raised from 1 % to the minimum, 5.0 %)\n"
        "Channel 3 (VIOLET, 405 nm): 99.0 % (rounded from 99.99 % to 99.0 %, steps are 1.0 %)\n")


def test_group_says_that_it_waits_and_what_it_displaces(shell_script):
    result = shell_script("orvexctl set -d 1 4=on; orvexctl set -d 1 5=on")
    assert result.code == 0
    assert result.out == (
        "Waiting for the group to settle, at least 1.9 s ...\n"
        "Channel 4 (BLUE, 470 nm): on\n"
        "Waiting for the group to settle, at least 1.9 s ...\n"
        "Channel 5 (GREEN, 525 nm): on\n"
        "Channel 4 (BLUE, 470 nm): off (another channel of group 1 is on)\n")


def test_leds_keep_their_state_after_the_end(shell_script):
    result = shell_script("orvexctl set -d 1 1=on,60% > /dev/null; orvexctl info -d 1 --json")
    channel = json.loads(result.out)["channels"][0]
    assert (channel["on"], channel["raw"]) == (True, 600)


def test_json(orvexctl):
    result = orvexctl("set", "-d", "1", "1=on", "--json")
    assert result.code == 0
    assert json.loads(result.out) == {"said": ["Channel 1 (UV, 365 nm): on"]}


def test_lamp(orvexctl_alone, fake_light):
    light = fake_light(LAMP)
    result = orvexctl_alone("set", "--model", "Birch", "--port", light.port, "1=on,5.5%")
    assert result.code == 0
    assert result.out == (
        "Intensity: 10.0 % (raised from 5.5 % to the minimum, 10.0 %)\n"
        "Shutter open.\n"
        "The shutter closes again now that the program ends; --keep-open leaves it open.\n")
    assert light.requests[-3:] == ["d10", "mm", "zz"]


def test_basic_lamp_has_five_levels(orvexctl_alone, fake_light):
    light = fake_light(LAMP)
    result = orvexctl_alone("set", "--model", "Alder", "--port", light.port, "1=80%")
    assert result.out == ("Intensity: 75.0 % (rounded from 80 % to 75.0 %, "
                          "steps are 25.0 %)\n")
    assert light.requests[-2:] == ["i3", "zz"]


def test_model_that_the_library_cannot_read_in_full(orvexctl_alone, fake_light):
    light = fake_light(SPRUCE)
    result = orvexctl_alone("set", "--model", "Spruce", "--port", light.port, "2=on,45%")
    assert result.code == 0
    assert result.out == "Channel 2 (385 nm): 45.0 %, on\n"
    assert [request for request in light.requests if "=" in request] == [
        "ip=wwww,xxxx,yyyy,zzzz100,450,300,400", "of=w,x,y,z1,3,4", "on=w,x,y,z2"]


BAD = {
    "3=onn": '"3=onn", character 3: "onn" is neither on, off nor a percentage like 45%',
    "3": '"3", character 1: "3" has no "="',
    "=on": '"=on", character 1: a channel number is missing here',
    "x=on": '"x=on", character 1: "x" is no channel number; they count from 1',
    "0=on": '"0=on", character 1: "0" is no channel number; they count from 1',
    "1=": '"1=", character 3: a setting is missing here: on, off or a percentage',
    "1=on,": '"1=on,", character 6: a setting is missing here: on, off or a percentage',
    "1=4x%": '"1=4x%", character 3: "4x%" is no percentage',
    "1=nan%": '"1=nan%", character 3: "nan%" is no percentage',
    "1=%": '"1=%", character 3: "%" is no percentage',
    "1=101%": '"1=101%", character 3: "101%" is not from 0% to 100%',
    "1=-1%": '"1=-1%", character 3: "-1%" is not from 0% to 100%',
    "1=on,off": '"1=on,off", character 6: "off" is the second state of this channel',
    "1=1%,2%": '"1=1%,2%", character 6: "2%" is the second intensity of this channel',
    "2=on": '"2=on", character 1: channel 2 is a position without an LED; '
            "the Tamar on {port} has 1 or 3",
    "4=on": '"4=on", character 1: channel 4 is not there; the Tamar on {port} has 1 or 3',
}


@pytest.mark.parametrize("assignment", BAD)
def test_bad_assignment_is_refused_before_anything_is_sent(orvexctl_alone, fake_light, assignment):
    light = fake_light(TAMAR)
    good = "3=45%" if assignment.startswith("1") else "1=45%"
    result = orvexctl_alone("set", "--model", "Tamar", "--port", light.port, good, assignment)
    assert result.code == 2
    assert result.out == ""
    assert result.err.splitlines()[0] == "orvexctl: " + BAD[assignment].format(port=light.port)
    assert [request for request in light.requests if "=" in request] == []


def test_channel_given_twice(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    result = orvexctl_alone("set", "--model", "Tamar", "--port", light.port, "1=on", "1=45%")
    assert result.code == 2
    assert result.err == ('orvexctl: "1=45%", character 1: channel 1 is set already\n'
                          "  try: put its settings together: 1=on,45%\n")
    assert light.requests == []


def test_failing_request_is_reported(orvexctl_alone, fake_light):
    light = fake_light(TAMAR, **{"ip=450,200,300": "e"})
    result = orvexctl_alone("set", "--model", "Tamar", "--port", light.port, "1=45%", "3=on")
    assert result.code == 6
    assert result.out == ""
    assert result.err.startswith(
        f"orvexctl: setting the state on {light.port} failed: the device answered with its error "
        "reply, or the port failed (ORVEX_ERR_IO, 0x80515003)\n")
    assert ("  intensities go out before states, so a part may have been set; "
            "orvexctl info shows it\n") in result.err
    assert "on=3" not in light.requests
