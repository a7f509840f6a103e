#!/usr/bin/env python3
"""Exposes a sample at regular intervals; the light is on for the exposures only.

The light goes off whatever happens: at the end of an exposure, on Ctrl-C, and when the camera
fails. Put your camera's call into expose(). Try it without a light:

    orvex-sim run --device Tamar -- python3 time_lapse.py --channel 2 --count 3 --interval 1
"""

import argparse
import signal
import sys
import time
from contextlib import contextmanager
from typing import Iterator

import orvex


@contextmanager
def lit(channel: orvex.Channel) -> Iterator[None]:
    """The channel is on inside."""
    try:
        channel.on = True
        yield
    finally:
        channel.on = False


def expose(seconds: float) -> None:
    time.sleep(seconds)  # camera.capture(seconds)


def run(light: orvex.Light, arguments: argparse.Namespace) -> None:
    channel = light.channels[arguments.channel]
    channel.intensity = arguments.percent
    begin = time.monotonic()
    for number in range(arguments.count):
        time.sleep(max(0.0, begin + number * arguments.interval - time.monotonic()))
        with lit(channel):
            switched_on = time.monotonic()
            expose(arguments.exposure)
        lasted = time.monotonic() - switched_on
        print(f"{number + 1}: at {switched_on - begin:.1f} s, {lasted:.2f} s of {channel}")


def main() -> int:
    parser = argparse.ArgumentParser(description="A time-lapse series.")
    parser.add_argument("--channel", type=int, default=1, help="the channel's number, from 1")
    parser.add_argument("--percent", type=float, default=30.0, help="its intensity")
    parser.add_argument("--count", type=int, default=10, help="how many exposures")
    parser.add_argument("--interval", type=float, default=5.0, help="seconds between their begins")
    parser.add_argument("--exposure", type=float, default=0.1, help="seconds of each")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, signal.default_int_handler)  # Ends it as Ctrl-C does.
    try:
        with orvex.open("Tamar") as light:
            run(light, arguments)
    except KeyboardInterrupt:
        print("stopped; the light is off", file=sys.stderr)
        return 130
    except (orvex.OrvexError, IndexError) as error:
        print(f"time_lapse: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
