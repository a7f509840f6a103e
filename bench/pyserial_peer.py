#!/usr/bin/env python3
"""Prints the processor time of one exchange through pyserial, in ns, as a median.

    pyserial_peer.py REPLY_LENGTH ROUNDS

The far end answers between write and read, in the same thread and at nobody's cost.
"""
import fcntl
import os
import statistics
import struct
import sys
import termios
import time
import tty

import serial

CALLS = 16


def answer(master: int, slave: int, reply: bytes) -> None:
    os.read(master, 64)
    os.write(master, reply)
    waiting = 0
    while waiting < len(reply):
        waiting, = struct.unpack("i", fcntl.ioctl(slave, termios.FIONREAD, b"\0" * 4))


def main() -> None:
    length, rounds = int(sys.argv[1]), int(sys.argv[2])
    reply = b"7" * (length - 1) + b"\r"
    master, slave = os.openpty()
    tty.setraw(slave)
    os.sched_setaffinity(0, {0})
    port = serial.Serial(os.ttyname(slave), 9600, timeout=0.5)
    medians = []
    for _ in range(rounds):
        spent = 0
        for _ in range(CALLS):
            start = time.thread_time_ns()
            port.reset_input_buffer()
            port.write(b"ip?\r")
            spent += time.thread_time_ns() - start
            answer(master, slave, reply)
            start = time.thread_time_ns()
            received = port.read_until(b"\r")
            spent += time.thread_time_ns() - start
            assert received == reply
        medians.append(spent / CALLS)
    print(statistics.median(medians))


if __name__ == "__main__":
    main()
