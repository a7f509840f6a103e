import json

from fake_light import LAMP, SPRUCE, TAMAR


def test_table_of_a_led_model(orvexctl):
    result = orvexctl("info", "-d", "Tamar")
    assert result.code == 0
    assert result.out == """\
Tamar on /dev/ttyACM0
  Firmware      1.4.2
  Serial        TA-0815
  Unit status   0,0,0,0,0,0,0,0
  Capabilities  LEDs switched one by one, 8 or more positions

POS  NAME      WAVELENGTH  INTENSITY  RAW            LIMITS   STEP  TEMPERATURE  LIGHT  GROUP
  1  UV            365 nm     50.0 %  500  5.0 % to 100.0 %  1.0 %        31 °C  off        -
  2  UV-A          385 nm     50.0 %  500  5.0 % to 100.0 %  1.0 %        31 °C  off        -
  3  VIOLET        405 nm     50.0 %  500  5.0 % to 100.0 %  1.0 %        32 °C  off        -
  4  BLUE          470 nm     50.0 %  500  5.0 % to 100.0 %  1.0 %        34 °C  off        1
  5  GREEN         525 nm     50.0 %  500  5.0 % to 100.0 %  1.0 %        33 °C  off        1
  6  AMBER         590 nm     50.0 %  500  5.0 % to 100.0 %  1.0 %        30 °C  off        1
  7  (no LED)
  8  RED           635 nm     50.0 %  500  5.0 % to 100.0 %  1.0 %        29 °C  off        1
"""


def test_lamp(orvexctl):
    result = orvexctl("info", "-d", "2")
    assert result.code == 0
    assert result.out == """\
Cedar on /dev/ttyACM1
  Firmware      1.4.2
  Serial        SN-0042
  Unit status   0
  Capabilities  lamp behind a shutter, extended commands
  Lamp hours    1250
  Intensity     50 %
  Minimum       5 %
  Temperature   38 °C
"""


def test_json_of_a_led_model(orvexctl):
    result = orvexctl("info", "-d", "/dev/ttyACM0", "--json")
    assert result.code == 0
    state = json.loads(result.out)
    channels = state.pop("channels")
    assert state == {
        "model": "Tamar", "type": 8, "port": "/dev/ttyACM0", "firmware": "1.4.2",
        "serial": "TA-0815", "unitStatus": "0,0,0,0,0,0,0,0",
        "capabilities": ["led", "extended-channels"]}
    assert len(channels) == 8
    assert channels[3] == {
        "position": 4, "name": "BLUE", "wavelength": 470, "percent": 50.0, "raw": 500,
        "minimum": 50, "maximum": 1000, "step": 10, "temperature": 34, "group": 1, "on": False}
    assert channels[6] == {"position": 7, "fitted": False}


def test_json_of_a_lamp(orvexctl):
    result = orvexctl("info", "-d", "cedar", "--json")
    assert json.loads(result.out) == {
        "model": "Cedar", "type": 2, "port": "/dev/ttyACM1", "firmware": "1.4.2",
        "serial": "SN-0042", "unitStatus": "0", "capabilities": ["lamp", "extended"],
        "lamp": {"hours": 1250, "percent": 50, "minimum": 5, "temperature": 38}}


def test_swatches_only_in_true_colour(terminal):
    child = terminal("info", "-d", "1", env={"COLORTERM": "truecolor"})
    child.expect_exact("\x1b[48;2;115;0;140m  \x1b[0m 365 nm")
    child.wait()
    child = terminal("info", "-d", "1", env={"COLORTERM": "truecolor", "NO_COLOR": "1"})
    child.expect_exact("UV            365 nm")
    child.wait()
    child = terminal("info", "-d", "1")
    child.expect_exact("UV            365 nm")
    child.wait()


def test_no_swatches_without_a_terminal(orvexctl):
    result = orvexctl("info", "-d", "1", env={"COLORTERM": "truecolor"})
    assert "\x1b" not in result.out


def test_model_on_a_port(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    result = orvexctl_alone("info", "--model", "tamar", "--port", light.port, "--json")
    assert result.code == 0
    state = json.loads(result.out)
    assert state["serial"] == "TA-0007"
    assert state["channels"][1] == {"position": 2, "fitted": False}
    assert state["channels"][2]["raw"] == 300
    assert light.requests[-1] == "dc"


def test_model_that_the_library_cannot_read_in_full(orvexctl_alone, fake_light):
    light = fake_light(SPRUCE)
    result = orvexctl_alone("info", "--model", "Spruce", "--port", light.port)
    assert result.code == 0
    assert "  Serial        SP-0001\n" in result.out
    assert ("  1  A         365 nm     10.0 %  100  0.0 % to 100.0 %   any        30 °C  off    "
            "    -\n") in result.out
    assert light.requests[-1] == "dc"


def test_rowan_speaks_the_lamps_commands(orvexctl_alone, fake_light):
    light = fake_light(LAMP)
    result = orvexctl_alone("info", "--model", "Rowan", "--port", light.port, "--json")
    assert result.code == 0
    state = json.loads(result.out)
    assert state["capabilities"] == ["led"]
    assert state["lamp"] == {"hours": 77, "percent": 60, "minimum": 10, "temperature": 41}
    assert light.requests[-1] == "zz"


def test_basic_lamp(orvexctl_alone, fake_light):
    light = fake_light(LAMP)
    result = orvexctl_alone("info", "--model", "Alder", "--port", light.port, "--json")
    assert result.code == 0
    state = json.loads(result.out)
    assert state["serial"] is None
    assert state["lamp"] == {"hours": 77, "percent": 50}
