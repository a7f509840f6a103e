"""What all examples have in common."""
import pytest

JOBS = ["find_and_list", "time_lapse", "pulse_sequence", "intensity_ramp", "own_logger",
        "several_lights"]
WITH_PORT = ["time_lapse", "pulse_sequence", "intensity_ramp", "own_logger"]
AWAY = {"model": "Tamar", "simulator": {"pluggedIn": False}}


@pytest.mark.parametrize("job", JOBS)
def test_help(examples, job):
    result = examples.run_alone(job, "--help")
    assert (result.code, result.err) == (0, "")
    assert result.out.startswith("usage: ")


@pytest.mark.parametrize("job", JOBS)
def test_unknown_option(examples, job):
    result = examples.run_alone(job, "--colour", "red")
    assert (result.code, result.out) == (2, "")
    assert "--colour" in result.err and "usage: " in result.err


@pytest.mark.parametrize("job, option, value", [
    ("time_lapse", "--frames", "0"), ("time_lapse", "--exposure-ms", "1x"),
    ("time_lapse", "--interval-ms", "99999999999999999999"), ("time_lapse", "--frames", ""),
    ("intensity_ramp", "--to-percent", "101"), ("intensity_ramp", "--from-percent", "-1"),
    ("pulse_sequence", "--on-ticks", "100000"), ("pulse_sequence", "--wavelengths-nm", "365;470"),
    ("own_logger", "--level", "loud"), ("several_lights", "--flashes", "many")])
def test_bad_value(examples, job, option, value):
    result = examples.run_alone(job, option, value)
    assert (result.code, result.out) == (2, "")
    assert option in result.err and "usage: " in result.err


@pytest.mark.parametrize("job", ["time_lapse", "several_lights"])
def test_missing_value(examples, job):
    result = examples.run_alone(job, "--on-ms" if job == "several_lights" else "--frames")
    assert (result.code, result.out) == (2, "")
    assert "usage: " in result.err


def run_all(examples, jobs, *arguments, **options):
    """The results of several jobs, run at the same time; a failure shows the job's name."""
    runs = {job: examples.start(job, *arguments, **options) for job in jobs}
    return [(job, run.finish()) for job, run in runs.items()]


def test_no_light(examples):
    for job, result in run_all(examples, JOBS, devices=[AWAY]):
        assert (job, result.code, result.out) == (job, 1, "")
        assert "0x80515001" in result.err
        assert "\n  try: " in result.err


def test_no_light_on_the_port(examples):
    for job, result in run_all(examples, WITH_PORT, "--port", "/dev/ttyACM7"):
        assert (job, result.code, result.out) == (job, 1, "")
        assert "/dev/ttyACM7" in result.err and "0x80515001" in result.err
        assert result.trace.requests == []


def test_a_light_that_cannot_be_read(examples):
    for job, result in run_all(examples, WITH_PORT, timeline=[
            {"fault": "error", "command": "GetTemperature"}]):
        assert (job, result.code, result.out) == (job, 1, "")
        assert "opening" in result.err or job == "own_logger"
        assert "0x80515003" in result.err
        assert result.trace.spans() == []
        assert result.trace.requests[-1].text == "gt?"
