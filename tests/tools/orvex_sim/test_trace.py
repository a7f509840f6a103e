import os
import re
import threading

import pytest

from port import wait_for

HEAD = "# orvex-sim trace 1\n# seconds, device, > to or < from it, bytes\n"

FIRST_LIGHT = r"""device 1 Tamar at /dev/ttyACM0
T 1 > co\r
T 1 < \r
T 1 > lw?\r
T 1 < 365,470\r
T 1 > us?\r
T 1 < 0,0\r
T 1 > ni?\r
T 1 < 50,50\r
T 1 > ip?\r
T 1 < 500,500\r
T 1 > gt?\r
T 1 < 30,30\r
T 1 > ln?\r
T 1 < 365nm,470nm\r
T 1 > sn?\r
T 1 < SN-0042\r
T 1 > ip=250,500\r
T 1 < \r
T 1 > of=2\r
T 1 < \r
T 1 > on=1\r
T 1 < \r
T 1 > of=1,2\r
T 1 < \r
T 1 > dc\r
T 1 < \r
"""

TIME = re.compile(r"^ *\d+\.\d{6} ", re.MULTILINE)


def without_times(path):
    return TIME.sub("T ", path.read_text())


@pytest.fixture
def recorded(sim, tmp_path, example):
    """The trace of first_light on two LEDs."""
    trace = tmp_path / "light.trace"
    result = sim.run("run", "--device", "Tamar,wavelengths=365/470", "--trace", trace, "--",
                     example("first_light"))
    assert result.returncode == 0
    return trace


def test_a_conversation_is_recorded(recorded):
    assert without_times(recorded) == HEAD + FIRST_LIGHT
    times = [float(time) for time in TIME.findall(recorded.read_text())]
    assert times == sorted(times)
    assert times[-1] >= 1.0


def test_bytes_of_all_kinds_and_pluggings_are_recorded(sim, tmp_path, open_port):
    scenario, trace, link = tmp_path / "lab.json", tmp_path / "t.trace", tmp_path / "ttyLab"
    scenario.write_text("""{"devices": [{"model": "Tamar"}], "timeline": [
        {"fault": "reply", "bytes": "a\\\\b\\n\\u0001", "request": "sn?"},
        {"at": 2, "do": "unplug"}, {"at": 3, "do": "plug"}]}""")
    process = sim.serve("--scenario", scenario, "--trace", trace, "--link", link)
    port = open_port(link)
    assert port.ask("vo?\r") == "50\r"
    port.send("A")
    assert port.receive(limit=0.5) == "A"
    port.send("sn?\r")
    assert port.receive(limit=0.5) == "a\\b\n\x01"
    wait_for(lambda: "plugged in" in trace.read_text())
    process.terminate()
    assert process.wait(30) == 0
    assert without_times(trace) == HEAD + rf"""device 1 Tamar at {link}
T 1 > vo?\r
T 1 < 50\r
T 1 > A
T 1 < A
T 1 > sn?\r
T 1 < a\\b\n\x01
T 1 - unplugged
T 1 + plugged in
"""


def test_lines_are_there_as_soon_as_they_are_complete(sim, tmp_path, open_port):
    trace, link = tmp_path / "t.trace", tmp_path / "ttyLab"
    process = sim.serve("-d", "Tamar", "--trace", trace, "--link", link)
    assert open_port(link).ask("vo?\r") == "50\r"
    wait_for(lambda: "< 50" in trace.read_text())
    process.kill()


@pytest.mark.parametrize("path, problem", [
    ("/dev/full", "No space left on device"),
    ("/nonexistent/t.trace", "No such file or directory"),
])
def test_nothing_is_begun_without_a_trace(sim, path, problem):
    result = sim.run("run", "-d", "Tamar", "--trace", path, "--", "echo", "started")
    assert (result.stdout, result.stderr, result.returncode) == (
        "", f"orvex-sim: --trace {path}: {problem}\n", 4)


@pytest.fixture
def breaking(tmp_path):
    """A trace that cannot be written any more after its first line."""
    path = tmp_path / "t.trace"
    os.mkfifo(path)

    def read_some():
        with open(path, encoding="ascii") as fifo:
            fifo.readline()
    reader = threading.Thread(target=read_some)
    reader.start()
    yield path
    reader.join()


@pytest.mark.parametrize("status, code", [(0, 4), (9, 9)])
def test_a_trace_that_breaks_off_shows_in_the_exit_code(sim, breaking, script, status, code):
    client = script(f"""
import os, sys, tty, time
time.sleep(1)
port = os.open("/dev/ttyACM0", os.O_RDWR | os.O_NOCTTY)
tty.setraw(port)
os.write(port, b"vo?\\r")
print(os.read(port, 3))
sys.exit({status})
""")
    result = sim.run("run", "-d", "Tamar", "--trace", breaking, "--", *client)
    assert result.stdout == "b'50\\r'\n"
    assert result.stderr == (f"orvex-sim: --trace {breaking}: Broken pipe; nothing more is written "
                             "to it\n")
    assert result.returncode == code


def test_a_replay_satisfies_the_same_program(sim, recorded, example):
    result = sim.run("replay", recorded, "--", example("first_light"))
    assert (result.stdout, result.stderr, result.returncode) == (
        "Tamar: 2 channels, first: 365nm\n", "", 0)
    assert sim.leftovers() == []


def test_a_departing_program_is_told_of(sim, recorded, example):
    text = recorded.read_text().replace("ip=250,500", "ip=300,500")
    recorded.write_text(text)
    result = sim.run("replay", recorded, "--", example("first_light"))
    assert result.returncode == 5
    assert (f'orvex-sim: {recorded}:20: device 1 (Tamar): expected "ip=300,500\\r", '
            'got "ip=250,500\\r"\n') in result.stderr


def test_a_program_that_ends_early_is_told_of(sim, recorded):
    result = sim.run("replay", recorded, "--", "true")
    assert (result.stderr, result.returncode) == (
        f'orvex-sim: {recorded}:4: device 1 (Tamar): expected "co\\r", got nothing more\n', 5)


def test_a_replay_passes_the_exit_status_on(sim, tmp_path):
    trace = tmp_path / "t.trace"
    trace.write_text(HEAD + "device 1 Tamar at /dev/ttyACM0\n")
    assert sim.run("replay", trace, "--", "sh", "-c", "exit 3").returncode == 3
    assert sim.run("replay", trace, "--", "/nonexistent").returncode == 127


CONVERSATION = HEAD + r"""device 1 Willow at /dev/ttyACM0
device 2 Cedar at /tmp/ttyElsewhere
    0.100000 1 > sn?\r
    0.200000 1 < WI-1\r
    0.300000 1 - unplugged
    0.300000 2 > A
    0.300100 2 < A
    0.400000 1 > vo?\r
    0.400100 1 < 7
    0.400100 1 < 0\r
    0.500000 1 > vo=1\r
"""


@pytest.fixture
def replayed(sim, tmp_path, open_port):
    """A replay of CONVERSATION: the process and clients of its two ports."""
    trace, links = tmp_path / "t.trace", [tmp_path / "ttyA", tmp_path / "ttyB"]
    trace.write_text(CONVERSATION)
    process = sim.start("replay", trace, "--link", links[0], "--link", links[1])
    assert process.stdout.readline() == f"Willow at {links[0]}\n"
    assert process.stdout.readline() == f"Cedar at {links[1]}\n"
    return process, open_port(links[0]), open_port(links[1]), trace


def test_a_replay_behind_links(replayed):
    process, willow, cedar, _ = replayed
    assert willow.ask("sn?\r") == "WI-1\r"
    assert willow.ask("vo?\r") == "70\r"
    cedar.send("A")
    assert cedar.receive(limit=1) == "A"
    willow.send("vo=1\r")
    assert willow.receive(limit=1) == ""
    process.terminate()
    assert process.communicate(timeout=30)[1] == ""
    assert process.returncode == 0


def test_requests_may_come_in_pieces(replayed):
    _, willow, _, _ = replayed
    for piece in "sn?":
        willow.send(piece)
        assert willow.receive(limit=0.1) == ""
    assert willow.ask("\r") == "WI-1\r"


def test_a_departure_is_told_at_once_and_answered_with_errors(replayed):
    process, willow, cedar, trace = replayed
    assert willow.ask("sn?\r") == "WI-1\r"
    assert willow.ask("ip?\r") == "e\r"
    assert process.stderr.readline() == (
        f'orvex-sim: {trace}:10: device 1 (Willow): expected "vo?\\r", got "ip?\\r"\n')
    assert willow.ask("vo?\r") == "e\r"
    cedar.send("A")
    assert cedar.receive(limit=1) == "A"
    cedar.send("uu\r")
    assert process.stderr.readline() == (
        f'orvex-sim: {trace}: device 2 (Cedar): expected nothing more, got "uu\\r"\n')
    process.terminate()
    assert process.wait(30) == 5


@pytest.mark.parametrize("text, problem", [
    ("", ':1: the trace tells of no device'),
    ("hello\n", ':1: this is no trace: it does not begin with "# orvex-sim trace 1"'),
    (HEAD + "device one Tamar at /x\n", ':3: expected "device NUMBER MODEL at PATH"'),
    (HEAD + "device 0 Tamar at /x\n", ':3: expected "device NUMBER MODEL at PATH"'),
    (HEAD + "device 1 Tamer at /x\n", ':3: there is no model "Tamer"; did you mean Tamar?'),
    (HEAD + "device 1 Tamar at /x\ndevice 1 Tamar at /x\n", ":4: there is a device 1 already"),
    (HEAD + "device 1 Tamar at /x\nsoon 1 > co\\r\n", ':4: expected "SECONDS DEVICE > BYTES"'),
    (HEAD + "device 1 Tamar at /x\n0.1 1 * co\\r\n", ':4: expected "SECONDS DEVICE > BYTES"'),
    (HEAD + "device 1 Tamar at /x\n0.1 2 > co\\r\n", ":4: there is no device 2"),
    (HEAD + "device 1 Tamar at /x\n0.1 1 > co\\q\n", ':4: "co\\q" is no text of a trace'),
    (HEAD + "device 1 Tamar at /x\n0.1 1 > co\\x1\n", ':4: "co\\x1" is no text of a trace'),
    (HEAD + "device 1 Tamar at /x\n0.1 1 < co\\r\n", ":4: an answer that nothing was asked for"),
])
def test_a_bad_trace_is_told_with_its_line(sim, tmp_path, text, problem):
    trace = tmp_path / "t.trace"
    trace.write_text(text)
    result = sim.run("replay", trace, "--", "echo", "started")
    assert (result.stdout, result.stderr, result.returncode) == (
        "", f"orvex-sim: {trace}{problem}\n", 2)


def test_a_trace_that_is_not_there(sim):
    result = sim.run("replay", "/nonexistent/t.trace", "--", "true")
    assert (result.stderr, result.returncode) == (
        "orvex-sim: /nonexistent/t.trace: No such file or directory\n", 2)


@pytest.mark.parametrize("arguments", [[], ["--link", "/tmp/ttyA", "--", "true"]])
def test_a_replay_needs_a_link_or_a_program(sim, recorded, arguments):
    result = sim.run("replay", recorded, *arguments)
    assert (result.stderr, result.returncode) == (
        "orvex-sim: replay needs either --link or a COMMAND behind --\n", 2)


def test_a_replay_needs_as_many_links_as_devices(sim, recorded, tmp_path):
    result = sim.run("replay", recorded, "--link", tmp_path / "ttyA", "--link", tmp_path / "ttyB")
    assert (result.stderr, result.returncode) == (
        f"orvex-sim: {recorded} tells of 1 devices, but --link is given 2 times\n", 2)
