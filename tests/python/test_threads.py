"""Several threads, and the thread rules of the library."""

import threading
import time
from concurrent.futures import ThreadPoolExecutor

import pytest

import orvex
from orvex._device import SCANS
from orvex._gate import Gate

LONG_ENOUGH = 60


def started(action):
    thread = threading.Thread(target=action, daemon=True)
    thread.start()
    return thread


def test_one_light_in_many_threads_beside_scans(tamar, cedar):
    def ask(light, name, reply):
        for _ in range(20):
            assert light.command(name) == reply

    def ramp(number):
        for percent in range(10, 30):
            tamar.channels[number].intensity = percent
            assert tamar.channels[number].intensity == percent

    def scan():
        for _ in range(10):
            assert len(orvex.scan()) == 2

    with ThreadPoolExecutor(7) as pool:
        jobs = [pool.submit(ask, tamar, "GetSoftwareVersion", "1.4.2"),
                pool.submit(ask, tamar, "GetUnitSerialNumber", "TA-0815"),
                pool.submit(ask, cedar, "GetLampHours", "1250"),
                pool.submit(ask, cedar, "GetTemperature", "38"),
                pool.submit(ramp, 1), pool.submit(ramp, 8), pool.submit(scan)]
        for job in jobs:
            job.result(LONG_ENOUGH)
    assert tamar.command("GetIntensity") == "290,500,500,500,500,500,0,290"


def test_a_batch_is_its_threads_own(tamar, trace):
    sent = trace(tamar)
    with tamar.batch():
        tamar.channels[1].intensity = 60
        other = started(lambda: setattr(tamar.channels[2], "intensity", 70))
        other.join(LONG_ENOUGH)
        tamar.channels[3].intensity = 80
    assert sent.requests() == ["ip=500,700,500,500,500,500,0,500", "ip=600,700,800,500,500,500,0,500"]


def test_scan_waits_for_calls_and_closing_too(tamar):
    order = []

    def ask():
        order.append(tamar.command("GetLedHours")[:3])  # Late by 1.2 s.

    asking = started(ask)
    while not SCANS._inside:
        time.sleep(0.001)
    assert tamar._device._uses._inside == 1
    scanning = started(lambda: order.append(len(orvex.scan())))
    closing = started(lambda: (tamar.close(), order.append("closed")))
    for thread in (asking, scanning, closing):
        thread.join(LONG_ENOUGH)
    assert order[0] == "120" and set(order[1:]) == {2, "closed"}


@pytest.fixture
def gate():
    return Gate(patience=0.5)


def inside(gate, entered, leave):
    with gate.together():
        entered.set()
        leave.wait(LONG_ENOUGH)


def enter(gate):
    entered, leave = threading.Event(), threading.Event()
    thread = started(lambda: inside(gate, entered, leave))
    return thread, entered, leave


def test_gate_lets_many_pass_together(gate):
    _, first, leave_first = enter(gate)
    _, second, leave_second = enter(gate)
    assert first.wait(LONG_ENOUGH) and second.wait(LONG_ENOUGH)
    leave_first.set()
    leave_second.set()


def test_gate_lets_one_be_alone(gate):
    passed = []
    thread, entered, leave = enter(gate)
    entered.wait(LONG_ENOUGH)

    def alone():
        with gate.alone():
            passed.append("alone")
            time.sleep(0.05)
            passed.append("still alone")

    waiting = [started(alone), started(alone)]
    time.sleep(0.05)
    assert passed == []
    leave.set()
    for one in (thread, *waiting):
        one.join(LONG_ENOUGH)
    assert passed == ["alone", "still alone"] * 2


def test_gate_lets_who_waits_in_before_those_who_come_later_for_a_while(gate):
    _, entered, leave = enter(gate)
    entered.wait(LONG_ENOUGH)
    order = []

    def alone():
        with gate.alone():
            order.append("alone")

    waiting = started(alone)
    while not gate._waiting:
        time.sleep(0.001)
    begin = time.monotonic()
    later, later_entered, later_leave = enter(gate)
    assert later_entered.wait(LONG_ENOUGH)  # Else what is inside could never be helped.
    assert time.monotonic() - begin >= 0.4 and order == []
    later_leave.set()
    leave.set()
    waiting.join(LONG_ENOUGH)
    assert order == ["alone"]
