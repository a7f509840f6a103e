import re


def test_verbose_goes_to_standard_error(orvexctl):
    result = orvexctl("exec", "-d", "2", "GetTemperature", "--verbose")
    assert (result.code, result.out) == (0, "38\n")
    assert "LightDevice::openConnection: connect() succeed." in result.err
    assert "Send [" not in result.err


def test_trace_shows_the_traffic(orvexctl):
    result = orvexctl("exec", "-d", "2", "GetTemperature", "--trace")
    assert (result.code, result.out) == (0, "38\n")
    assert "Send [gt*] ->\n <-Received [38*]\n" in result.err


def test_log_file_takes_everything_with_times(orvexctl, tmp_path):
    log = tmp_path / "light.log"
    for _ in range(2):
        result = orvexctl("exec", "-d", "2", "GetTemperature", "--log", str(log))
        assert (result.code, result.out, result.err) == (0, "38\n", "")
    lines = [line for line in log.read_text().splitlines() if "Send [gt*] ->" in line]
    assert len(lines) == 4  # asked by the opening and by exec
    assert re.match(r"\S.*\d\d:\d\d:\d\d.*Send \[gt\*\] ->", lines[0])


def test_log_file_that_cannot_be_opened(orvexctl, tmp_path):
    path = str(tmp_path / "missing" / "light.log")
    result = orvexctl("exec", "-d", "2", "GetTemperature", "--log", path)
    assert result.code == 8
    assert result.out == ""
    assert result.err == (
        f"orvexctl: the log file {path} cannot be opened: No such file or directory\n"
        "  try: choose another file with --log\n")


def test_full_disk(orvexctl):
    result = orvexctl("exec", "-d", "2", "GetTemperature", "--log", "/dev/full")
    assert result.code == 8
    assert result.out == "38\n"
    assert result.err == (
        "orvexctl: the log file /dev/full is incomplete: No space left on device; "
        "the command itself was carried out\n"
        "  try: make room, or choose another file with --log\n")


def test_output_that_cannot_be_written(shell_script):
    result = shell_script("orvexctl exec -d 2 GetTemperature > /dev/full")
    assert result.code == 8
    assert result.err == "orvexctl: standard output could not be written\n"
