from fake_light import LAMP, TAMAR


def test_on_switches_everything_on_but_one_of_a_group(orvexctl):
    result = orvexctl("on", "-d", "1")
    assert result.code == 0
    assert result.out == (
        "Waiting for the group to settle, at least 1.9 s ...\n"
        "Channel 1 (UV, 365 nm): on\n"
        "Channel 2 (UV-A, 385 nm): on\n"
        "Channel 3 (VIOLET, 405 nm): on\n"
        "Channel 4 (BLUE, 470 nm): on\n"
        "Channel 5 (GREEN, 525 nm): off (another channel of group 1 is on)\n"
        "Channel 6 (AMBER, 590 nm): off (another channel of group 1 is on)\n"
        "Channel 8 (RED, 635 nm): off (another channel of group 1 is on)\n")


def test_on_and_off_some_channels(shell_script):
    result = shell_script("orvexctl on -d 1 1-3; orvexctl off -d 1 1,3; orvexctl exec -d 1 "
                          "GetUnitStatus")
    assert result.code == 0
    assert result.out == (
        "Channel 1 (UV, 365 nm): on\n"
        "Channel 2 (UV-A, 385 nm): on\n"
        "Channel 3 (VIOLET, 405 nm): on\n"
        "Channel 1 (UV, 365 nm): off\n"
        "Channel 3 (VIOLET, 405 nm): off\n"
        "0,1,0,0,0,0,0,0\n")


def test_off_all(shell_script):
    result = shell_script("orvexctl on -d 1 1 2 > /dev/null; orvexctl off -d 1 all > /dev/null; "
                          "orvexctl exec -d 1 GetUnitStatus")
    assert result.out == "0,0,0,0,0,0,0,0\n"


def test_bad_channels(orvexctl):
    result = orvexctl("on", "-d", "1", "1,x")
    assert result.code == 2
    assert result.err == ('orvexctl: "1,x", character 3: "x" is no channel number; they count from '
                          "1\n  try: examples: 1  1,3  2-4  all\n")
    result = orvexctl("off", "-d", "1", "7")
    assert result.code == 2
    assert result.err == ("orvexctl: off: channel 7 is a position without an LED; the Tamar on "
                          "/dev/ttyACM0 has 1, 2, 3, 4, 5, 6 or 8\n")
    assert orvexctl("off", "-d", "1", "9").code == 2
    assert orvexctl("on", "-d", "1", "4-2").code == 2
    assert orvexctl("on", "-d", "1", "1", "all").code == 2


def test_lamp_and_shutter(orvexctl):
    result = orvexctl("lamp", "on", "-d", "2")
    assert (result.code, result.out) == (0, "Lamp on.\n")
    result = orvexctl("lamp", "off", "-d", "2")
    assert (result.code, result.out) == (0, "Lamp off.\n")
    result = orvexctl("shutter", "close", "-d", "2")
    assert (result.code, result.out) == (0, "Shutter closed.\n")


def test_shutter_closes_at_the_end(shell_script):
    result = shell_script("orvexctl shutter open -d 2; orvexctl exec -d 2 GetUnitStatus")
    assert result.out == (
        "Shutter open.\n"
        "The shutter closes again now that the program ends; --keep-open leaves it open.\n"
        "0\n")


def test_keep_open_leaves_the_shutter_open(shell_script):
    result = shell_script("orvexctl shutter open -d 2 --keep-open; "
                          "orvexctl exec -d 2 GetUnitStatus")
    assert result.out == "Shutter open.\n2\n"


def test_keep_open_sends_nothing_at_the_end(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    result = orvexctl_alone("on", "3", "--model", "Tamar", "--port", light.port, "--keep-open")
    assert result.code == 0
    assert light.requests[-1] == "on=3"


def test_on_and_off_of_a_lamp_are_its_shutter(orvexctl_alone, fake_light):
    light = fake_light(LAMP)
    options = ["--model", "Larch", "--port", light.port, "--keep-open"]
    assert orvexctl_alone("on", *options).out == "Shutter open.\n"
    assert light.requests[-1] == "mm"
    assert orvexctl_alone("off", "all", *options).out == "Shutter closed.\n"
    assert light.requests[-1] == "zz"


def test_led_models_have_neither_lamp_nor_shutter(orvexctl):
    result = orvexctl("lamp", "on", "-d", "1")
    assert result.code == 2
    assert result.err == (
        "orvexctl: the Tamar on /dev/ttyACM0 has no lamp (ORVEX_ERR_NOT_SUPPORTED)\n"
        "  try: switch its channels with orvexctl on and orvexctl off\n")
    assert orvexctl("shutter", "open", "-d", "1").code == 2


def test_states_have_names(orvexctl):
    assert orvexctl("lamp", "bright", "-d", "2").code == 2
    assert orvexctl("shutter", "-d", "2").code == 2
