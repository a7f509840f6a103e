"""Lights that are unplugged, ports that may not be used, and a library that is not there."""

import pytest


def test_unplugging(child):
    """Once it is noticed by a call, once by a scan, which ends the handle: another part of the
    program scans, and the light that is back may have the same handle again."""
    program = """
import ctypes, os, time
import orvex
from orvex._library import library

def scanned_by_others(slots=(ctypes.c_uint64 * 16)()):
    count = ctypes.c_uint32()
    library().calls.ORVEX_ScanDevices(slots, 16, ctypes.byref(count))
    return count.value

def until(condition):
    while not condition():
        time.sleep(0.01)

def fails(use):
    try:
        use()
    except orvex.NotConnectedError as error:
        return str(error)

UNPLUGS = "GetSpeakerVolume"

first = orvex.open("Tamar")
channel = first.channels[1]
assert "has been unplugged" in fails(lambda: first.command(UNPLUGS))
text = fails(lambda: first.command("GetTemperature"))
assert text == ("the Tamar on /dev/ttyACM0 has been unplugged; close it, and open it again when it "
                "is back (ORVEX_ERR_NOT_CONNECTED, 0x80517006)"), text
assert fails(lambda: channel.raw) == fails(first.snapshot) == text
until(lambda: os.path.exists("/dev/ttyACM0") and os.path.exists("/sys/class/tty/ttyACM0"))
time.sleep(0.3)  # Until udev has all of it.
assert fails(lambda: orvex.open("Tamar")) == text
first.close()
with orvex.open("Tamar") as second:
    assert second.command("GetSoftwareVersion")
    assert fails(lambda: second.command(UNPLUGS))
    until(lambda: not scanned_by_others())
    until(scanned_by_others)
    with orvex.open("Tamar") as third:
        assert third.command("GetSoftwareVersion")
        for light in (first, second):
            assert fails(lambda: light.command("GetTemperature"))
        second.close()
        assert third.command("GetSoftwareVersion")
assert not orvex.scan()[0].is_open
"""
    plugs = [{"at": seconds, "device": 1, "do": "plug"} for seconds in range(2, 60, 2)]
    child.run(["-c", program], timeline=[
        {"device": 1, "fault": "hangUp", "command": "GetSpeakerVolume"}, *plugs])


def test_unplugged_in_the_middle_of_a_call(child):
    program = """
import orvex
with orvex.open("Tamar") as light:
    try:
        light.command("GetSpeakerVolume")
    except ConnectionError as error:
        print(type(error).__name__, str(error).split(" (")[0])
"""
    assert child.run(["-c", program], timeline=[
        {"device": 1, "fault": "hangUp", "command": "GetSpeakerVolume"}]) == (
        "NotConnectedError GetSpeakerVolume on /dev/ttyACM0: the Tamar on /dev/ttyACM0 has been "
        "unplugged\n")


def test_no_permission(child):
    """As a user who may see the port but not open it."""
    program = """
import os, pathlib
import orvex
simulated = pathlib.Path(os.environ["UMOCKDEV_DIR"]).parent
for path in [simulated, *simulated.rglob("*")]:
    if not path.is_symlink():
        path.chmod(0o777)  # Directories, and the sockets that system calls are sent to.
orvex.scan()
os.chmod("/dev/ttyACM0", 0)
if os.geteuid() == 0:
    os.setgroups([])
    os.setgid(65534)
    os.setuid(65534)
try:
    orvex.open("Tamar")
except PermissionError as error:
    print(type(error).__name__, error.errno, error)
"""
    out = child.run(["-c", program])
    assert out.startswith(
        "PermissionDeniedError 13 opening the Tamar on /dev/ttyACM0: no permission: /dev/ttyACM0 "
        "belongs to ")
    assert "(c---------), and user" in out and "sudo usermod -aG dialout" in out
    assert out.endswith("(ORVEX_ERR_NO_DEVICE, 0x80515001)\n")


@pytest.mark.parametrize("path, reason", [
    ("/nowhere/libqtr_orvex.so.1", "cannot open shared object file"),
    ("libc.so.6", "undefined symbol: ORVEX_GetVersion")])
def test_without_the_library(child, path, reason):
    program = """
import orvex
assert "Tamar" in orvex.models() and "GetTemperature" in orvex.commands_of("tamar")
for use in (orvex.scan, orvex.open, lambda: orvex.__version__):
    try:
        use()
    except ImportError as error:
        print(error)
"""
    lines = child.run(["-c", program], devices=(), env={"ORVEX_LIBRARY": path}).splitlines()
    assert len(lines) == 3
    for line in lines:
        assert line.startswith("the Orvex library cannot be used: ") and reason in line
        assert "apt install libqtr-orvex1" in line and "ORVEX_LIBRARY" in line


def test_no_light_at_all(child):
    program = """
import orvex
try:
    orvex.open()
except orvex.NotFoundError as error:
    print(orvex.scan(), error.name, error.message)
"""
    assert child.run(["-c", program], devices=["Willow"]) == (
        "[] ORVEX_ERR_NO_DEVICE no light found; attached: none\n")
