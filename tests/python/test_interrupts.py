"""Real signals to a process that has a call under way."""

import signal

import pytest

LONG_ENOUGH = 120

BEGIN = """
import signal, sys, threading, time
import orvex
from orvex._device import SCANS

def tell_when_under_way(line):
    def tell():
        while not SCANS._inside:
            time.sleep(0.001)
        print(line, flush=True)
    threading.Thread(target=tell, daemon=True).start()

print("ready", flush=True)
"""


class Session:
    """A child that prints lines, and is sent signals when it has."""

    def __init__(self, process):
        self.process = process
        self.expect("ready")

    def expect(self, line):
        assert self.process.stdout.readline() == line + "\n", self.process.communicate()

    def end(self):
        out, err = self.process.communicate(timeout=LONG_ENOUGH)
        assert (self.process.returncode, out) == (0, ""), err
        return err


@pytest.fixture
def session(child):
    started = []

    def start(program, **options):
        started.append(child.start(["-c", BEGIN + program], **options))
        return Session(started[-1])

    yield start
    for process in started:
        process.kill()
        process.communicate()


def test_an_exchange_comes_to_its_end_and_the_next_reply_is_its_own(session):
    late = {"fault": "late", "command": "GetLedHours", "delayMs": 1000}
    child = session("""
with orvex.open("Tamar") as light:
    try:
        tell_when_under_way("asking")
        light.command("GetLedHours")
    except KeyboardInterrupt:
        print("interrupted", flush=True)
    print(light.command("GetSoftwareVersion"), light.channels[1].raw, flush=True)
print(light, orvex.scan()[0].is_open, flush=True)
""", timeline=[late])
    child.expect("asking")
    child.process.send_signal(signal.SIGINT)
    child.expect("interrupted")
    child.expect("1.4.2 500")
    child.expect("<Light Tamar on /dev/ttyACM0 closed> False")
    assert child.end() == ""


def test_a_wait_without_an_end_is_left(session):
    """A group that does not settle; until it does the light cannot be closed."""
    child = session("""
try:
    with orvex.open("Tamar") as light:
        try:
            list(light.channels)
            tell_when_under_way("waiting")
            with light.batch():
                light.channels[5].on = True
                light.channels[1].on = True
        finally:
            print("still waiting", light._device.records.locked(), flush=True)
except KeyboardInterrupt:
    print("interrupted", light.closed, orvex.scan()[0].is_open, flush=True)
""", timeline=[{"fault": "reply", "command": "GetUnitStatus", "bytes": "0,0,0,0,0,0,0,0\r"},
               {"at": 4, "do": "clearFaults"}])
    child.expect("waiting")
    child.process.send_signal(signal.SIGINT)
    child.expect("still waiting True")
    child.expect("interrupted True False")
    assert child.end() == ""


def test_what_a_call_would_have_gone_on_with_is_not_begun(session):
    late = {"fault": "late", "command": "GetSoftwareVersion", "delayMs": 700}
    child = session("""
import logging
logging.basicConfig(level=logging.DEBUG, format="%(message)s", stream=sys.stderr)
with orvex.open("Tamar") as light:
    try:
        tell_when_under_way("asking")
        light.snapshot()
    except KeyboardInterrupt:
        print("interrupted", flush=True)
""", timeline=[late])
    child.expect("asking")
    child.process.send_signal(signal.SIGINT)
    child.expect("interrupted")
    log = child.end()
    assert log.index("Send [sv?*]") < log.index("<-Received [1.4.2*]") < log.index("Send [dc")
    assert "Send [" not in log[log.index("Send [sv?*]") + 1:log.index("Send [dc")]


def test_a_light_that_nobody_has_got_is_closed_again(session):
    late = {"fault": "late", "command": "GetNameLED", "delayMs": 700}
    child = session("""
try:
    tell_when_under_way("opening")
    orvex.open("Tamar")
except KeyboardInterrupt:
    print("interrupted", flush=True)
while orvex.scan()[0].is_open:
    time.sleep(0.01)
from orvex._worker import _running
while _running:
    time.sleep(0.01)
print(orvex.scan()[0].is_open, flush=True)
orvex.open("Tamar").close()
""", timeline=[late])
    child.expect("opening")
    child.process.send_signal(signal.SIGINT)
    child.expect("interrupted")
    child.expect("False")
    assert child.end() == ""


def test_signals_with_handlers_do_not_break_exchanges(session):
    late = {"fault": "late", "command": "GetLedHours", "delayMs": 700}
    child = session("""
ticks = []
signal.signal(signal.SIGALRM, lambda *_: ticks.append(threading.current_thread().name))
with orvex.open("Tamar") as light:
    signal.setitimer(signal.ITIMER_REAL, 0.01, 0.01)
    reply = light.command("GetLedHours")
    heard = len(ticks)
    signal.setitimer(signal.ITIMER_REAL, 0)
    print(reply, heard > 1, set(ticks), flush=True)
    signal.pthread_sigmask(signal.SIG_BLOCK, [signal.SIGALRM])  # In this thread, not in all.
    signal.setitimer(signal.ITIMER_REAL, 0.01, 0.01)
    print(light.command("GetLedHours"), flush=True)
    signal.setitimer(signal.ITIMER_REAL, 0)
""", timeline=[late])
    child.expect("120,120,120,120,120,120,120,120 True {'MainThread'}")
    child.expect("120,120,120,120,120,120,120,120")
    assert child.end() == ""


def test_a_program_that_is_interrupted_while_a_call_is_under_way_ends_well(session):
    late = {"fault": "late", "command": "GetLedHours", "delayMs": 1000}
    child = session("""
light = orvex.open("Tamar")
try:
    tell_when_under_way("asking")
    light.command("GetLedHours")
except KeyboardInterrupt:
    light._closed = True  # It is left open: closing it would wait for the call.
""", timeline=[late])
    child.expect("asking")
    child.process.send_signal(signal.SIGINT)
    assert child.end() == ""
