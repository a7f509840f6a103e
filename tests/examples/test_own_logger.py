import re

import pytest

LINE = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z (error|warning|info|debug) (\S+): (.*)")
TEMPERATURE = ("info", "own_logger", "temperature, degrees C: 30,30,0,30,30,30,30,0")


def lines(text):
    """Level, origin and text of each line; all must have the form of the logger."""
    matches = [LINE.fullmatch(line) for line in text.splitlines()]
    assert None not in matches, text
    return [match.groups() for match in matches]


def test_the_librarys_lines_arrive_in_the_logger(examples):
    result = examples.run("own_logger")
    assert (result.code, result.out) == (0, "")
    log = lines(result.err)
    assert TEMPERATURE in log
    assert ("info", "orvex", "Full SerialNumber is: SN-0042") in log
    assert {level for level, _, _ in log} == {"info"}
    assert result.trace.texts() == ["gt?", "dc"]


def test_debug_shows_what_goes_over_the_line(examples):
    log = lines(examples.run("own_logger", "--level", "debug").err)
    begin = log.index(("debug", "orvex", "Send [sn?*] ->"))
    assert log[begin + 1] == ("debug", "orvex", " <-Received [SN-0042*]")
    assert TEMPERATURE in log


@pytest.mark.parametrize("level", ["error", "warning"])
def test_nothing_is_told_of_what_goes_well(examples, level):
    assert lines(examples.run("own_logger", "--level", level).err) == [TEMPERATURE]


def test_errors_have_their_level(examples):
    result = examples.run("own_logger", "--level", "error", "--file", "own.log", timeline=[
        {"fault": "error", "request": "gt?", "nth": 2}])
    assert result.code == 1
    assert "0x80515003" in result.err and "\n  try: " in result.err
    log = lines((examples.directory / "own.log").read_text())
    assert {level for level, _, _ in log} == {"error"}
    assert any("0x80515003" in text for _, _, text in log)
    assert not any(text.startswith("Error: ") for _, _, text in log)
    assert result.trace.texts() == ["gt?", "dc"]


def test_a_file_is_added_to(examples):
    log = examples.directory / "own.log"
    log.write_text("before\n")
    result = examples.run("own_logger", "--level", "error", "--file", "own.log")
    assert (result.code, result.err) == (0, "")
    first, rest = log.read_text().split("\n", 1)
    assert first == "before"
    assert lines(rest) == [TEMPERATURE]


def test_a_file_that_cannot_be_written(examples):
    for path in ("/dev/full", "no/such/folder/own.log"):
        result = examples.run("own_logger", "--file", path)
        assert result.code == 1
        assert path in result.err
