#!/usr/bin/env python3
"""Ramps a channel up and down and plots its temperature against time.

The cells (# %%) run one after the other in an editor that knows them, or the whole as a program. It
needs matplotlib (on Debian: python3-matplotlib). Try it without a light; the simulated one warms up
as warming_tamar.json says:

    orvex-sim run --scenario warming_tamar.json -- python3 temperature_plot.py --hurry --save ramp.svg
"""

# %% What to do
import argparse
import time
from typing import List, NamedTuple

import matplotlib.pyplot as plt

import orvex

parser = argparse.ArgumentParser(description="A channel's temperature along a ramp.")
parser.add_argument("--channel", type=int, default=2, help="the channel's number, from 1")
parser.add_argument("--highest", type=float, default=90.0, help="per cent")
parser.add_argument("--interval", type=float, default=5.0, help="seconds between two readings")
parser.add_argument("--readings", type=int, default=61)
parser.add_argument("--hurry", action="store_true",
                    help="do not wait; the times in the picture are the planned ones")
parser.add_argument("--save", metavar="FILE", help="write the picture instead of showing it")
arguments, _ = parser.parse_known_args()  # A notebook has arguments of its own.


# %% Ramp and measure
class Reading(NamedTuple):
    seconds: float
    percent: float
    temperature: int


def planned_percent(k: int) -> float:
    """A third of the time up, a third at the highest, then off."""
    third = (arguments.readings - 1) / 3
    return float(arguments.highest * min(1.0, k / third) if k < 2 * third else 0.0)


readings: List[Reading] = []
with orvex.open("Tamar") as light:
    channel = light.channels[arguments.channel]
    title = f"{light.model}, channel {channel.number} ({channel.wavelength} nm)"
    begin = time.monotonic()
    try:
        for k in range(arguments.readings):
            seconds = k * arguments.interval
            if not arguments.hurry:
                time.sleep(max(0.0, begin + seconds - time.monotonic()))
                seconds = time.monotonic() - begin
            percent = planned_percent(k)
            with light.batch():
                channel.intensity = percent
                channel.on = percent > 0
            shown = channel.intensity if channel.on else 0.0
            readings.append(Reading(seconds, shown, channel.temperature))
    finally:
        channel.on = False
print(f"{len(readings)} readings, {min(reading.temperature for reading in readings)} to "
      f"{max(reading.temperature for reading in readings)} °C")

# %% Plot
plt.rcParams["svg.hashsalt"] = "orvex"  # The same readings make the same file.
figure, left = plt.subplots(figsize=(8, 4))
right = left.twinx()
times = [reading.seconds for reading in readings]
right.step(times, [reading.percent for reading in readings], where="post", color="tab:blue")
left.plot(times, [reading.temperature for reading in readings], "o-", markersize=3, color="tab:red")
left.set(title=title, xlabel="time (s)")
left.set_ylabel("temperature (°C)", color="tab:red")
right.set_ylabel("intensity (%)", color="tab:blue")
right.set_ylim(0, 100)
figure.tight_layout()
if arguments.save:
    figure.savefig(arguments.save, metadata={"Date": None})
else:
    plt.show()
