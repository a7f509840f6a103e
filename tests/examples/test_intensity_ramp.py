import signal

QUICK = ("--duration-ms", 40, "--steps", 4)


def intensities(result, prefix="ip=", after="sn?"):
    return [text[len(prefix):] for text in result.trace.texts(after=after)
            if text.startswith(prefix) and text[len(prefix):len(prefix) + 1].isdigit()]


def first_values(result):
    return [int(text.split(",")[0]) for text in intensities(result)]


def test_an_led_is_ramped_while_it_is_on(examples):
    result = examples.run("intensity_ramp", "--from-percent", 20, "--to-percent", 60, *QUICK)
    assert (result.code, result.err) == (0, "")
    assert [text for text in result.trace.texts() if text.startswith(("ip=", "on=", "of=a"))] == [
        "ip=200,500,0,500,500,500,500,0", "on=1",
        "ip=300,500,0,500,500,500,500,0", "ip=400,500,0,500,500,500,500,0",
        "ip=500,500,0,500,500,500,500,0", "ip=600,500,0,500,500,500,500,0",
        "of=a", "ip=500,500,0,500,500,500,500,0"]
    assert [span.positions for span in result.trace.spans()] == [{1}]
    assert result.trace.texts()[-1] == "dc"
    shown = [line.split()[-2] for line in result.out.splitlines()]
    assert shown == ["30.0", "40.0", "50.0", "60.0"]


def test_steps_are_spread_over_the_duration(examples):
    result = examples.run("intensity_ramp", "--from-percent", 90, "--to-percent", 10,
                          "--duration-ms", 200, "--steps", 2)
    assert first_values(result) == [900, 500, 100, 500]
    begin = result.trace.time_of("on=1")
    times = [request.time for request in result.trace.requests
             if request.text.startswith("ip=") and request.time > begin]
    assert times[0] >= begin + 0.100 and times[1] >= begin + 0.200


def test_an_led_by_its_wavelength(examples):
    # 470 nm is the third LED, at position 4.
    result = examples.run("intensity_ramp", "--wavelength-nm", 470, "--from-percent", 10,
                          "--to-percent", 20, "--steps", 1, "--duration-ms", 1)
    assert result.code == 0
    assert intensities(result) == [
        "500,500,0,100,500,500,500,0", "500,500,0,200,500,500,500,0", "500,500,0,500,500,500,500,0"]
    assert [span.positions for span in result.trace.spans()] == [{4}]


def test_limits_of_the_device_hold(examples):
    # The least intensity of a Tamar is 5 %.
    result = examples.run("intensity_ramp", "--from-percent", 1, "--to-percent", 3, *QUICK)
    assert result.code == 0
    assert first_values(result)[0] == 50
    assert result.out.splitlines()[-1].endswith(" 5.0 %")


def test_a_lamp_is_ramped_with_its_shutter_open(examples):
    result = examples.run("intensity_ramp", "--from-percent", 30, "--to-percent", 70, *QUICK,
                          devices=["Cedar"])
    assert (result.code, result.err) == (0, "")
    changes = [text for text in result.trace.texts(after="gt") if text != "dd"]
    assert changes == ["d30", "mm", "d40", "d50", "d60", "d70", "zz", "d50", "zz"]
    shown = [line.split()[-2] for line in result.out.splitlines()]
    assert shown == ["40.0", "50.0", "60.0", "70.0"]


def test_a_signal_ends_the_ramp(examples):
    run = examples.start("intensity_ramp", "--duration-ms", 1000000, "--steps", 10)
    run.wait_for_request(1, "on=1")
    run.process.send_signal(signal.SIGTERM)
    result = run.finish()
    assert result.code == 128 + signal.SIGTERM
    assert result.trace.texts()[-3:] == ["of=a", "ip=500,500,0,500,500,500,500,0", "dc"]
    assert first_values(result) == [100, 500]


def test_a_refused_intensity_ends_the_ramp_dark(examples):
    result = examples.run("intensity_ramp", *QUICK, timeline=[
        {"fault": "error", "command": "SetIntensity", "nth": 3}])
    assert result.code == 1
    assert "/dev/ttyACM0" in result.err and "0x80515003" in result.err
    assert result.trace.texts()[-3:] == ["of=a", "ip=500,500,0,500,500,500,500,0", "dc"]
    assert all(span.end < 100 for span in result.trace.spans())


def test_a_failing_start_leaves_the_light_dark(examples):
    result = examples.run("intensity_ramp", *QUICK, timeline=[
        {"fault": "error", "command": "TurnLedOn"}])
    assert result.code == 1
    assert "0x80515003" in result.err
    assert result.trace.texts()[-3:] == ["of=a", "ip=500,500,0,500,500,500,500,0", "dc"]


def test_no_such_led(examples):
    result = examples.run("intensity_ramp", "--wavelength-nm", 500)
    assert (result.code, result.out) == (1, "")
    assert "/dev/ttyACM0" in result.err and "500 nm" in result.err
    assert result.trace.texts() == ["dc"]
