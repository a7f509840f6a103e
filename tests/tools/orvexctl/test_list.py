import json

import pexpect


def test_lists_model_port_serial_and_state(orvexctl):
    result = orvexctl("list")
    assert result.code == 0
    assert result.err == ""
    assert result.out == (
        "#  MODEL  PORT          SERIAL  STATE\n"
        "1  Tamar  /dev/ttyACM0  -       free\n"
        "2  Cedar  /dev/ttyACM1  -       free\n")


def test_json(orvexctl):
    result = orvexctl("list", "--json")
    assert result.code == 0
    assert json.loads(result.out) == [
        {"number": 1, "model": "Tamar", "port": "/dev/ttyACM0", "serial": None, "state": "free",
         "holders": []},
        {"number": 2, "model": "Cedar", "port": "/dev/ttyACM1", "serial": None, "state": "free",
         "holders": []},
    ]


def test_shows_who_holds_a_port(shell_script):
    result = shell_script("sleep 60 < /dev/ttyACM0 & sleep 0.3; orvexctl list --json; kill $!")
    first, second = json.loads(result.out)
    assert first["state"] == "busy"
    assert [holder["command"] for holder in first["holders"]] == ["sleep"]
    assert second["state"] == "free"


def test_no_lights(orvexctl_alone):
    result = orvexctl_alone("list")
    assert result.code == 3
    assert result.out == ("No lights found; looked for USB devices 04d8:ea02 (Cedar), "
                          "04d8:ea08 (Tamar) with a port named ttyACM.\n")


def test_no_lights_as_json(orvexctl_alone):
    result = orvexctl_alone("list", "--json")
    assert result.code == 3
    assert json.loads(result.out) == []


def test_watch_tells_of_the_lights_and_ends_with_ctrl_c(terminal):
    child = terminal("list", "--watch")
    child.expect_exact("+ Tamar on /dev/ttyACM0")
    child.expect_exact("+ Cedar on /dev/ttyACM1")
    child.sendintr()
    child.wait()
    assert child.exitstatus == 0


def test_watch_tells_of_arrivals_and_departures(terminal):
    child = terminal("list", "--watch", timeline=[{"at": 2, "device": 2, "do": "unplug"},
                                                  {"at": 3, "device": 2, "do": "plug"}])
    child.expect_exact("+ Cedar on /dev/ttyACM1")
    child.expect_exact("- Cedar on /dev/ttyACM1 is gone")
    child.expect_exact("+ Cedar on /dev/ttyACM1")
    child.sendintr()
    child.expect(pexpect.EOF)
    child.wait()
    assert child.exitstatus == 0


def test_watch_prints_json_lines(terminal):
    child = terminal("list", "--watch", "--json")
    child.expect_exact('{"event":"arrived","model":"Tamar","port":"/dev/ttyACM0"}')
    child.sendintr()
    child.wait()
    assert child.exitstatus == 0
