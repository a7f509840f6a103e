"""The library's log in the logging module."""

import logging

import pytest

import orvex
from orvex._library import library


@pytest.fixture
def bits():
    return lambda: library().calls.ORVEX_GetLogBits()


def test_levels(tamar, caplog):
    with caplog.at_level(logging.DEBUG, "orvex"):
        tamar.command("GetSoftwareVersion")
        with pytest.raises(orvex.DeviceIOError):
            tamar.command("GetSpeakerVolume")
    told = [(record.name, record.levelname, record.getMessage()) for record in caplog.records]
    assert ("orvex.traffic", "DEBUG", "Send [sv?*] ->") in told
    assert ("orvex.traffic", "DEBUG", "<-Received [1.4.2*]") in told
    assert ("orvex", "INFO", "LightDevice::executeString: GetSoftwareVersion") in told
    errors = [text for name, level, text in told if (name, level) == ("orvex", "ERROR")]
    assert len(errors) == 1 and errors[0].startswith("ORVEX_ExecuteCommandWithValue: ")
    assert 'answered with error "e\\r"' in errors[0]
    assert told.index(("orvex.traffic", "DEBUG", "Send [sv?*] ->")) < told.index(
        ("orvex.traffic", "DEBUG", "<-Received [1.4.2*]"))


@pytest.mark.parametrize("level, expected", [
    (logging.DEBUG, 0x7B), (logging.INFO, 0x3B), (logging.WARNING, 0x11), (logging.ERROR, 0x11)])
def test_the_library_formats_only_what_is_wanted(tamar, caplog, bits, level, expected):
    with caplog.at_level(level, "orvex"):
        tamar.command("GetSoftwareVersion")
        assert bits() == expected


def test_traffic_has_a_level_of_its_own(tamar, caplog, bits):
    with caplog.at_level(logging.INFO, "orvex.traffic"), caplog.at_level(logging.DEBUG, "orvex"):
        tamar.command("GetSoftwareVersion")
        assert bits() == 0x3B
    assert [record.name for record in caplog.records if record.name != "orvex"] == []


def test_handlers_may_use_the_light(tamar, caplog):
    class Asking(logging.Handler):
        replies = []

        def emit(self, record):
            if record.levelno == logging.ERROR:
                self.replies.append(tamar.command("GetSoftwareVersion"))

    handler = Asking()
    logging.getLogger("orvex").addHandler(handler)
    try:
        with pytest.raises(orvex.DeviceIOError):
            tamar.command("GetSpeakerVolume")
    finally:
        logging.getLogger("orvex").removeHandler(handler)
    assert handler.replies == ["1.4.2"]


def test_nothing_is_printed_by_itself(child):
    program = ("import orvex\n"
               "with orvex.open('Tamar') as light:\n"
               "    try: light.command('None such')\n"
               "    except orvex.OrvexError: print('refused')\n")
    process = child.start(["-c", program])
    assert process.communicate() == ("refused\n", "")


def test_library_that_logs_when_it_is_unloaded(child):
    """A light that is left open is released, and tells so, after the interpreter's end."""
    program = ("import logging, orvex\n"
               "logging.basicConfig(level=logging.DEBUG)\n"
               "light = orvex.open('Tamar')\n"
               "light._closed = True\n"
               "print('end')\n")
    process = child.start(["-c", program])
    out, err = process.communicate()
    assert (process.returncode, out) == (0, "end\n")
    assert "DEBUG:orvex.traffic:Send [co" in err
