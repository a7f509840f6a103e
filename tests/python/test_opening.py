"""Finding, opening and closing."""

import os

import pytest

import orvex


def ports():
    return [(light.model, light.port, light.is_open) for light in orvex.scan()]


def test_scan_lists_lights_in_the_order_of_their_ports():
    assert orvex.scan() == [
        orvex.LightInfo("Tamar", 8, "/dev/ttyACM0", False),
        orvex.LightInfo("Cedar", 2, "/dev/ttyACM1", False)]


def test_a_found_light_is_opened_and_tells_so():
    with orvex.scan()[1].open() as light:
        assert (light.model, light.type, light.port, light.closed) == (
            "Cedar", 2, "/dev/ttyACM1", False)
        assert ports() == [("Tamar", "/dev/ttyACM0", False), ("Cedar", "/dev/ttyACM1", True)]
    assert light.closed
    assert ports()[1][2] is False


@pytest.mark.parametrize("choice", [
    {"model": "Tamar"}, {"model": "tamar"}, {"model": 8}, {"port": "/dev/ttyACM0"},
    {"model": "Tamar", "port": "/dev/ttyACM0"}, {"model": "Tamar", "baud_rate": 57600}])
def test_ways_to_choose(choice):
    with orvex.open(**choice) as light:
        assert repr(light) == "<Light Tamar on /dev/ttyACM0>"
        assert light.command("GetSoftwareVersion") == "1.4.2"


def test_link_to_a_port(tmp_path):
    link = tmp_path / "usb-Orvex_Tamar-if00"
    link.symlink_to("/dev/ttyACM0")
    for port in (link, str(link)):
        with orvex.open(port=port) as light:
            assert light.port == "/dev/ttyACM0"


def test_more_than_one_light_fits():
    with pytest.raises(orvex.ArgumentError) as caught:
        orvex.open()
    assert str(caught.value) == (
        "which light? Tamar on /dev/ttyACM0, Cedar on /dev/ttyACM1; name the model, the port, or "
        "both (ORVEX_ERR_INVALID_ARG, 0xA0515001)")


@pytest.mark.parametrize("choice, text", [
    ({"model": "Willow"}, "no light Willow found; attached: Tamar on /dev/ttyACM0, Cedar on "
     "/dev/ttyACM1 (the library knows no USB identifier of Willow)"),
    ({"port": "/dev/ttyACM7"}, "no light on /dev/ttyACM7 found; attached: Tamar on"),
    ({"model": "Tamar", "port": "/dev/ttyACM1"}, "no light Tamar on /dev/ttyACM1 found")])
def test_no_light_fits(choice, text):
    with pytest.raises(orvex.NotFoundError) as caught:
        orvex.open(**choice)
    assert str(caught.value).startswith(text)
    assert isinstance(caught.value, ConnectionError)


@pytest.mark.parametrize("choice, text", [
    ({"model": "Tamer"}, "there is no model 'Tamer'; did you mean Tamar? ("),
    ({"model": 11}, "there is no model 11 ("),
    ({"model": "Tamar", "baud_rate": 300}, "baud rate 300: a whole number from 9600"),
    ({"model": "Tamar", "baud_rate": 9600.5}, "baud rate 9600.5: a whole number from 9600")])
def test_mistaken_arguments(choice, text):
    with pytest.raises(ValueError) as caught:
        orvex.open(**choice)
    assert str(caught.value).startswith(text)
    assert ports()[0][2] is False


def test_open_twice_closes_with_the_last(trace):
    first = orvex.open("Tamar")
    second = orvex.open("Tamar", baud_rate=19200)
    sent = trace(second)
    first.close()
    first.close()
    with pytest.raises(orvex.NotConnectedError, match="has been closed"):
        first.command("GetTemperature")
    assert second.command("GetTemperature") == "31,31,32,34,33,30,0,29"
    assert sent.requests() == ["gt?"]  # And no "dc" before it.
    second.close()
    assert ports()[0][2] is False


@pytest.mark.parametrize("use", [
    lambda light: light.command("GetTemperature"), lambda light: light.snapshot(),
    lambda light: light.switch(True), lambda light: light.refresh(), lambda light: light.channels[1],
    lambda light: light.batch().__enter__()])
def test_use_after_close(use):
    light = orvex.open("Tamar")
    light.close()
    with pytest.raises(orvex.NotConnectedError) as caught:
        use(light)
    assert str(caught.value) == (
        "the Tamar on /dev/ttyACM0 has been closed (ORVEX_ERR_NOT_CONNECTED, 0x80517006)")


def test_channels_after_close(tamar):
    channel = tamar.channels[1]
    tamar.close()
    for use in (lambda: channel.raw, lambda: channel.temperature,
                lambda: setattr(channel, "on", True)):
        with pytest.raises(orvex.NotConnectedError, match="has been closed"):
            use()


def test_forgotten_light_warns():
    light = orvex.open("Cedar")
    device = light._device
    with pytest.warns(ResourceWarning, match="<Light Cedar on /dev/ttyACM1> was not closed"):
        del light
    device.close()


def test_child_process_does_not_touch_its_parents_light(tamar, trace):
    sent = trace(tamar)
    child = os.fork()
    if child == 0:
        try:
            tamar.command("GetTemperature")
        except orvex.NotConnectedError:
            tamar.close()
            os._exit(7)
        os._exit(1)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 7
    assert sent.requests() == []
