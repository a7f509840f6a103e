#!/usr/bin/env python3
"""Lists the lights that are attached, and what they tell of themselves.

Try it without a light:

    orvex-sim run --device Tamar --device Cedar -- python3 find_and_list.py --state
"""

import argparse
import sys

import orvex


def show_state(light: orvex.Light) -> None:
    state = light.snapshot()
    print(f"    firmware {state.firmware}, serial number {state.serial or 'unknown'}")
    if state.lamp is not None:
        print(f"    lamp at {state.lamp.percent} %, {state.lamp.hours} hours old")
    for channel in state.channels:
        if channel.fitted:
            print(
                f"    {channel.position:2} {channel.name:9} {channel.wavelength:4} nm "
                f"{channel.percent:5.1f} % {channel.temperature:3} °C "
                f"{'on' if channel.on else 'off'}"
            )


def main() -> int:
    parser = argparse.ArgumentParser(description="Lists the lights that are attached.")
    parser.add_argument("--state", action="store_true", help="open them and show their state")
    arguments = parser.parse_args()

    found = orvex.scan()
    for info in found:
        print(f"{info.model} on {info.port}")
        if arguments.state:
            try:
                with info.open() as light:
                    show_state(light)
            except orvex.OrvexError as error:
                print(f"    {error}", file=sys.stderr)
    if not found:
        print("no light found; orvexctl doctor tells why", file=sys.stderr)
    return 0 if found else 1


if __name__ == "__main__":
    sys.exit(main())
