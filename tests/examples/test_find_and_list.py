import re

TWO_LEDS = {"model": "Tamar", "serial": "TA-7", "channels": [
    {"position": 1, "name": "UV", "wavelength": 365, "percent": 12.0, "raw": 120, "minimum": 50,
     "maximum": 1000, "step": 10, "temperature": 31, "group": 0, "on": True},
    {"position": 2, "fitted": False},
    {"position": 3, "name": "RED", "wavelength": 625, "percent": 80.0, "raw": 800, "minimum": 70,
     "maximum": 1000, "step": 10, "temperature": 29, "group": 0, "on": False}]}
LAMP = {"model": "Cedar", "serial": "CE-9",
        "lamp": {"hours": 1250, "percent": 40, "minimum": 5, "temperature": 38}}


def lines_of(out, heading):
    """The indented lines below the line that begins with a heading, each as its words."""
    lines = out.splitlines()
    first = next(k for k, line in enumerate(lines) if line.startswith(heading)) + 1
    last = first
    while last < len(lines) and lines[last].startswith(" "):
        last += 1
    return [line.split() for line in lines[first:last]]


def test_all_lights_are_listed(examples):
    result = examples.run("find_and_list", devices=[TWO_LEDS, LAMP])
    assert (result.code, result.err) == (0, "")
    assert lines_of(result.out, "Tamar on /dev/ttyACM0, serial number TA-7") == [
        "365 nm UV 12.0 % (5.0 to 100.0 %) 31 degrees C on".split(),
        "625 nm RED 80.0 % (7.0 to 100.0 %) 29 degrees C off".split()]
    assert lines_of(result.out, "Cedar on /dev/ttyACM1, serial number CE-9") == [
        "lamp 1250 h 40 %".split()]


def test_listing_changes_nothing(examples):
    result = examples.run("find_and_list", devices=[TWO_LEDS])
    assert [r.text for r in result.trace.requests if "=" in r.text] == []
    assert result.trace.requests[-1].text == "dc"


def test_a_light_that_fails_is_told_and_the_others_are_listed(examples):
    result = examples.run("find_and_list", devices=["Tamar", "Tamar", "Tamar"], timeline=[
        {"device": 2, "fault": "error", "command": "GetNameLED"}])
    assert result.code == 1
    assert sorted(re.findall(r"^Tamar on (\S+),", result.out, re.MULTILINE)) == [
        "/dev/ttyACM0", "/dev/ttyACM2"]
    assert "/dev/ttyACM1: opening failed with 0x80515003" in result.err
    assert "\n  try: " in result.err


def test_many_lights(examples):
    result = examples.run("find_and_list", devices=["Cedar"] * 9)
    assert result.code == 0
    assert sorted(re.findall(r"^Cedar on (\S+),", result.out, re.MULTILINE)) == [
        f"/dev/ttyACM{k}" for k in range(9)]
