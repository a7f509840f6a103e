#!/usr/bin/env python3
"""Runs the measurements and holds their figures to the goals.

    report.py BUILD_DIRECTORY [--brief] [--plot FILE]

Writes BUILD_DIRECTORY/results.json and report.md. Exits 1 when a counted figure, which depends on
no machine and no load, is not what it has to be; timed figures are only told.
"""
import argparse
import json
import os
import re
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

from goals import SECTIONS, Goal

Results = dict[str, dict[str, float]]
PROGRAMS = ("exchange_bench", "log_bench", "opening_bench", "registry_bench", "scan_bench",
            "parallel_bench", "peers_bench", "listing_bench")


def run_program(program: Path, environment: dict[str, str], brief: bool) -> Results:
    """The counters of a program's benchmarks."""
    arguments = ["--benchmark_filter=-/512|/4096"] if brief and program.name in (
        "scan_bench", "listing_bench") else []
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run([program, f"--benchmark_out={out.name}", "--benchmark_out_format=json",
                        *arguments], check=True, env=environment, stdout=subprocess.DEVNULL)
        measured = json.load(open(out.name))["benchmarks"]
    results: Results = {}
    for benchmark in measured:
        name = benchmark["name"].removesuffix("/iterations:1")
        results[name] = {key: value for key, value in benchmark.items()
                         if isinstance(value, (int, float))}
    return results


def measure_start(build: Path, rounds: int) -> dict[str, float]:
    """Loading the library and an empty one in turn, each in a process of its own."""
    libraries = (build / "libqtr_orvex.so", build / "bench" / "libempty_library.so")
    spent: list[list[float]] = [[], []]
    memory = []
    for _ in range(rounds):
        for which, library in enumerate(libraries):
            probe = subprocess.run([build / "bench" / "start_probe", library], check=True,
                                   capture_output=True, text=True).stdout.split()
            spent[which].append(float(probe[0]))
            if which == 0:
                memory.append((float(probe[1]), float(probe[2])))
    return {"ratio": statistics.median(a / b for a, b in zip(*spent)),
            "library_ns": statistics.median(spent[0]),
            "resident_kib": statistics.median(m[0] for m in memory),
            "written_kib": statistics.median(m[1] for m in memory)}


def measure_size(build: Path) -> dict[str, float]:
    library = build / "libqtr_orvex.so"
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(["strip", "-o", stripped.name, library], check=True)
        size = os.stat(stripped.name).st_size
    listed = subprocess.run(["readelf", "-rW", library], check=True, capture_output=True, text=True)
    return {"stripped_kib": size / 1024,
            "relocations": len(re.findall(r" R_X86_64_\w+", listed.stdout))}


def measure_pyserial(results: Results, rounds: int) -> None:
    for length in (5, 60):
        peers = results.get(f"peers/{length}")
        if peers is not None:
            script = Path(__file__).with_name("pyserial_peer.py")
            spent = subprocess.run([sys.executable, script, str(length), str(rounds)], check=True,
                                   capture_output=True, text=True).stdout
            peers["pyserial_ratio"] = float(spent) / peers["library_cpu_ns"]


def measure(build: Path, brief: bool) -> Results:
    rounds = 3 if brief else 200
    environment = {**os.environ, "ORVEX_BENCH_ROUNDS": str(rounds)}
    results: Results = {}
    for name in PROGRAMS:
        program = build / "bench" / name
        if program.exists():
            print(f"{name} …", file=sys.stderr, flush=True)
            results |= run_program(program, environment, brief)
    results["start"] = measure_start(build, max(5, rounds // 4))
    results["size"] = measure_size(build)
    results["registry"] = {"growth": results["registry/4096"]["repeated_ns_per_device"] /
                           results["registry/64"]["repeated_ns_per_device"]}
    measure_pyserial(results, max(5, rounds // 4))
    return results


def value_text(value: float) -> str:
    return f"{value:.0f}" if abs(value) >= 100 or value == int(value) else f"{value:.3g}"


def goal_text(goal: Goal) -> str:
    if goal.plain:
        return ""
    return f"{'' if goal.exact else 'at most '}{goal.limit:g}"


def table(title: str, goals: list[Goal], results: Results) -> tuple[str, list[str]]:
    """A section's table, and the counted goals that it misses."""
    lines = [f"### {title}", "", "| | measured | goal | |", "|---|---|---|---|"]
    missed = []
    for goal in goals:
        value = results.get(goal.benchmark, {}).get(goal.counter)
        if value is None:
            lines.append(f"| {goal.text} | not measured | {goal_text(goal)} | |")
            if goal.counted:
                missed.append(f"{goal.text}: not measured")
            continue
        verdict = "" if goal.plain else "met" if goal.holds(value) else "missed"
        ratio = goal.unit.startswith(" x")
        shown = f"{value:.3f}" if ratio else value_text(value)
        lines.append(f"| {goal.text} | {shown}{goal.unit} | {goal_text(goal)} | {verdict} |")
        if goal.counted and not goal.holds(value):
            missed.append(f"{goal.text}: {value_text(value)}, not {goal_text(goal)}")
    return "\n".join(lines) + "\n", missed


def plot(results: Results, file: str) -> None:
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams["svg.hashsalt"] = "orvex"
    from matplotlib import pyplot
    figure, (threads, registry) = pyplot.subplots(1, 2, figsize=(10, 4))
    counts = [1, 2, 4, 8]
    for name, label in (("floor", "bare system calls"), ("library", "library, log off"),
                        ("logging", "library, default log to a callback")):
        threads.plot(counts, [n * 1e6 / results[f"parallel/{n}"][f"{name}_wall_ns"]
                              for n in counts], marker="o", label=label)
    threads.set(xlabel="devices, each in its own thread", ylabel="exchanges per ms", ylim=(0, None),
                title="Exchanges with a reply of 20 bytes", xticks=counts)
    devices = [8, 64, 512, 4096]
    for name, label in (("first", "first scan"), ("repeated", "later scan")):
        registry.loglog(devices, [n * results[f"registry/{n}"][f"{name}_ns_per_device"] / 1e6
                                  for n in devices], marker="o", label=label)
    registry.set(xlabel="devices", ylabel="ms", title="The list of devices, without udev")
    for axes in (threads, registry):
        axes.legend()
        axes.grid(alpha=0.3)
    figure.tight_layout()
    figure.savefig(file, metadata={"Date": None})


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=Path)
    parser.add_argument("--brief", action="store_true")
    parser.add_argument("--plot")
    options = parser.parse_args()
    results = measure(options.build, options.brief)
    (options.build / "results.json").write_text(json.dumps(results, indent=1))
    tables = [table(title, goals, results) for title, goals in SECTIONS.items()]
    text = "\n".join(part for part, _ in tables)
    (options.build / "report.md").write_text(text)
    print(text)
    if options.plot:
        plot(results, options.plot)
    missed = [line for _, lines in tables for line in lines]
    for line in missed:
        print(f"MISSED: {line}")
    print(f"{len(missed)} counted figures are not what they have to be")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
