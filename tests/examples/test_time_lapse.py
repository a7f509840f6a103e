import os
import signal

import pytest

SHORT = ("--exposure-ms", 30, "--interval-ms", 60)
LONG = 1000000  # ms: longer than any test


def frames_in(out):
    return sum(line.startswith("frame ") for line in out.splitlines())


def check_exposures(result, count, positions, exposure_s, device=1):
    spans = result.trace.spans(device)
    assert [span.positions for span in spans] == [positions] * count
    assert all(exposure_s <= span.end - span.begin < 10 for span in spans)


def test_the_light_is_on_for_the_exposures_only(examples):
    result = examples.run("time_lapse", "--frames", 3, *SHORT)
    assert (result.code, result.err) == (0, "")
    assert frames_in(result.out) == 3
    check_exposures(result, 3, {1}, 0.030)
    begin = result.trace.time_of("lw?")
    for k, span in enumerate(result.trace.spans()):
        assert span.begin >= begin + k * 0.060
    assert result.trace.texts()[-1] == "dc"
    assert not [text for text in result.trace.texts() if text.startswith("ip=")]


def test_an_led_by_its_wavelength(examples):
    # Tamar: 365 405 - 470, and the position without an LED counts.
    result = examples.run("time_lapse", "--frames", 1, "--wavelength-nm", 470, *SHORT)
    assert result.code == 0
    check_exposures(result, 1, {4}, 0.030)


def test_the_first_led_may_have_a_later_position(examples):
    light = {"model": "Tamar", "channels": [
        {"position": 1, "fitted": False},
        {"position": 2, "name": "UV", "wavelength": 385, "percent": 50.0, "raw": 500, "minimum": 50,
         "maximum": 1000, "step": 10, "temperature": 30, "group": 0, "on": False}]}
    result = examples.run("time_lapse", "--frames", 1, *SHORT, devices=[light])
    check_exposures(result, 1, {2}, 0.030)


def test_a_lamp_opens_its_shutter(examples):
    result = examples.run("time_lapse", "--frames", 2, *SHORT, devices=["Cedar"])
    assert (result.code, result.err) == (0, "")
    check_exposures(result, 2, {0}, 0.030)


def test_a_light_by_its_port(examples):
    result = examples.run("time_lapse", "--frames", 1, "--port", "/dev/ttyACM1", *SHORT,
                          devices=["Tamar", "Tamar"])
    assert result.code == 0
    assert [r for r in result.trace.requests if r.device == 1] == []
    check_exposures(result, 1, {1}, 0.030, device=2)


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
def test_a_signal_ends_an_exposure(examples, number):
    run = examples.start("time_lapse", "--exposure-ms", LONG)
    run.wait_for_request(1, "on=")
    run.process.send_signal(number)
    result = run.finish()
    assert result.code == 128 + number
    check_exposures(result, 1, {1}, 0)
    assert result.trace.texts()[-1] == "dc"


def test_a_signal_ends_the_wait_for_the_next_frame(examples):
    run = examples.start("time_lapse", "--exposure-ms", 1, "--interval-ms", LONG)
    run.wait_for_request(1, "of=")
    run.process.send_signal(signal.SIGINT)
    result = run.finish()
    assert result.code == 128 + signal.SIGINT
    check_exposures(result, 1, {1}, 0)
    assert result.trace.texts()[-1] == "dc"


def test_the_light_goes_off_when_nobody_reads_the_output(examples):
    reader, writer = os.pipe()
    os.close(reader)
    run = examples.start("time_lapse", *SHORT, "--frames", 1000, stdout=writer)
    os.close(writer)
    result = run.finish()
    assert result.code == 128 + signal.SIGPIPE
    assert 1 <= len(result.trace.spans()) < 10
    assert result.trace.texts()[-2:] == ["of=a", "dc"]


@pytest.mark.parametrize("fault, status", [("error", "0x80515003"), ("silent", "0xA0515019")])
def test_a_failure_in_the_middle_leaves_the_light_off(examples, fault, status):
    result = examples.run("time_lapse", *SHORT, timeline=[
        {"fault": fault, "command": "TurnLedOn", "nth": 2}])
    assert result.code == 1
    assert frames_in(result.out) == 1
    assert "/dev/ttyACM0: TurnLedOn failed with " + status in result.err
    assert "\n  try: " in result.err
    assert len(result.trace.spans()) == (1 if fault == "error" else 2)
    assert all(span.end < 100 for span in result.trace.spans())
    assert result.trace.texts()[-3:] == ["on=1", "of=a", "dc"]


def test_a_refused_switching_off_is_repeated(examples):
    result = examples.run("time_lapse", "--frames", 2, *SHORT, timeline=[
        {"fault": "error", "command": "TurnAllLedOff", "nth": 1}])
    assert result.code == 0
    assert result.trace.texts()[1:] == ["on=1", "of=a", "of=a", "on=1", "of=a", "dc"]


def test_a_light_that_stays_on_is_told(examples):
    result = examples.run("time_lapse", *SHORT, timeline=[
        {"fault": "error", "command": "TurnAllLedOff"}])
    assert result.code == 1
    assert result.trace.texts()[1:] == ["on=1", "of=a", "of=a", "of=a", "dc"]
    assert "/dev/ttyACM0: the light may still be on!" in result.err


def test_unplugged_in_the_middle(examples):
    result = examples.run("time_lapse", *SHORT, timeline=[
        {"fault": "hangUp", "command": "TurnLedOn", "nth": 2}])
    assert result.code == 1
    assert frames_in(result.out) == 1
    assert "/dev/ttyACM0: TurnLedOn failed with 0x" in result.err


def test_no_such_led(examples):
    result = examples.run("time_lapse", "--wavelength-nm", 999)
    assert (result.code, result.out) == (1, "")
    assert "/dev/ttyACM0" in result.err and "999 nm" in result.err
    assert result.trace.spans() == []
    assert result.trace.texts()[-1] == "dc"
