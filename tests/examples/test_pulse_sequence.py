import signal

import pytest

# A Tamar has LEDs of 365 405 - 470 525 590 625 nm and a free position.
SETTING = ("su=", "dt=", "ot=", "ft=", "tt=", "pm=", "is=", "on=", "of=")


def settings(result):
    """The requests that change something, and the farewell."""
    return [text for text in result.trace.texts() if text.startswith(SETTING) or text == "dc"]


def test_leds_take_turns_in_the_order_that_is_given(examples):
    result = examples.run("pulse_sequence", "--wavelengths-nm", "470,365,625", "--on-ticks", 200,
                          "--gap-ticks", 25, "--advance-ticks", 7, "--run-ms", 50)
    assert (result.code, result.err) == (0, "")
    assert settings(result) == [
        "dt=225,0,0,0,0,0,450,0",           # 365 nm second, 470 nm first, 625 nm third
        "ot=200,0,0,200,0,0,200,0",
        "ft=475,0,0,475,0,0,475,0",         # a cycle of 3 * 225 ticks, less 200
        "tt=7,0,0,7,0,0,7,0",
        "is=1", "is=0", "of=a", "dc"]
    assert result.trace.time_of("is=0") - result.trace.time_of("is=1") >= 0.050


def test_all_leds_by_default(examples):
    result = examples.run("pulse_sequence", "--run-ms", 1)
    assert result.code == 0
    assert settings(result)[:3] == [
        "dt=0,150,0,300,450,600,750,0", "ot=100,100,0,100,100,100,100,0",
        "ft=800,800,0,800,800,800,800,0"]


def test_unit_and_mode_come_before_the_start(examples):
    result = examples.run("pulse_sequence", "--wavelengths-nm", "405", "--unit", 3, "--mode", 2,
                          "--run-ms", 1)
    assert result.code == 0
    assert settings(result) == [
        "su=0,3,0,0,0,0,0,0", "dt=0,0,0,0,0,0,0,0", "ot=0,100,0,0,0,0,0,0", "ft=0,50,0,0,0,0,0,0",
        "tt=0,0,0,0,0,0,0,0", "pm=2", "is=1", "is=0", "of=a", "dc"]


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM])
def test_a_signal_stops_the_sequence(examples, number):
    run = examples.start("pulse_sequence", "--run-ms", 1000000)
    run.wait_for_request(1, "is=1")
    run.process.send_signal(number)
    result = run.finish()
    assert result.code == 128 + number
    assert settings(result)[-4:] == ["is=1", "is=0", "of=a", "dc"]


def test_a_refused_time_starts_nothing(examples):
    result = examples.run("pulse_sequence", timeline=[
        {"fault": "error", "command": "SetSignalOnTime"}])
    assert result.code == 1
    assert "/dev/ttyACM0: SetSignalOnTime failed with 0x80515003" in result.err
    assert settings(result)[-2:] == ["ot=100,100,0,100,100,100,100,0", "dc"]


def test_a_time_that_the_device_has_changed_starts_nothing(examples):
    result = examples.run("pulse_sequence", "--wavelengths-nm", "365", "--on-ticks", 3, timeline=[
        {"fault": "reply", "bytes": "10,0,0,0,0,0,0,0\r", "command": "GetSignalOnTime"}])
    assert result.code == 1
    assert "SignalOnTime" in result.err
    assert "10,0,0,0,0,0,0,0" in result.err and "3,0,0,0,0,0,0,0" in result.err
    assert "is=1" not in settings(result)


@pytest.mark.parametrize("command", ["StartPWM", "StatusPWM"])
def test_a_failing_start_is_stopped_all_the_same(examples, command):
    result = examples.run("pulse_sequence", "--run-ms", 1, timeline=[
        {"fault": "error", "command": command}])
    assert result.code == 1
    assert f"/dev/ttyACM0: {command} failed with 0x80515003" in result.err
    assert settings(result)[-4:] == ["is=1", "is=0", "of=a", "dc"]


def test_a_refused_stop_is_repeated_and_told(examples):
    result = examples.run("pulse_sequence", "--run-ms", 1, timeline=[
        {"fault": "error", "command": "StopPWM"}])
    assert result.code == 1
    assert settings(result).count("is=0") == 3
    assert "of=a" in settings(result)
    assert "/dev/ttyACM0: the light may still be on!" in result.err


@pytest.mark.parametrize("wavelengths", ["365,366", "999", "365,365", "365,,405"])
def test_no_such_led(examples, wavelengths):
    result = examples.run("pulse_sequence", "--wavelengths-nm", wavelengths)
    assert result.code == 1
    assert "/dev/ttyACM0: no LED for" in result.err
    assert settings(result) == ["dc"]


def test_a_cycle_that_five_digits_cannot_hold(examples):
    fits = examples.run("pulse_sequence", "--wavelengths-nm", "365,405", "--on-ticks", 1,
                        "--gap-ticks", 49999, "--run-ms", 1)
    assert fits.code == 0
    assert "ft=99999,99999,0,0,0,0,0,0" in settings(fits)
    long = examples.run("pulse_sequence", "--wavelengths-nm", "365,405", "--on-ticks", 2,
                        "--gap-ticks", 50000, "--run-ms", 1)
    assert long.code == 1
    assert "too long" in long.err
    assert settings(long) == ["dc"]


def test_a_lamp_has_no_pulses(examples):
    result = examples.run("pulse_sequence", "--port", "/dev/ttyACM0", devices=["Cedar"])
    assert result.code == 1
    assert "/dev/ttyACM0" in result.err
    assert result.trace.spans() == []
