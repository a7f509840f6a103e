#!/usr/bin/env python3
"""Ramps channels up and down together; every step is one record to the light.

Try it without a light, with what goes over the line in ramp.trace:

    orvex-sim run --device Tamar --trace ramp.trace -- python3 intensity_ramp.py --channels 1 2
"""

import argparse
import signal
import sys
import time
from typing import Iterator

import orvex


def triangle(highest: int, step: int) -> Iterator[int]:
    """Per cent: up to the highest and down again."""
    yield from range(0, highest, step)
    yield from range(highest, -1, -step)


def ramp(light: orvex.Light, arguments: argparse.Namespace) -> int:
    steps = 0
    next_step = time.monotonic()
    for percent in triangle(arguments.highest, arguments.step):
        with light.batch():
            for number in arguments.channels:
                light.channels[number].intensity = percent
                light.channels[number].on = True
        steps += 1
        next_step += arguments.pause
        time.sleep(max(0.0, next_step - time.monotonic()))
    return steps


def switch_off(light: orvex.Light, arguments: argparse.Namespace) -> None:
    with light.batch():
        for number in arguments.channels:
            light.channels[number].on = False


def main() -> int:
    parser = argparse.ArgumentParser(description="A ramp of intensities.")
    parser.add_argument("--channels", type=int, nargs="+", default=[1], help="numbers, from 1")
    parser.add_argument("--highest", type=int, default=80, help="per cent")
    parser.add_argument("--step", type=int, default=10, help="per cent")
    parser.add_argument("--pause", type=float, default=0.05, help="seconds from step to step")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, signal.default_int_handler)  # Ends it as Ctrl-C does.
    try:
        with orvex.open("Tamar") as light:
            try:
                steps = ramp(light, arguments)
            finally:
                switch_off(light, arguments)
        print(f"{steps} steps")
    except KeyboardInterrupt:
        print("stopped; the light is off", file=sys.stderr)
        return 130
    except (orvex.OrvexError, IndexError) as error:
        print(f"intensity_ramp: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
