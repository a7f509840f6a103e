#!/usr/bin/env python3
"""Prepares a sequence of pulses of several channels, starts it, and stops it again.

Each channel's pulse has a delay after the trigger, a time on and a time off. The times are numbers
of the unit that SetUnitsPWM chooses for the channel; what they mean, and the modes, is in the manual
of the light. Try it without a light:

    orvex-sim run --device Tamar -- python3 pulse_sequence.py --pulse 1:0:20:80 --pulse 2:40:20:80
"""

import argparse
import signal
import sys
import time
from typing import Dict, List, NamedTuple

import orvex


class Pulse(NamedTuple):
    channel: int
    delay: int
    on: int
    off: int


def parse_pulse(text: str) -> Pulse:
    try:
        return Pulse(*map(int, text.split(":")))
    except (TypeError, ValueError):
        raise argparse.ArgumentTypeError(f"{text}: not CHANNEL:DELAY:ON:OFF") from None


def set_times(light: orvex.Light, what: str, times: Dict[int, int]) -> None:
    """Changes some channels' times. The light takes a number for each position at once."""
    present: List[int] = [int(number) for number in light.command(f"Get{what}").split(",")]
    for channel, value in times.items():
        present[channel - 1] = value
    light.command(f"Set{what}", present)
    print(f"{what}: {light.command(f'Get{what}')}")


def run(light: orvex.Light, arguments: argparse.Namespace) -> None:
    pulses: List[Pulse] = arguments.pulse
    with light.batch():
        for pulse in pulses:
            light.channels[pulse.channel].intensity = arguments.percent
    set_times(light, "UnitsPWM", {pulse.channel: arguments.unit for pulse in pulses})
    set_times(light, "SignalDelayTime", {pulse.channel: pulse.delay for pulse in pulses})
    set_times(light, "SignalOnTime", {pulse.channel: pulse.on for pulse in pulses})
    set_times(light, "SignalOffTime", {pulse.channel: pulse.off for pulse in pulses})
    try:
        light.command("StartPWM")
        print("running" if light.command("StatusPWM") == "1" else "not running")
        time.sleep(arguments.seconds)
    finally:
        light.command("StopPWM")
    print("stopped")


def main() -> int:
    parser = argparse.ArgumentParser(description="A sequence of pulses.")
    parser.add_argument("--pulse", type=parse_pulse, action="append", required=True,
                        metavar="CHANNEL:DELAY:ON:OFF", help="may be given several times")
    parser.add_argument("--percent", type=float, default=20.0, help="the intensity")
    parser.add_argument("--unit", type=int, default=0, help="the unit of the times")
    parser.add_argument("--seconds", type=float, default=1.0, help="how long it runs")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, signal.default_int_handler)  # Ends it as Ctrl-C does.
    try:
        with orvex.open("Tamar") as light:
            run(light, arguments)
    except KeyboardInterrupt:
        print("stopped; the light is off", file=sys.stderr)
        return 130
    except (orvex.OrvexError, IndexError) as error:
        print(f"pulse_sequence: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
