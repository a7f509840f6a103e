#!/usr/bin/env python3
"""Prints the processor time of listing the ports with pyserial, in ns, as a median.

    pyserial_listing.py DEVICES ROUNDS
"""
import os
import statistics
import sys
import time

from serial.tools import list_ports


def main() -> None:
    devices, rounds = int(sys.argv[1]), int(sys.argv[2])
    os.sched_setaffinity(0, {0})
    times = []
    for _ in range(rounds):
        start = time.thread_time_ns()
        found = sum((port.vid, port.pid) == (0x04D8, 0xEA08) for port in list_ports.comports())
        times.append(time.thread_time_ns() - start)
        assert found == devices, f"pyserial finds {found} devices"
    print(statistics.median(times))


if __name__ == "__main__":
    main()
