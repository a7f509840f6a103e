import json
import os
import pathlib
import signal

import pexpect
import pytest

from fake_light import TAMAR


def test_draws_in_place_and_quits_on_q(terminal):
    child = terminal("watch", "-d", "1", "--interval", "0.1")
    child.expect_exact("\x1b[?1049h\x1b[?25l")
    child.expect_exact("\x1b[HTamar on /dev/ttyACM0")
    child.expect_exact("Every 0.1 s; q quits.")
    child.expect_exact("\x1b[HTamar on /dev/ttyACM0")
    child.send("q")
    child.expect_exact("\x1b[?25h\x1b[?1049l")
    child.expect(pexpect.EOF)
    child.wait()
    assert child.exitstatus == 0


def watch_in_a_shell(programs, light):
    """Watches below a shell that tells of the terminal's settings before and afterwards."""
    script = (f"trap : INT; stty -a | md5sum; {programs.orvexctl} watch --model Tamar --port {light.port} "
              f"--interval 0.1; echo code $?; stty -a | md5sum")
    return pexpect.spawn("sh", ["-c", script], env=programs.environment(), timeout=120,
                         encoding="utf-8", dimensions=(40, 140))


@pytest.mark.parametrize("end, code", [("q", 0), ("\x03", 0), (signal.SIGTERM, 143),
                                       ("silence", 7)])
def test_leaves_the_terminal_as_it_was(programs, fake_light, end, code):
    light = fake_light(TAMAR)
    child = watch_in_a_shell(programs, light)
    child.expect(r"([0-9a-f]{32})")
    before = child.match[1]
    child.expect_exact("Every 0.1 s")
    if end == "silence":
        light.replies["gt?"] = None
    elif isinstance(end, str):
        child.send(end)
    else:
        children = pathlib.Path(f"/proc/{child.pid}/task/{child.pid}/children")
        os.kill(int(children.read_text()), end)
    child.expect_exact("\x1b[?25h\x1b[?1049l")
    child.expect_exact(f"code {code}")
    child.expect(r"([0-9a-f]{32})")
    assert child.match[1] == before
    child.close(force=True)


def test_shows_changes(programs, fake_light):
    light = fake_light(TAMAR)
    child = watch_in_a_shell(programs, light)
    child.expect(r"30 °C  off")
    light.replies["gt?"] = "77,31,32"
    light.replies["us?"] = "1,0,0"
    child.expect(r"77 °C  on")
    child.send("q")
    child.expect_exact("code 0")
    child.close(force=True)


def test_without_a_terminal_it_prints_one_state_after_the_other(orvexctl):
    result = orvexctl("watch", "-d", "2", "--interval", "0.1", "--count", "2")
    assert result.code == 0
    assert "\x1b" not in result.out
    assert result.out.count("Cedar on /dev/ttyACM1\n") == 2


def test_json_lines(orvexctl):
    result = orvexctl("watch", "-d", "2", "--interval", "0.1", "--count", "3", "--json")
    assert result.code == 0
    assert [json.loads(line)["model"] for line in result.out.splitlines()] == ["Cedar"] * 3


def test_bad_intervals(orvexctl_alone):
    assert orvexctl_alone("watch", "--interval", "0").code == 2
    assert orvexctl_alone("watch", "--interval", "often").code == 2
    assert orvexctl_alone("watch", "--count", "0").code == 2
