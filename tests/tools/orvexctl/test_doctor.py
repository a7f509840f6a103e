import json
import os
import re
import subprocess

import pytest

from fake_light import LAMP, TAMAR

NOBODY = 65534


class System:
    """A made-up /sys, /proc and /dev."""

    def __init__(self, root):
        self.root = root
        for name in ("sys", "proc", "dev"):
            (root / name).mkdir()
        os.chmod(root, 0o755)

    def options(self):
        return [f"--{name}-root={self.root / name}" for name in ("sys", "proc", "dev")]

    def attach(self, product="ea08", text="Orvex Tamar", tty="ttyACM0"):
        usb = self.root / "sys" / "bus" / "usb" / "devices" / "1-1"
        usb.mkdir(parents=True)
        (usb / "idVendor").write_text("04d8\n")
        (usb / "idProduct").write_text(product + "\n")
        (usb / "product").write_text(text + "\n")
        if tty:
            (usb / "1-1:1.0" / "tty" / tty).mkdir(parents=True)

    def node(self, target):
        (self.root / "dev" / "ttyACM0").symlink_to(target)

    def process(self, number, name, holding=None):
        directory = self.root / "proc" / str(number)
        (directory / "fd").mkdir(parents=True)
        (directory / "comm").write_text(name + "\n")
        if holding:
            (directory / "fd" / "3").symlink_to(holding)

    @property
    def port(self):
        return str(self.root / "dev" / "ttyACM0")


@pytest.fixture
def system(tmp_path):
    return System(tmp_path)


def checks(result):
    return {check["check"]: check for light in json.loads(result.out)["lights"]
            for check in light["checks"]}


def test_all_is_well(orvexctl):
    result = orvexctl("doctor")
    assert result.code == 0
    text = re.sub(r"in [0-9.]+ ms", "in N ms", result.out)
    text = re.sub(r"user \S+ may", "user anna may", text)
    text = re.sub(r"ModemManager \(.*|ModemManager does.*", "ModemManager ...", text)
    assert text == """\
Tamar on /dev/ttyACM0
  ok       USB device 04d8:ea08 "Orvex Tamar" is attached
  ok       /dev/ttyACM0 is there
  ok       user anna may read and write it
  ok       no other program holds it
  ok       ModemManager ...
  ok       the light answers in N ms (GetSoftwareVersion: 1.4.2)
Cedar on /dev/ttyACM1
  ok       USB device 04d8:ea02 "Orvex Cedar" is attached
  ok       /dev/ttyACM1 is there
  ok       user anna may read and write it
  ok       no other program holds it
  ok       ModemManager ...
  ok       the light answers in N ms (GetSoftwareVersion: 1.4.2)
All is well.
"""


def test_one_light_as_json(orvexctl):
    result = orvexctl("doctor", "-d", "Cedar", "--json")
    assert result.code == 0
    found = json.loads(result.out)
    assert found["ok"] is True
    assert [(light["model"], light["port"]) for light in found["lights"]] == [
        ("Cedar", "/dev/ttyACM1")]
    assert [check["check"] for check in found["lights"][0]["checks"]] == [
        "usb", "port", "permission", "holder", "modemmanager", "answer"]


@pytest.mark.parametrize("choice", [["-d"], ["--model", "Cedar", "--port"]])
def test_link_to_a_port(orvexctl, tmp_path, choice):
    link = tmp_path / "Orvex_Cedar-SN-0042"
    link.symlink_to("/dev/ttyACM1")
    result = orvexctl("doctor", *choice, str(link), "--json")
    assert result.code == 0
    assert [(light["model"], light["port"]) for light in json.loads(result.out)["lights"]] == [
        ("Cedar", "/dev/ttyACM1")]


def test_nothing_on_the_usb(orvexctl_alone, system):
    result = orvexctl_alone("doctor", *system.options())
    assert result.code == 3
    assert result.out == (
        "The USB\n"
        "  failed   no light on the USB; looked for USB devices 04d8:ea02 (Cedar), 04d8:ea08 "
        "(Tamar) with a port named ttyACM\n"
        "           try: plug it in and switch it on; try another cable or socket; lsusb and "
        "dmesg show what the system sees\n"
        "Not all is well.\n")


def test_device_of_the_vendor_that_no_scan_finds(orvexctl_alone, system):
    system.attach(product="eaf9", text="Orvex Willow")
    result = orvexctl_alone("doctor", "--json", *system.options())
    assert result.code == 3
    usb = checks(result)["usb"]
    assert usb["result"] == "warning"
    assert usb["text"] == 'USB device 04d8:eaf9 "Orvex Willow" is no light that a scan finds'
    assert usb["advice"] == "if it is a light, name it: --model NAME --port /dev/ttyACM0"


def test_no_port(orvexctl_alone, system):
    system.attach(tty=None)
    result = orvexctl_alone("doctor", "--json", *system.options())
    assert result.code == 3
    port = checks(result)["port"]
    assert (port["result"], port["text"]) == ("failed", "the USB device has no serial port")
    assert "modprobe cdc_acm" in port["advice"]


def test_no_node(orvexctl_alone, system):
    system.attach()
    result = orvexctl_alone("doctor", "--json", *system.options())
    assert result.code == 3
    found = checks(result)
    assert (found["port"]["result"], found["port"]["text"]) == (
        "failed", f"there is no {system.port}")
    assert found["answer"]["result"] == "skipped"


def test_no_permission(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    os.chmod(light.terminal, 0o000)
    user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
    result = orvexctl_alone("doctor", "--json", "--model", "Tamar", "--port", light.port, **user)
    assert result.code == 4
    permission = checks(result)["permission"]
    assert permission["result"] == "failed"
    assert f"{light.port} belongs to " in permission["text"]
    assert "usermod -aG" in permission["advice"]
    assert 'ATTRS{idVendor}=="04d8"' in permission["advice"]
    assert light.requests == []


def test_held_port(orvexctl_alone, fake_light, system):
    light = fake_light(TAMAR)
    system.attach()
    system.node(light.terminal)
    system.process(812, "minicom", holding=light.terminal)
    result = orvexctl_alone("doctor", "--json", *system.options())
    assert result.code == 5
    found = checks(result)
    assert found["holder"]["text"] == "held by minicom (process 812)"
    assert found["answer"]["result"] == "skipped"
    assert light.requests == []


def test_held_port_for_real(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    with open(light.terminal) as port, subprocess.Popen(["sleep", "60"], stdin=port) as holder:
        result = orvexctl_alone("doctor", "--model", "Tamar", "--port", light.port)
        holder.kill()
    assert result.code == 5
    assert f"  failed   held by sleep (process {holder.pid})\n" in result.out


def test_modem_manager(orvexctl_alone, fake_light, system):
    light = fake_light(TAMAR)
    system.attach()
    system.node(light.terminal)
    system.process(511, "ModemManager")
    result = orvexctl_alone("doctor", "--json", *system.options())
    assert result.code == 5
    found = checks(result)
    assert found["modemmanager"]["result"] == "warning"
    assert found["modemmanager"]["text"] == (
        "ModemManager (process 511) runs and may probe the port after each plugging in")
    assert 'ENV{ID_MM_DEVICE_IGNORE}="1"' in found["modemmanager"]["advice"]
    assert found["answer"]["result"] == "ok"


def test_silent_light(orvexctl_alone, fake_light):
    light = fake_light(TAMAR, co=None)
    result = orvexctl_alone("doctor", "--json", "--model", "Tamar", "--port", light.port)
    assert result.code == 7
    answer = checks(result)["answer"]
    assert answer["result"] == "failed"
    assert "ORVEX_ERR_RECV" in answer["text"]
    assert answer["advice"] == "see that the light is switched on and plugged in"


def test_lamp_is_left_as_it_is(orvexctl_alone, fake_light):
    light = fake_light(LAMP)
    result = orvexctl_alone("doctor", "--model", "Larch", "--port", light.port)
    assert result.code == 0
    assert "zz" not in light.requests


def test_no_such_light(orvexctl):
    result = orvexctl("doctor", "-d", "Willow")
    assert result.code == 3
    assert result.err.startswith('orvexctl: no light "Willow" on the USB\n')
