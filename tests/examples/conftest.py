"""The examples in C and C++ as their users start them, on simulated lights."""
import importlib.util
import json
import os
import pathlib
import subprocess
import time
from dataclasses import dataclass

import pytest

from trace import Trace

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIMIT = 60  # seconds, for a busy machine

# The option --build and the fixture build_dir are those of the tools' tests.
_specification = importlib.util.spec_from_file_location("tools_conftest",
                                                        ROOT / "tests/tools/conftest.py")
_tools = importlib.util.module_from_spec(_specification)
_specification.loader.exec_module(_tools)
build_dir = _tools.build_dir


def pytest_addoption(parser):
    _tools.pytest_addoption(parser)
    parser.addoption("--languages", default="c,cpp", help="c or cpp alone")


def pytest_generate_tests(metafunc):
    if "language" in metafunc.fixturenames:
        metafunc.parametrize("language", metafunc.config.getoption("--languages").split(","))


@dataclass
class Result:
    code: int
    out: str
    err: str
    trace: Trace


class Run:
    """An example that has been started."""

    def __init__(self, process, trace_file):
        self.process = process
        self.trace_file = trace_file

    def wait_for_request(self, device, text):
        end = time.monotonic() + LIMIT
        while not any(request.device == device and request.text.startswith(text)
                      for request in Trace.of(self.trace_file).requests):
            assert self.process.poll() is None, self.process.communicate()
            assert time.monotonic() < end, f"no request {text}"
            time.sleep(0.01)

    def finish(self):
        out, err = self.process.communicate(timeout=LIMIT)
        return Result(self.process.returncode, out or "", err, Trace.of(self.trace_file))


class Examples:
    """Starts the examples of one language."""

    def __init__(self, language, build, directory):
        self.language = language
        self.build = build
        self.directory = directory
        self.started = []

    def command(self, name):
        return [str(self.build / "examples" / self.language / name)]

    def environment(self):
        return {**os.environ, "LD_LIBRARY_PATH": str(self.build), "LC_ALL": "C.UTF-8"}

    def start(self, name, *arguments, devices=("Tamar",), timeline=(), **options):
        """Starts an example on devices: models, or objects as in scenarios."""
        scenario = {"devices": [{"model": device} if isinstance(device, str) else device
                                for device in devices], "timeline": list(timeline)}
        number = len(self.started)
        scenario_file = self.directory / f"{number}.json"
        trace_file = self.directory / f"{number}.trace"
        scenario_file.write_text(json.dumps(scenario))
        settings = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True,
                    "env": self.environment(), "cwd": self.directory, **options}
        process = subprocess.Popen(
            [self.build / "tools/orvex-sim/orvex-sim", "run", "--scenario", scenario_file,
             "--trace", trace_file, "--", *self.command(name), *map(str, arguments)], **settings)
        self.started.append(process)
        return Run(process, trace_file)

    def run(self, name, *arguments, **options):
        return self.start(name, *arguments, **options).finish()

    def run_alone(self, name, *arguments):
        """Runs an example with no devices but this machine's."""
        done = subprocess.run([*self.command(name), *map(str, arguments)], capture_output=True,
                              text=True, env=self.environment(), timeout=LIMIT, check=False)
        return Result(done.returncode, done.stdout, done.stderr, Trace())


@pytest.fixture
def examples(language, build_dir, tmp_path):
    examples = Examples(language, build_dir, tmp_path)
    yield examples
    for process in examples.started:
        if process.poll() is None:
            process.kill()
            process.communicate(timeout=LIMIT)
