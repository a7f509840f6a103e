import signal

LIGHTS = ["Tamar", "Cedar", "Tamar"]
QUICK = ("--flashes", 2, "--on-ms", 40, "--off-ms", 20)


def report(result):
    """What was told of each port."""
    return dict(line.split(": ", 1) for line in result.out.splitlines())


def check_flashes(result, device, positions, count, on_s=0.040):
    spans = result.trace.spans(device)
    assert [span.positions for span in spans] == [positions] * count
    assert all(on_s <= span.end - span.begin < 10 for span in spans)


def test_every_light_flashes(examples):
    result = examples.run("several_lights", *QUICK, devices=LIGHTS)
    assert (result.code, result.err) == (0, "")
    assert report(result) == {f"/dev/ttyACM{k}": "2 of 2 flashes" for k in range(3)}
    for device, positions in ((1, {1}), (2, {0}), (3, {1})):
        check_flashes(result, device, positions, 2)
        assert [r.text for r in result.trace.requests if r.device == device][-1] in ("dc", "zz")


def test_lights_are_on_at_the_same_time(examples):
    result = examples.run("several_lights", "--flashes", 1, "--on-ms", 400, devices=LIGHTS)
    assert result.code == 0
    spans = [result.trace.spans(device)[0] for device in (1, 2, 3)]
    assert max(span.begin for span in spans) < min(span.end for span in spans)


def test_a_light_that_was_on_is_off_first(examples):
    light = {"model": "Tamar", "channels": [
        {"position": k, "name": f"LED{k}", "wavelength": 300 + 100 * k, "percent": 50.0,
         "raw": 500, "minimum": 50, "maximum": 1000, "step": 10, "temperature": 30, "group": 0,
         "on": k == 2} for k in (1, 2)]}
    result = examples.run("several_lights", "--flashes", 1, "--on-ms", 1, "--off-ms", 0,
                          devices=[light])
    assert result.code == 0
    assert result.trace.texts()[0] in ("of=1,2", "of=a")
    check_flashes(result, 1, {1}, 1, 0.001)


def test_a_failing_light_does_not_hold_up_the_others(examples):
    result = examples.run("several_lights", *QUICK, devices=LIGHTS, timeline=[
        {"device": 1, "fault": "error", "command": "TurnLedOn", "nth": 2},
        {"device": 3, "fault": "error", "command": "GetNameLED"}])
    assert result.code == 1
    assert report(result) == {"/dev/ttyACM0": "1 of 2 flashes, failed",
                              "/dev/ttyACM1": "2 of 2 flashes",
                              "/dev/ttyACM2": "0 of 2 flashes, failed"}
    assert "/dev/ttyACM0: switching on failed with 0x80515003" in result.err
    assert "/dev/ttyACM2: opening failed with 0x80515003" in result.err
    check_flashes(result, 1, {1}, 1)
    check_flashes(result, 2, {0}, 2)
    assert result.trace.texts()[-1] == "dc"


def test_a_light_that_is_unplugged(examples):
    result = examples.run("several_lights", *QUICK, devices=["Tamar", "Tamar"], timeline=[
        {"device": 2, "fault": "hangUp", "command": "TurnLedOn", "nth": 1}])
    assert result.code == 1
    assert report(result) == {"/dev/ttyACM0": "2 of 2 flashes",
                              "/dev/ttyACM1": "0 of 2 flashes, failed"}
    assert "/dev/ttyACM1: switching on failed with 0x" in result.err


def test_a_signal_ends_all_threads_in_the_dark(examples):
    run = examples.start("several_lights", "--on-ms", 3600000, devices=LIGHTS)
    for device, request in ((1, "on="), (2, "mm"), (3, "on=")):
        run.wait_for_request(device, request)
    run.process.send_signal(signal.SIGINT)
    result = run.finish()
    assert result.code == 128 + signal.SIGINT
    for device, positions in ((1, {1}), (2, {0}), (3, {1})):
        check_flashes(result, device, positions, 1, 0)
