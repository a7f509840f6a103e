"""Channels one by one, and several in a batch. What is sent is read from the simulator's trace."""

import math
import time

import pytest

import orvex


def test_what_channels_tell(tamar):
    assert [(one.number, one.name, one.wavelength, one.group) for one in tamar.channels] == [
        (1, "UV", 365, 0), (2, "UV-A", 385, 0), (3, "VIOLET", 405, 0), (4, "BLUE", 470, 1),
        (5, "GREEN", 525, 1), (6, "AMBER", 590, 1), (8, "RED", 635, 1)]
    channel = tamar.channels[8]
    assert (channel.min, channel.max, channel.step) == (5.0, 100.0, 1.0)
    assert (channel.intensity, channel.raw, channel.on, channel.temperature) == (50.0, 500, False, 29)
    assert repr(channel) == "<Channel 8 RED 635 nm>"


def test_collection(tamar):
    assert len(tamar.channels) == 7
    assert 8 in tamar.channels and 7 not in tamar.channels and 0 not in tamar.channels
    for number in (0, 7, 9, -1, "UV"):
        with pytest.raises(IndexError) as caught:
            tamar.channels[number]
        assert str(caught.value) == (
            f"no channel {number!r}; the Tamar on /dev/ttyACM0 has 1, 2, 3, 4, 5, 6, 8")


def test_lamp_has_none(cedar):
    assert len(cedar.channels) == 0
    with pytest.raises(IndexError, match="has none"):
        cedar.channels[1]


def test_setting_sends_one_request(tamar, trace):
    sent = trace(tamar)
    tamar.channels[2].intensity = 45.0
    assert sent.requests() == ["ip=500,450,500,500,500,500,0,500"]
    assert (tamar.channels[2].intensity, tamar.channels[2].raw) == (45.0, 450)
    sent = trace(tamar)
    tamar.channels[8].raw = 620
    tamar.channels[1].on = True
    assert sent.requests() == ["ip=500,450,500,500,500,500,0,620", "of=2,3,4,5,6,7,8", "on=1"]
    assert tamar.channels[1].on


def test_setting_what_is_set_sends_nothing(tamar, trace):
    sent = trace(tamar)
    tamar.channels[2].intensity = 50
    tamar.channels[2].on = False
    assert sent.requests() == []


@pytest.mark.parametrize("percent, raw", [
    (45.55, 450), (45.99, 450), (46, 460), (0.29 * 100, 290), (2, 50), (0, 50), (100, 1000)])
def test_rounding_down_and_limits(tamar, percent, raw):
    tamar.channels[1].intensity = percent
    assert tamar.channels[1].raw == raw
    assert tamar.command("GetIntensity").split(",")[0] == str(raw)


@pytest.mark.parametrize("name, value", [
    ("intensity", -0.1), ("intensity", 100.1), ("intensity", math.nan), ("intensity", math.inf),
    ("raw", -1), ("raw", 1001), ("raw", 45.0), ("raw", True)])
def test_impossible_intensities(tamar, trace, name, value):
    sent = trace(tamar)
    with pytest.raises(orvex.ArgumentError):
        setattr(tamar.channels[1], name, value)
    assert sent.requests() == []


def test_batch_is_one_record(tamar, trace):
    sent = trace(tamar)
    with tamar.batch() as light:
        assert light is tamar
        for channel in tamar.channels:
            channel.intensity = 10 * channel.number
        tamar.channels[1].on = tamar.channels[3].on = True
        assert (tamar.channels[3].intensity, tamar.channels[3].on) == (30.0, True)
        with tamar.batch():
            tamar.channels[2].raw = 77
        assert tamar.channels[2].raw == 70
        assert tamar.command("GetUnitStatus") == "0,0,0,0,0,0,0,0"
    assert sent.requests() == ["us?", "ip=100,70,300,400,500,600,0,800", "of=2,4,5,6,7,8",
                               "on=1,3"]
    assert tamar.channels[2].raw == 70


def test_batch_left_by_an_exception_sends_nothing(tamar, trace):
    sent = trace(tamar)
    with pytest.raises(ZeroDivisionError):
        with tamar.batch():
            tamar.channels[1].intensity = 77
            1 / 0
    assert tamar.channels[1].intensity == 50
    tamar.channels[2].intensity = 60
    assert sent.requests() == ["ip=500,600,500,500,500,500,0,500"]


def test_batch_without_changes(tamar, trace):
    sent = trace(tamar)
    with tamar.batch():
        pass
    assert sent.requests() == []


def test_of_a_group_one_channel_is_on(tamar):
    tamar.command("TurnLedOn", 4)
    assert tamar.channels[4].on
    begin = time.monotonic()
    with tamar.batch():
        tamar.channels[1].on = True
        tamar.channels[6].on = True
        tamar.channels[5].on = True
    assert time.monotonic() - begin >= 1.9
    assert [one.number for one in tamar.channels if one.on] == [1, 5]
    assert tamar.command("GetUnitStatus") == "1,0,0,0,1,0,0,0"


def test_switching_all_together(tamar, trace):
    tamar.channels[1].on = True
    sent = trace(tamar)
    tamar.switch(False)
    tamar.channels[2].on = True  # Remembered.
    assert "on=1,2" not in sent.requests()
    assert tamar.command("GetUnitStatus") == "0,0,0,0,0,0,0,0"
    tamar.switch(True)
    assert tamar.command("GetUnitStatus") == "1,1,0,0,0,0,0,0"
    tamar.command("SaveSettings")  # Makes the light be asked, which changes nothing.
    assert (tamar.channels[1].on, tamar.channels[2].on) == (True, True)


def test_what_is_remembered_while_off_survives_a_command(tamar):
    tamar.channels[1].on = True
    tamar.switch(False)
    tamar.command("SetIntensity", "300,500,500,500,500,500,0,500")
    assert (tamar.channels[1].raw, tamar.channels[1].on) == (300, True)
    tamar.switch(True)
    assert tamar.command("GetUnitStatus") == "1,0,0,0,0,0,0,0"


def test_changes_by_command_are_seen(tamar):
    tamar.command("TurnLedOn", "3")
    tamar.command("SetIntensity", [500, 500, 110, 500, 500, 500, 0, 500])
    assert (tamar.channels[3].raw, tamar.channels[3].on) == (110, True)
    tamar.channels[1].on = True
    assert tamar.command("GetUnitStatus") == "1,0,1,0,0,0,0,0"
    assert tamar.command("GetIntensity") == "500,500,110,500,500,500,0,500"


def test_reading_does_not_ask_the_light_unless_told_to(tamar, trace):
    sent = trace(tamar)
    assert [one.raw for one in tamar.channels] == [500] * 7
    assert sent.requests() == []
    sent = trace(tamar)
    tamar.refresh()
    assert tamar.channels[1].raw == tamar.channels[2].raw == 500
    assert sent.requests() == ["us?", "ip?"]


def test_a_record_that_fails_is_not_taken_for_granted(tamar):
    """The simulator refuses "of=1,2,3,4,5,6,7", which a record for channel 8 alone sends. The
    library's record then has it on, and would wait for its group without an end."""
    with pytest.raises(orvex.DeviceIOError, match="ORVEX_ERR_IO"):
        tamar.channels[8].on = True
    assert tamar.command("GetUnitStatus") == "0,0,0,0,0,0,0,0"
    assert tamar.channels[8].on is False
    with tamar.batch():
        tamar.channels[1].on = tamar.channels[8].on = True
    assert tamar.command("GetUnitStatus") == "1,0,0,0,0,0,0,1"
