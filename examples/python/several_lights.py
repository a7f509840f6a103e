#!/usr/bin/env python3
"""Reads the temperatures of all lights at the same time, a thread for each light.

Different lights are asked in parallel; the calls on one light follow each other. Try it without a
light:

    orvex-sim run --device Tamar --device Tamar --device Cedar -- python3 several_lights.py
"""

import argparse
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from contextlib import ExitStack
from typing import List

import orvex


def highest_temperature(light: orvex.Light) -> int:
    return max(int(number) for number in light.command("GetTemperature").split(","))


def watch(light: orvex.Light, rounds: int, stop: threading.Event) -> List[int]:
    """Asks again and again. Ctrl-C in the main thread stops it."""
    temperatures = []
    for _ in range(rounds):
        if stop.is_set():
            break
        temperatures.append(highest_temperature(light))
    return temperatures


def main() -> int:
    parser = argparse.ArgumentParser(description="All lights at the same time.")
    parser.add_argument("--rounds", type=int, default=20, help="how often each light is asked")
    arguments = parser.parse_args()
    stop = threading.Event()
    try:
        with ExitStack() as opened:
            lights = [opened.enter_context(info.open()) for info in orvex.scan()]
            begin = time.monotonic()
            with ThreadPoolExecutor(max(1, len(lights))) as threads:
                jobs = [threads.submit(watch, light, arguments.rounds, stop) for light in lights]
                try:
                    results = [job.result() for job in jobs]
                except BaseException:
                    stop.set()
                    raise
            for light, temperatures in zip(lights, results):
                print(f"{light.model} on {light.port}: at most {max(temperatures)} °C")
            print(f"{sum(map(len, results))} readings in {time.monotonic() - begin:.1f} s")
    except orvex.OrvexError as error:
        print(f"several_lights: {error}", file=sys.stderr)
        return 1
    return 0 if lights else 1


if __name__ == "__main__":
    sys.exit(main())
