"""What the measurements have to show."""
from dataclasses import dataclass


@dataclass(frozen=True)
class Goal:
    """A limit for one counter of one benchmark."""

    text: str
    benchmark: str
    counter: str
    limit: float
    unit: str = ""
    # Counted, not timed: holds on any machine and under any load.
    counted: bool = False
    exact: bool = False
    # Shown beside the others, without a limit of its own.
    plain: bool = False

    def holds(self, value: float) -> bool:
        return self.plain or (value == self.limit if self.exact else value <= self.limit)


def counted(text: str, benchmark: str, counter: str, number: float, unit: str = "") -> Goal:
    return Goal(text, benchmark, counter, number, unit, counted=True, exact=True)


def told(text: str, benchmark: str, counter: str, unit: str = "") -> Goal:
    return Goal(text, benchmark, counter, 0, unit, plain=True)


def exchange_goals() -> list[Goal]:
    goals = []
    for length, ratio, nanoseconds in ((5, 1.03, 120), (60, 1.02, 300)):
        reply = f"{length}-byte reply"
        kernel, memory = f"exchange/{length}", f"exchangeInMemory/{length}"
        counts = f"exchangeCounts/{length}"
        goals += [
            told(f"{reply}: floor, processor time", kernel, "floor_cpu_ns", " ns"),
            told(f"{reply}: floor, wall time", kernel, "floor_wall_ns", " ns"),
            Goal(f"{reply}: processor time, log off", kernel, "library_ratio", ratio, " x floor"),
            told(f"{reply}: wall time, log off", kernel, "library_wall_ratio", " x floor"),
            Goal(f"{reply}: processor time, default log to a callback", kernel, "logging_ratio",
                 1.15, " x floor"),
            Goal(f"{reply}: user code added", memory, "library_added_ns", nanoseconds, " ns"),
            told(f"{reply}: user code added, default log to a callback", memory,
                 "logging_added_ns", " ns"),
            counted(f"{reply}: calls on the port", counts, "library_port_calls", length + 2),
            counted(f"{reply}: other system calls", counts, "library_other_calls", 0),
            counted(f"{reply}: allocations, log off", counts, "library_allocations", 0),
            counted(f"{reply}: other system calls, default log", counts, "logging_other_calls", 0),
            counted(f"{reply}: allocations, default log", counts, "logging_allocations", 3)]
    return goals


def log_goals() -> list[Goal]:
    goals = [Goal("disabled `log` beside a mask test", "disabledLine", "log_added_ns", 2, " ns")]
    goals += [told(f"disabled `{entry}` beside a mask test", "disabledLine", f"{entry}_added_ns",
                   " ns") for entry in ("logerr", "clog", "Logger", "spdlog")]
    for name, text in (("fileLine", "to a file"), ("standardOutputLine", "to standard output"),
                       ("callbackLine", "to a callback")):
        goals += [told(f"line {text}: floor", name, "floor_cpu_ns", " ns"),
                  Goal(f"line {text}: `log`", name, "log_ratio", 1.10, " x floor"),
                  told(f"line {text}: `log`, added", name, "log_added_ns", " ns"),
                  told(f"line {text}: `Logger`", name, "Logger_ratio", " x floor"),
                  told(f"line {text}: spdlog", name, "spdlog_ratio", " x floor")]
    return goals


def scan_goals() -> list[Goal]:
    goals = []
    for devices in (8, 64, 512):
        goals += [Goal(f"{devices} devices: first scan", f"scan/{devices}", "first_ratio", 1.05,
                       " x bare loop"),
                  Goal(f"{devices} devices: later scan", f"scan/{devices}", "repeated_ratio", 1.05,
                       " x bare loop"),
                  Goal(f"{devices} devices: reconciliation's share", f"scan/{devices}",
                       "reconciliation_share", 0.05)]
    for devices in (64, 512, 4096):
        goals += [told(f"{devices} devices: registering one", f"registry/{devices}",
                       "first_ns_per_device", " ns"),
                  told(f"{devices} devices: recognising one", f"registry/{devices}",
                       "repeated_ns_per_device", " ns")]
    return goals + [Goal("recognising one of 4,096 against one of 64", "registry", "growth", 2,
                         " x")]


def size_goals() -> list[Goal]:
    return [Goal("loading, to the end of the first call", "start", "ratio", 1.2,
                 " x empty library"),
            told("loading, to the end of the first call", "start", "library_ns", " ns"),
            told("resident memory of the loaded library", "start", "resident_kib", " KiB"),
            told("of it written to", "start", "written_kib", " KiB"),
            Goal("heap memory of a registered device", "memoryOfDevices/512", "bytes_per_device",
                 24 * 1024, " bytes", counted=True),
            Goal("file, stripped", "size", "stripped_kib", 250, " KiB", counted=True),
            told("relocations", "size", "relocations")]


def opening_goals() -> list[Goal]:
    exchanges = {"Alder": 3, "Birch": 6, "Cedar": 6, "Hazel": 6, "Larch": 6, "Maple": 6,
                 "Rowan": 2, "Spruce": 3, "Tamar": 8, "Willow": 8}
    goals = []
    for number, (model, count) in enumerate(exchanges.items()):
        name = f"opening/{number}"
        goals += [counted(f"{model}: exchanges of an opening", name, "open_exchanges", count),
                  counted(f"{model}: pauses of an opening", name, "open_pauses", 0),
                  counted(f"{model}: exchanges of a closing", name, "close_exchanges",
                          0 if model in ("Rowan", "Spruce") else 1),
                  counted(f"{model}: pauses of a closing", name, "close_pauses", 0)]
    return goals


def parallel_goals() -> list[Goal]:
    goals = []
    for devices in (1, 2, 4, 8):
        name, memory = f"parallel/{devices}", f"parallelInMemory/{devices}"
        goals += [Goal(f"{devices} threads: wall time, log off", name, "library_wall_ratio", 1.05,
                       " x floor"),
                  told(f"{devices} threads: wall time, default log", name, "logging_wall_ratio",
                       " x floor"),
                  told(f"{devices} threads: an exchange without the kernel, log off", memory,
                       "library_wall_ns", " ns"),
                  told(f"{devices} threads: an exchange without the kernel, default log", memory,
                       "logging_wall_ns", " ns")]
    return goals


def peer_goals() -> list[Goal]:
    goals = []
    for length in (5, 60):
        name = f"peers/{length}"
        goals += [told(f"{length}-byte reply: {peer}", name, f"{peer}_ratio", " x Orvex library")
                  for peer in ("asio", "libserial", "libserialport", "pyserial", "asio_in_bulk")]
    for devices in (8, 64, 512):
        goals += [told(f"{devices} devices: listing with {peer}", f"listing/{devices}",
                       f"{peer}_ratio", " x Orvex library") for peer in ("libserialport", "pyserial")]
    return goals


SECTIONS = {"Exchange": exchange_goals(), "Logging": log_goals(), "Scan": scan_goals(),
            "Footprint and start": size_goals(), "Opening and closing": opening_goals(),
            "Parallel": parallel_goals(), "Other serial libraries": peer_goals()}
