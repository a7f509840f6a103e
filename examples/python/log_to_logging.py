#!/usr/bin/env python3
"""Shows the library's log on the terminal and keeps all of it, with the traffic, in a file.

Errors of the library are ERROR, its warnings WARNING, progress INFO, all in the logger "orvex";
what goes over the line is DEBUG in "orvex.traffic". Try it without a light:

    orvex-sim run --device Tamar -- python3 log_to_logging.py --file light.log
"""

import argparse
import logging
import logging.handlers
import sys

import orvex


def set_up_logging(path: str) -> None:
    screen = logging.StreamHandler()
    screen.setLevel(logging.WARNING)
    screen.setFormatter(logging.Formatter("%(levelname)s %(name)s: %(message)s"))
    file = logging.handlers.RotatingFileHandler(path, maxBytes=1_000_000, backupCount=3)
    file.setFormatter(logging.Formatter("%(asctime)s %(levelname)-7s %(name)s: %(message)s"))
    logging.basicConfig(level=logging.DEBUG, handlers=[screen, file])


def main() -> int:
    parser = argparse.ArgumentParser(description="The library's log in Python's logging.")
    parser.add_argument("--file", default="light.log", help="where everything goes")
    arguments = parser.parse_args()
    set_up_logging(arguments.file)
    try:
        with orvex.open("Tamar") as light:
            logging.getLogger("lab").info("temperatures: %s", light.command("GetTemperature"))
            try:
                light.command("SetIntensity", "much")
            except orvex.DeviceIOError as error:
                logging.getLogger("lab").warning("%s", error)
    except orvex.OrvexError as error:
        print(f"log_to_logging: {error}", file=sys.stderr)
        return 1
    with open(arguments.file, encoding="utf-8") as log:
        print(f"{sum(1 for _ in log)} lines in {arguments.file}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
