import re
import signal
import time

import pytest

from fake_light import LAMP, TAMAR


@pytest.fixture
def script(tmp_path):
    def write(text):
        path = tmp_path / "protocol.txt"
        path.write_text(text)
        return str(path)
    return write


def changes(light):
    return [request for request in light.requests if "=" in request]


def test_carries_out_verbs_pauses_and_repetitions(orvexctl_alone, fake_light, script):
    light = fake_light(TAMAR)
    path = script("# a protocol\nset 1=45%\n\nrepeat 2   # twice\n  exec GetTemperature\n"
                  "  repeat 2\n    wait 1ms\n    exec GetSpeakerVolume\n  end\nend\nwait 0.01s\n")
    result = orvexctl_alone("run", path, "--model", "Tamar", "--port", light.port)
    assert (result.code, result.err) == (0, "")
    assert result.out == ("Channel 1 (UV, 365 nm): 45.0 %\n"
                          "30,31,32\n\n\n30,31,32\n\n\n")


def test_waits(orvexctl_alone, fake_light, script):
    light = fake_light(TAMAR)
    begin = time.monotonic()
    result = orvexctl_alone("run", script("wait 400ms\nwait 0.3s\n"), "--model", "Tamar", "--port",
                            light.port)
    assert result.code == 0
    assert time.monotonic() - begin >= 0.7


def test_from_standard_input(orvexctl):
    result = orvexctl("run", "-", "-d", "2", input="exec GetTemperature\n")
    assert (result.code, result.out) == (0, "38\n")


BAD = {
    "seet 1=on": 'line 2: there is no verb "seet"; did you mean set?',
    "set 1=onn": 'line 2: "1=onn", character 3: "onn" is neither on, off nor a percentage like 45%',
    "set 2=on": 'line 2: "2=on", character 1: channel 2 is a position without an LED; the Tamar on '
                "{port} has 1 or 3",
    "on 9": "line 2: on: channel 9 is not there; the Tamar on {port} has 1 or 3",
    "exec GetTemp": 'line 2: a Tamar has no command "GetTemp"; did you mean GetTemperature or '
                    "GetTemperatureHysteresisLED? (ORVEX_ERR_NOT_SUPPORTED)",
    "lamp on": "line 2: the Tamar on {port} has no lamp (ORVEX_ERR_NOT_SUPPORTED)",
    "repeat 2": "line 2: this repeat has no end",
    "end": "line 2: this end has no repeat",
    "set": "line 2: assignments is required",
}


@pytest.mark.parametrize("line", BAD)
def test_the_whole_script_is_checked_first(orvexctl_alone, fake_light, script, line):
    light = fake_light(TAMAR)
    path = script("set 1=on\n" + line + "\n")
    result = orvexctl_alone("run", path, "--model", "Tamar", "--port", light.port)
    assert result.code == 2
    assert result.out == ""
    assert result.err.splitlines()[0] == (
        f"orvexctl: {path}, " + BAD[line].format(port=light.port))
    assert changes(light) == []


@pytest.mark.parametrize("line", ["wait", "wait 250", "wait soon", "wait -1ms", "wait 5h",
                                  "repeat", "repeat 0", "repeat x", "set --help"])
def test_bad_pauses_and_repetitions(orvexctl_alone, fake_light, script, line):
    light = fake_light(TAMAR)
    path = script("set 1=on\n\n" + line + "\nend\n")
    result = orvexctl_alone("run", path, "--model", "Tamar", "--port", light.port)
    assert result.code == 2
    assert f"{path}, line 3: " in result.err
    assert changes(light) == []


def test_script_that_cannot_be_read(orvexctl_alone, tmp_path):
    path = str(tmp_path / "none.txt")
    result = orvexctl_alone("run", path)
    assert result.code == 8
    assert result.err == (f"orvexctl: the script {path} cannot be read: No such file or "
                          "directory\n")
    assert orvexctl_alone("run", str(tmp_path)).code == 8


def test_mistake_on_standard_input(orvexctl):
    result = orvexctl("run", "-", "-d", "1", input="set 7=on\n")
    assert result.code == 2
    assert result.err.startswith('orvexctl: standard input, line 1: "7=on", character 1: ')


def interrupt(programs, light, path, number):
    """Runs a script that prints two lines and then waits, and interrupts it."""
    command = [programs.orvexctl, "run", path, "--model",
               "Cedar" if "tt" in light.replies else "Tamar", "--port", light.port]
    with programs.start(command) as process:
        for _ in range(2):
            process.stdout.readline()
        process.send_signal(number)
        out, err = process.communicate(timeout=60)
    return process.returncode, err


@pytest.mark.parametrize("number, code", [(signal.SIGINT, 130), (signal.SIGTERM, 143)])
def test_interrupt_switches_off_what_the_script_switched_on(programs, fake_light, script, number,
                                                            code):
    light = fake_light(TAMAR)
    path = script("set 1=45%,on 3=on\nwait 2min\n")
    ended, err = interrupt(programs, light, path, number)
    assert ended == code
    assert re.sub("line [12]", "line N", err) == (
        f"orvexctl: {path}: interrupted in line N\n"
        "orvexctl: switched off again what the script had switched on\n")
    assert changes(light)[-1] == "of=1,3"
    assert light.requests[-1] == "dc"


def test_interrupt_puts_a_lamp_out(programs, fake_light, script):
    light = fake_light(LAMP)
    code, _ = interrupt(programs, light, script("lamp on\nshutter open\nwait 2min\n"),
                        signal.SIGINT)
    assert code == 130
    assert light.requests[-3:] == ["zz", "ss", "zz"]  # the last one ends the program


def test_failing_step_names_its_line_and_switches_off(orvexctl_alone, fake_light, script):
    light = fake_light(TAMAR, **{"vo=20": "e"})
    path = script("on 3\nexec SetSpeakerVolume 20\n")
    result = orvexctl_alone("run", path, "--model", "Tamar", "--port", light.port)
    assert result.code == 6
    assert result.out == "Channel 3 (BLUE, 470 nm): on\n"
    assert result.err.splitlines()[:2] == [
        "orvexctl: switched off again what the script had switched on",
        f"orvexctl: {path}, line 2: SetSpeakerVolume 20 on {light.port} failed: the device "
        "answered with its error reply, or the port failed (ORVEX_ERR_IO, 0x80515003)"]
    assert changes(light)[-1] == "of=3"


def test_progress_bar_on_a_terminal(terminal, script):
    child = terminal("run", script("repeat 3\nwait 200ms\nend\n"), "-d", "2")
    child.expect_exact("[..............................] 0/3  wait 200ms")
    child.expect_exact("[####################..........] 2/3  wait 200ms")
    child.wait()
    assert child.exitstatus == 0


def test_no_progress_bar_elsewhere(orvexctl, script):
    result = orvexctl("run", script("wait 1ms\n"), "-d", "2")
    assert (result.out, result.err) == ("", "")
    assert not re.search("\x1b", result.err)
