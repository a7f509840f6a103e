import json
import os

import pytest

from port import wait_for


@pytest.fixture
def scenario(tmp_path):
    """Writes a scenario; the result is its path."""
    def write(devices, timeline=()):
        path = tmp_path / "lab.json"
        path.write_text(json.dumps({"devices": devices, "timeline": list(timeline)}))
        return path
    return write


RECORDED = {
    "model": "Tamar", "type": 8, "port": "/dev/ttyACM0", "firmware": "3.1", "serial": "TA-0815",
    "unitStatus": "1,0,0", "capabilities": ["led"],
    "channels": [
        {"position": 1, "name": "UV", "wavelength": 365, "percent": 45.0, "raw": 450,
         "minimum": 40, "maximum": 900, "step": 10, "temperature": 31, "group": 1, "on": True},
        {"position": 2, "fitted": False},
        {"position": 3, "name": "RED", "wavelength": 625, "percent": 10.0, "raw": 100,
         "minimum": 50, "maximum": 1000, "step": 10, "temperature": 29, "group": 0, "on": False},
    ],
}

LAMP = {
    "model": "Cedar", "type": 2, "port": "/dev/ttyACM0", "firmware": "1.9", "serial": "CE-7",
    "unitStatus": "3", "capabilities": ["lamp", "extended"],
    "lamp": {"hours": 77, "percent": 60, "minimum": 20, "temperature": 41},
}


@pytest.fixture
def serve(sim, tmp_path, scenario, open_port):
    """Serves one scenario device; the result is a client's port."""
    def start(device, timeline=()):
        link = tmp_path / "ttyLab"
        sim.serve("--scenario", scenario([device], timeline), "--link", link)
        return open_port(link)
    return start


def test_a_recorded_device_is_simulated(serve):
    port = serve(RECORDED)
    assert port.ask("sv?\r") == "3.1\r"
    assert port.ask("sn?\r") == "TA-0815\r"
    assert port.ask("lw?\r") == "365,999,625\r"
    assert port.ask("ln?\r") == "UV,empty,RED\r"
    assert port.ask("ip?\r") == "450,0,100\r"
    assert port.ask("ni?\r") == "40,50,50\r"
    assert port.ask("gt?\r") == "31,0,29\r"
    assert port.ask("us?\r") == "1,0,0\r"
    assert port.ask("lgx?\r") == "1\r"
    assert port.ask("ip=950,0,100\r") == "e\r"
    assert port.ask("ip=900,0,100\r") == "\r"


def test_a_recorded_lamp_is_simulated(serve):
    port = serve(LAMP)
    assert [port.ask(request + "\r") for request in ("vv", "GSN", "uu", "hh", "dd", "ni", "gt")] == [
        "1.9\r", "CE-7\r", "3\r", "77\r", "60\r", "20\r", "41\r"]


def test_what_is_left_out_is_the_models_own(serve):
    port = serve({"model": "Spruce"})
    assert port.ask("lw?\r") == "365,470,525,625\r"
    assert port.ask("sn?\r") == "SN-0042\r"


def test_the_third_intensity_is_refused(serve):
    port = serve({"model": "Tamar", "channels": RECORDED["channels"]},
                 [{"fault": "error", "command": "SetIntensity", "nth": 3}])
    replies = [port.ask("ip=500,0,100\r") for _ in range(4)]
    assert replies == ["\r", "\r", "e\r", "\r"]


def test_every_reply_is_late(serve):
    port = serve({"model": "Tamar"}, [{"fault": "late", "delayMs": 700}])
    port.send("sn?\r")
    assert port.receive(limit=0.2) == ""
    assert port.receive() == "SN-0042\r"


@pytest.mark.parametrize("fault, reply", [
    ({"fault": "silent"}, ""),
    ({"fault": "slow", "bytePauseMs": 5}, "SN-0042\r"),
    ({"fault": "reply", "bytes": "nonsense\r"}, "nonsense\r"),
    ({"fault": "unterminated"}, "SN-0042"),
    ({"fault": "endless", "count": 7}, "5555555"),
    ({"fault": "error", "request": "sn?"}, "e\r"),
    ({"fault": "error", "request": "sv?"}, "SN-0042\r"),
    ({"fault": "error", "from": 2}, "SN-0042\r"),
])
def test_faults(serve, fault, reply):
    port = serve({"model": "Tamar"}, [fault])
    port.send("sn?\r")
    assert port.receive(limit=1) == reply


def test_faults_begin_and_end(serve):
    port = serve({"model": "Tamar"}, [{"at": 1, "fault": "error"}, {"at": 2, "do": "clearFaults"}])
    assert port.ask("sn?\r") == "SN-0042\r"
    wait_for(lambda: port.ask("sn?\r") == "e\r")
    wait_for(lambda: port.ask("sn?\r") == "SN-0042\r")


def test_a_port_goes_and_comes_back(sim, tmp_path, scenario, open_port):
    link = tmp_path / "ttyLab"
    sim.serve("--link", link, "--scenario", scenario(
        [{"model": "Tamar"}], [{"at": 1, "do": "unplug"}, {"at": 2, "do": "plug"}]))
    port = open_port(link)
    assert port.ask("vo=44\r") == "\r"
    wait_for(lambda: not os.path.exists(link))
    wait_for(lambda: os.path.exists(link))
    assert open_port(link).ask("vo?\r") == "44\r"


def test_a_device_may_come_later(sim, tmp_path, scenario):
    link = tmp_path / "ttyLab"
    device = {"model": "Tamar", "simulator": {"pluggedIn": False}}
    sim.serve("--link", link, "--scenario", scenario([device], [{"at": 1, "do": "plug"}]))
    assert not os.path.exists(link)
    wait_for(lambda: os.path.exists(link))


# Prints what libudev's monitor and the file system tell of ports, as often as it is told to.
WATCHING = """
import ctypes, os, select
udev = ctypes.CDLL("libudev.so.1")
for name in ("new", "monitor_new_from_netlink", "monitor_receive_device"):
    getattr(udev, "udev_" + name).restype = ctypes.c_void_p
for name in ("get_action", "get_sysname"):
    getattr(udev, "udev_device_" + name).restype = ctypes.c_char_p
monitor = ctypes.c_void_p(udev.udev_monitor_new_from_netlink(
    ctypes.c_void_p(udev.udev_new()), b"udev"))
udev.udev_monitor_filter_add_match_subsystem_devtype(monitor, b"tty", None)
udev.udev_monitor_enable_receiving(monitor)
def there():
    return os.path.exists("/dev/ttyACM0")
print("at first", there(), flush=True)
for _ in range(EVENTS):
    select.select([udev.udev_monitor_get_fd(monitor)], [], [], 30)
    device = ctypes.c_void_p(udev.udev_monitor_receive_device(monitor))
    print(udev.udev_device_get_action(device).decode(),
          udev.udev_device_get_sysname(device).decode(), there(), flush=True)
"""


def test_udev_tells_of_plugging(sim, scenario, script):
    path = scenario([{"model": "Tamar"}], [{"at": 2, "do": "unplug"}, {"at": 4, "do": "plug"}])
    result = sim.run("run", "--scenario", path, "--",
                     *script(WATCHING.replace("EVENTS", "2")))
    assert result.stdout == "at first True\nremove ttyACM0 False\nadd ttyACM0 True\n"


def test_udev_tells_of_a_device_that_hangs_up(sim, scenario, script):
    path = scenario([{"model": "Tamar"}], [{"fault": "hangUp", "command": "GetSpeakerVolume"}])
    client = script(WATCHING.replace("EVENTS", "1").replace("for _ in", """
port = os.open("/dev/ttyACM0", os.O_RDWR | os.O_NOCTTY)
os.write(port, b"vo?\\r")
for _ in"""))
    result = sim.run("run", "--scenario", path, "--", *client)
    assert result.stdout == "at first True\nremove ttyACM0 False\n"


def test_entries_name_their_device(sim, tmp_path, scenario, open_port):
    path = scenario(
        [{"model": "Tamar", "simulator": {"name": "left"}}, {"model": "Tamar"}],
        [{"fault": "error", "device": "left"}, {"fault": "reply", "bytes": "2\r", "device": 2}])
    links = [tmp_path / "ttyA", tmp_path / "ttyB"]
    sim.serve("--scenario", path, "--link", links[0], "--link", links[1])
    wait_for(lambda: os.path.exists(links[1]))
    wait_for(lambda: open_port(links[0]).ask("sn?\r") == "e\r")
    wait_for(lambda: open_port(links[1]).ask("sn?\r") == "2\r")


TAMAR = '{"model": "Tamar"}'


def with_event(event):
    return '{"devices": [%s], "timeline": [%s]}' % (TAMAR, event)


@pytest.mark.parametrize("text, problem", [
    ('{\n  "devices": [\n    {"model": Tamar}\n]}',
     ':3:15: syntax error while parsing value - invalid literal; last read: \'"model": T\''),
    ('{"devices": []', ":1:15: syntax error while parsing object - unexpected end of input; "
                       "expected '}'"),
    ("", ":1:1: syntax error while parsing value - unexpected end of input; expected '[', '{', or "
         "a literal"),
    ('{"devices": [{"model": "Tamar", "model": "Cedar"}]}',
     ': member "model" is there twice in one object'),
    ('{"devices": [5]}', ': devices[0]: member "model" is missing'),
    ("[]", ": must be an object"),
    ("{}", ': member "devices" is missing'),
    ('{"devices": {}}', ": devices: must be a list"),
    ('{"devices": []}', ": devices: holds no device"),
    ('{"devices": [%s], "timelime": []}' % TAMAR,
     ': unknown member "timelime"; did you mean timeline?'),
    ('{"devices": [{}]}', ': devices[0]: member "model" is missing'),
    ('{"devices": [{"model": 8}]}', ": devices[0].model: must be a text"),
    ('{"devices": [{"model": "Tamer"}]}',
     ': devices[0].model: there is no model "Tamer"; did you mean Tamar?'),
    ('{"devices": [{"model": "Tamar", "colour": 1}]}', ': devices[0]: unknown member "colour"; '
     "known: model, type, port, firmware, serial, unitStatus, capabilities, channels or lamp"),
    ('{"devices": [{"model": "Tamar", "channels": [{"position": 1, "raw": true}]}]}',
     ': devices[0].channels[0]: member "name" is missing'),
    ('{"devices": [%s, {"model": "Tamar", "firmware": 3}]}' % TAMAR,
     ": devices[1].firmware: must be a text"),
    ('{"devices": [{"model": "Cedar", "unitStatus": "on"}]}',
     ': devices[0].unitStatus: "on" is no status of a lamp'),
    ('{"devices": [{"model": "Tamar", "simulator": {"settle": 5}}]}',
     ': devices[0].simulator: unknown member "settle"; did you mean settleMs?'),
    ('{"devices": [{"model": "Tamar", "simulator": {"settleMs": 0.5}}]}',
     ": devices[0].simulator.settleMs: must be a whole number"),
    ('{"devices": [{"model": "Tamar", "simulator": {"name": "a"}},'
     '{"model": "Tamar", "simulator": {"name": "a"}}]}',
     ': devices[1].simulator.name: "a" is given twice'),
    (with_event("{}"), ': timeline[0]: needs either "do" or "fault"'),
    (with_event('{"do": "plug", "fault": "error"}'),
     ': timeline[0]: needs either "do" or "fault"'),
    (with_event('{"do": "plug"}, {"do": "explode"}'),
     ': timeline[1].do: "explode" is none of plug, unplug, clearFaults'),
    (with_event('{"do": "plug", "nth": 3}'),
     ': timeline[0]: unknown member "nth"; did you mean at?'),
    (with_event('{"at": "5 s", "do": "plug"}'), ": timeline[0].at: must be a number"),
    (with_event('{"at": -1, "do": "plug"}'),
     ": timeline[0].at: is no time in seconds, 0 or more"),
    (with_event('{"device": 2, "do": "plug"}'), ": timeline[0].device: 2 is not from 1 to 1"),
    (with_event('{"device": "left", "do": "plug"}'),
     ': timeline[0].device: there is no device "left"'),
    (with_event('{"fault": "eror"}'),
     ': timeline[0].fault: there is no fault "eror"; did you mean error?'),
    (with_event('{"fault": "late"}'), ': timeline[0]: member "delayMs" is missing'),
    (with_event('{"fault": "late", "delayMs": -1}'),
     ": timeline[0].delayMs: -1 is not from 0 to 3600000"),
    (with_event('{"fault": "error", "bytes": "x"}'),
     ': timeline[0].bytes: belongs to "fault": "reply" alone'),
    (with_event('{"fault": "error", "command": "SetIntensty"}'),
     ': timeline[0].command: a Tamar has no command "SetIntensty"; did you mean SetIntensity or '
     'GetIntensity?'),
    (with_event('{"fault": "error", "nth": 0}'),
     ": timeline[0].nth: 0 is not from 1 to 1000000000"),
    (with_event('{"fault": "error", "nth": 1, "from": 2}'),
     ': timeline[0].from: cannot stand beside "nth"'),
])
def test_a_bad_scenario_is_told_with_the_place(sim, tmp_path, text, problem):
    path = tmp_path / "lab.json"
    path.write_text(text)
    result = sim.run("run", "--scenario", path, "--", "echo", "started")
    assert (result.stdout, result.stderr, result.returncode) == (
        "", f"orvex-sim: {path}{problem}\n", 2)


def test_a_scenario_that_is_a_directory(sim, tmp_path):
    result = sim.run("run", "--scenario", tmp_path, "--", "true")
    assert (result.stderr, result.returncode) == (f"orvex-sim: {tmp_path}: Is a directory\n", 2)


def test_a_scenario_that_is_not_there(sim):
    result = sim.run("run", "--scenario", "/nonexistent/lab.json", "--", "true")
    assert (result.stderr, result.returncode) == (
        "orvex-sim: /nonexistent/lab.json: No such file or directory\n", 2)
