"""Which light is meant, and what happens when it cannot be used."""
import os
import subprocess

import pytest

from fake_light import TAMAR

NOBODY = 65534


def test_several_lights_need_a_choice(orvexctl):
    result = orvexctl("info")
    assert result.code == 2
    assert result.err == (
        "orvexctl: which light? 1: Tamar on /dev/ttyACM0, 2: Cedar on /dev/ttyACM1\n"
        "  try: choose one with -d; orvexctl list shows them\n")


@pytest.mark.parametrize("device", ["2", "/dev/ttyACM1", "Cedar", "cedar"])
def test_port_model_or_number(orvexctl, device):
    assert orvexctl("exec", "-d", device, "GetTemperature").out == "38\n"


@pytest.fixture(params=["/dev/ttyACM1", "../dev/ttyACM1", "second"])
def link_to_cedar(request, tmp_path):
    """A link to the Cedar's port: absolute, relative, and through another link."""
    (tmp_path / "second").symlink_to("/dev/ttyACM1")
    target = request.param
    if target.startswith("../"):
        target = "../" * len(tmp_path.parts) + target[3:]
    (tmp_path / "Orvex_Cedar-SN-0042").symlink_to(target)
    return str(tmp_path / "Orvex_Cedar-SN-0042")


def test_link_to_a_port(orvexctl, link_to_cedar):
    assert orvexctl("exec", "-d", link_to_cedar, "GetTemperature").out == "38\n"


def test_link_with_a_model(orvexctl, link_to_cedar):
    result = orvexctl("exec", "--model", "Cedar", "--port", link_to_cedar, "GetTemperature")
    assert (result.code, result.out) == (0, "38\n")


def test_link_that_leads_to_no_light(orvexctl, tmp_path):
    (tmp_path / "light").symlink_to("/dev/ttyACM7")
    result = orvexctl("info", "-d", str(tmp_path / "light"))
    assert result.code == 3
    assert result.err.startswith(f'orvexctl: no light "{tmp_path}/light"; attached: ')


def test_link_to_itself(orvexctl, tmp_path):
    (tmp_path / "light").symlink_to("light")
    assert orvexctl("info", "-d", str(tmp_path / "light")).code == 3


def test_link_named_like_a_model_means_the_model(orvexctl, tmp_path):
    (tmp_path / "Cedar").symlink_to("/dev/ttyACM0")
    assert orvexctl("exec", "-d", "Cedar", "GetTemperature", cwd=tmp_path).out == "38\n"


@pytest.mark.parametrize("device", ["3", "/dev/ttyACM7", "Willow"])
def test_no_such_light(orvexctl, device):
    result = orvexctl("info", "-d", device)
    assert result.code == 3
    assert result.err == (
        f'orvexctl: no light "{device}"; attached: 1: Tamar on /dev/ttyACM0, 2: Cedar on '
        "/dev/ttyACM1\n"
        "  try: -d takes a port, a model's name or a number of orvexctl list\n")


def test_no_light_at_all(orvexctl_alone):
    result = orvexctl_alone("info")
    assert result.code == 3
    assert result.err == (
        "orvexctl: no light found; looked for USB devices 04d8:ea02 (Cedar), 04d8:ea08 (Tamar) "
        "with a port named ttyACM\n"
        "  try: orvexctl doctor tells why; other models need --model NAME --port PATH\n")


def test_unknown_model(orvexctl_alone):
    result = orvexctl_alone("info", "--model", "Maples", "--port", "/dev/ttyACM0")
    assert result.code == 2
    assert result.err == 'orvexctl: there is no model "Maples"; did you mean Maple?\n'


def test_model_and_port_go_together(orvexctl_alone):
    assert orvexctl_alone("info", "--model", "Maple").code == 2
    assert orvexctl_alone("info", "--port", "/dev/ttyACM0").code == 2
    assert orvexctl_alone("info", "--model", "Maple", "--port", "/dev/ttyACM0", "-d", "1").code == 2


def test_missing_port(orvexctl_alone):
    result = orvexctl_alone("info", "--model", "Maple", "--port", "/dev/ttyACM77")
    assert result.code == 3
    assert result.err == ("orvexctl: there is no port /dev/ttyACM77\n"
                          "  try: orvexctl list shows the lights that are attached\n")


def test_port_that_is_no_terminal(orvexctl_alone, tmp_path):
    plain = tmp_path / "ttyACM0"
    plain.write_text("")
    result = orvexctl_alone("info", "--model", "Maple", "--port", str(plain))
    assert result.code == 3
    assert result.err == (f"orvexctl: {plain} is no serial port\n"
                          "  try: ports of lights look like /dev/ttyACM0\n")
    device = tmp_path / "ttyNull"
    device.symlink_to("/dev/null")
    result = orvexctl_alone("info", "--model", "Maple", "--port", str(device))
    assert result.code == 7
    assert f"opening the Maple on {device} failed" in result.err
    assert "(ORVEX_ERR_NO_DEVICE, 0x80515001)" in result.err
    assert "the library says: " in result.err


def test_path_that_the_library_does_not_open(orvexctl_alone, tmp_path):
    result = orvexctl_alone("info", "--model", "Maple", "--port", str(tmp_path / "port"))
    assert result.code == 2
    assert 'the library opens no port without "tty" in its path' in result.err


def test_no_permission(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    os.chmod(light.terminal, 0o000)
    user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
    result = orvexctl_alone("info", "--model", "Tamar", "--port", light.port, **user)
    assert result.code == 4
    first, advice, rule = result.err.splitlines()
    assert first.startswith(f"orvexctl: no permission: {light.port} belongs to ")
    assert "(c---------)" in first
    assert advice.startswith("  try: sudo usermod -aG ")
    assert rule == ('  SUBSYSTEM=="tty", ATTRS{idVendor}=="04d8", GROUP="dialout", MODE="0660", '
                    'TAG+="uaccess"')
    assert light.requests == []


def test_busy_port_names_who_holds_it(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    with open(light.terminal) as port, subprocess.Popen(["sleep", "60"], stdin=port) as holder:
        options = ["--model", "Tamar", "--port", light.port]
        result = orvexctl_alone("info", *options)
        forced = orvexctl_alone("exec", "GetTemperature", *options, "--force")
        holder.kill()
    assert result.code == 5
    assert result.err == (
        f"orvexctl: {light.port} is held by sleep (process {holder.pid})\n"
        "  try: end that program, or use the port all the same with --force\n")
    assert (forced.code, forced.out) == (0, "30,31,32\n")


def test_silent_device(orvexctl_alone, fake_light):
    light = fake_light(TAMAR, **{"gt?": None, "co": ""})
    result = orvexctl_alone("info", "--model", "Tamar", "--port", light.port)
    assert result.code == 7
    assert result.err.startswith(
        f"orvexctl: opening the Tamar on {light.port} failed: the device did not answer in time, "
        "or not in full (ORVEX_ERR_RECV, 0xA0515019)\n")
    assert "  try: see that the light is switched on" in result.err


NONSENSE = {
    "lw?": ("hello", 'GetWaveLengthLED on {port}: the device answered "hello"; entry 1, "hello", '
                     "is no number"),
    "gt?": ("30,x1", 'GetTemperature on {port}: the device answered "30,x1"; entry 2, "x1", is no '
                     "number"),
    "us?": ("0,1", 'GetUnitStatus on {port}: the device answered "0,1"; expected 3 numbers, '
                   "got 2"),
    "ip?": ("\x07", 'GetIntensity on {port}: the device answered "\\x07"; entry 1, "\\x07", is no '
                    "number"),
}


@pytest.mark.parametrize("request_text", NONSENSE)
def test_device_that_answers_nonsense(orvexctl_alone, fake_light, request_text):
    reply, message = NONSENSE[request_text]
    light = fake_light(TAMAR, **{request_text: reply})
    result = orvexctl_alone("info", "--model", "Tamar", "--port", light.port)
    assert result.code == 6
    assert result.out == ""
    assert result.err.splitlines()[0] == "orvexctl: " + message.format(port=light.port)


def test_more_positions_than_a_record_holds(orvexctl_alone, fake_light):
    light = fake_light(TAMAR, **{"lw?": ",".join(["365"] * 17)})
    result = orvexctl_alone("info", "--model", "Tamar", "--port", light.port)
    assert result.code == 6
    assert "(ORVEX_ERR_MAX_CHANNEL, 0x80515020)" in result.err


def test_timeout_ends_the_program(orvexctl_alone, fake_light):
    light = fake_light(TAMAR, **{"gt?": None})
    result = orvexctl_alone("info", "--model", "Tamar", "--port", light.port, "--timeout", "0.3")
    assert result.code == 7
    assert result.err.startswith("orvexctl: no answer within the --timeout")
    assert orvexctl_alone("info", "--timeout", "0").code == 2
    assert orvexctl_alone("info", "--timeout", "soon").code == 2
